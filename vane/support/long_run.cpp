#include "vane/support/long_run.h"

#include "vane/support/messages.h"
#include "vane/support/timing.h"

namespace vane {

void CLongRun::Start(const std::string& text, double share) { progress_->Start(text, share); }

bool CLongRun::Advance() { return progress_->Step(); }

bool CLongRun::Steps(std::initializer_list<RunStep> steps) {
  for (const RunStep& step : steps) {
    if (!Step(step)) return false;
  }
  return true;
}

bool CLongRun::Step(const RunStep& step) {
  if (!StepWithoutPause(step)) return false;
  Pause();
  return true;
}

bool CLongRun::StepWithoutPause(const RunStep& step) {
  return LastStep(step) && (Advance() || StopWith(policy_.abortedtext, policy_.hidesbeforeabort));
}

bool CLongRun::LastStep(const RunStep& step) {
  name_ = step.name;
  if (step.run()) return true;
  failed_ = true;
  return StopWith(policy_.failedtext, true, name_);
}

void CLongRun::Pause() {
  if (policy_.pause > 0) PauseMs(policy_.pause);
}

void CLongRun::Hide() {
  if (progress_) progress_->Hide(false);
}

void CLongRun::Finish() { progress_->Finish(); }

bool CLongRun::StopWith(EText text, bool hide, const std::string& value) {
  if (text == EText::NO_TEXT) return false;
  if (hide) Hide();
  ShowMessage(SubstituteParams(ResourceText(text), value));
  return false;
}

void CLongRun::End() {
  if (progress_) progress_->Finish();
  progress_.reset();
  if (policy_.clearsbusycursor) SetBusyCursor(false);
}

bool RunLong(const Components& components, const RunPolicy& policy, std::optional<ui::CWindow*> frm,
             const std::function<bool(CLongRun&)>& body, const std::string& firstname) {
  CLongRun run(policy, firstname);
  try {
    run.progress_ = components.factory.MakeProgress();
    if (frm) {
      run.progress_->Attach(*frm);
      run.progress_->SetVisible(*frm != nullptr);
    }
    if (policy.raisesbusycursor) SetBusyCursor(true);
    const bool result = body(run);
    if (!run.failed_ || policy.finishonfailure) run.End();
    return result;
  } catch (...) {
    if (policy.hidesonerror) run.Hide();
    if (policy.errortext != EText::NO_TEXT) {
      ShowError(SubstituteParams(ResourceText(policy.errortext), run.name_), kCompanyName, {}, 0);
    }
    if (policy.finishonerror) run.End();
    if (policy.errortext == EText::NO_TEXT) throw;
    return false;
  }
}

}  // namespace vane
