#include "apps/thermoscribe/stages.h"

#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {
namespace {

// Adds a sentence on the stages from `first` to `last`, where there are any.
void AddPart(std::string& account, const char* title, const std::vector<Stage>& stages,
             std::size_t first, std::size_t last) {
  std::string names;
  for (std::size_t i = first; i < last; ++i) Append(names, ", ", stages[i].name);
  if (!names.empty()) Append(account, " ", title + names + ".");
}

}  // namespace

EExitCode RunStages(CHost& host, const std::vector<Stage>& stages, const std::string& advice) {
  std::size_t written = 0;
  std::size_t begun = 0;  // as many may be written in part
  EExitCode code = EExitCode::DONE;
  while (code == EExitCode::DONE && written < stages.size()) {
    if (host.IsInterrupted()) {
      code = EExitCode::ABORTED;
      break;
    }
    const Stage& stage = stages[written];
    begun = written + 1;
    try {
      if (!stage.write()) {
        code = host.CodeOfStoppedRun();
      } else if (!stage.isone && host.IsInterrupted()) {
        code = EExitCode::ABORTED;
      } else {
        written = begun;
      }
    } catch (...) {
      code = host.ReportFailure("writing " + stage.name);
    }
  }
  if (code == EExitCode::DONE) return code;
  if (begun == 0) return NothingWritten(host, code);
  std::string account = code == EExitCode::ABORTED ? "Aborted." : "";
  AddPart(account, "Written: ", stages, 0, written);
  AddPart(account, "Written in part at most: ", stages, written, begun);
  AddPart(account, "Not written: ", stages, begun, stages.size());
  if (!advice.empty()) Append(account, " ", advice);
  host.Say(account);
  return code;
}

EExitCode ReadBeforeWriting(CHost& host) {
  return NothingWritten(host, host.ReadWell([&] { return host.ReadSettings(); }));
}

EExitCode NothingWritten(CHost& host, EExitCode code) {
  if (code != EExitCode::DONE) {
    host.Say(code == EExitCode::ABORTED ? "Aborted. Nothing was written." : "Nothing was written.");
  }
  return code;
}

EExitCode NotReadBack(CHost& host, EExitCode code) {
  host.Say(std::string(code == EExitCode::ABORTED ? "Aborted. " : "") +
           "Everything was written, but could not be read back.");
  return code;
}

}  // namespace vane::thermoscribe
