#include "apps/thermoscribe/account.h"

#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {

EExitCode RunStages(CHost& host, const std::vector<Stage>& stages, const std::string& advice) {
  const WriteAccount account = WriteStages(stages, host);
  const EExitCode code = host.CodeOf(account.end);
  if (code == EExitCode::DONE) return code;
  std::string text = account.Text(code == EExitCode::ABORTED);
  if (account.IsBegun() && !advice.empty()) Append(text, " ", advice);
  host.Say(text);
  return code;
}

EExitCode ReadBeforeWriting(CHost& host) {
  return NothingWritten(host, host.ReadWell([&] { return host.ReadSettings(); }));
}

EExitCode NothingWritten(CHost& host, EExitCode code) {
  if (code != EExitCode::DONE) host.Say(NothingWrittenText(code == EExitCode::ABORTED));
  return code;
}

EExitCode NotReadBack(CHost& host, EExitCode code) {
  host.Say(std::string(code == EExitCode::ABORTED ? "Aborted. " : "") +
           "Everything was written, but could not be read back.");
  return code;
}

EExitCode ShowChanges(CHost& host, const std::vector<CheckedValue>& values) {
  Members changes;
  std::string text;
  for (const CheckedValue& value : values) {
    if (value.after == value.before) continue;
    changes.push_back({value.name, Members{{"before", value.before}, {"after", value.after}}});
    Append(text, "\n",
           value.name + ": " + TextOf(value.before, value.unit) + " -> " +
               TextOf(value.after, value.unit));
  }
  host.Output().Record("changes", changes, text.empty() ? "Nothing has changed." : text);
  EExitCode code = EExitCode::DONE;
  for (const CheckedValue& value : values) {
    if (value.after == value.wanted) continue;
    host.Say(WrongValueText(value));
    code = EExitCode::FAILED;
  }
  return code;
}

}  // namespace vane::thermoscribe
