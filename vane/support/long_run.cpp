#include "vane/support/long_run.h"

#include <utility>

#include "vane/support/messages.h"
#include "vane/support/text_table.h"

namespace vane {

CLongRun::CLongRun(std::unique_ptr<CVaneProgress> progress, const RunPolicy& policy)
    : progress_(std::move(progress)), policy_(policy) {}

void CLongRun::Start(const std::string& text, double share) { progress_->Start(text, share); }

void CLongRun::Advance() { progress_->Step(); }

bool CLongRun::Steps(std::initializer_list<RunStep> steps) {
  for (const RunStep& step : steps) {
    if (!Step(step)) return false;
  }
  return true;
}

bool CLongRun::Step(const RunStep& step) {
  if (!step.run()) {
    return StopWith(SubstituteParams(ResourceText(policy_.failedtext), step.name));
  }
  return progress_->Step() || StopWith(ResourceText(policy_.abortedtext));
}

void CLongRun::Hide() {
  if (progress_) progress_->Hide(false);
}

void CLongRun::Finish() { progress_->Finish(); }

bool CLongRun::StopWith(const std::string& message) {
  Hide();
  ShowMessage(message);
  return false;
}

bool RunLong(const Components& components, const RunPolicy& policy, std::optional<ui::CWindow*> frm,
             const std::function<bool(CLongRun&)>& body) {
  CLongRun run(components.factory.MakeProgress(), policy);
  try {
    if (frm) {
      run.progress_->Attach(*frm);
      run.progress_->SetVisible(*frm != nullptr);
    }
    SetBusyCursor(true);
    const bool result = body(run);
    run.Finish();
    run.progress_.reset();
    SetBusyCursor(false);
    return result;
  } catch (...) {
    run.Hide();
    throw;
  }
}

}  // namespace vane
