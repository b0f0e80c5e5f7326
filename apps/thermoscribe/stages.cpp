#include "apps/thermoscribe/stages.h"

#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {
namespace {

std::string Names(const std::vector<Stage>& stages, std::size_t first, std::size_t last) {
  std::string text;
  for (std::size_t i = first; i < last; ++i) Append(text, ", ", stages[i].name);
  return text.empty() ? "nothing" : text;
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
  host.Say((code == EExitCode::ABORTED ? "Aborted. Written: " : "Written: ") +
           Names(stages, 0, written) + ". Written in part at most: " +
           Names(stages, written, begun) + ". Not written: " + Names(stages, begun, stages.size()) +
           "." + (advice.empty() ? "" : " " + advice));
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
