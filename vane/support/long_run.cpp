#include "vane/support/long_run.h"

#include "vane/support/messages.h"
#include "vane/support/text_table.h"

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
  if (!LastStep(step)) return false;
  if (Advance()) return true;
  return policy_.abortedtext != 0 && StopWith(ResourceText(policy_.abortedtext));
}

bool CLongRun::LastStep(const RunStep& step) {
  name_ = step.name;
  return step.run() || StopWith(SubstituteParams(ResourceText(policy_.failedtext), name_));
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
    run.End();
    return result;
  } catch (...) {
    run.Hide();
    if (policy.errortext != 0) {
      ShowError(SubstituteParams(ResourceText(policy.errortext), run.name_), kCompanyName, {}, 0);
    }
    if (policy.finishonerror) run.End();
    if (policy.errortext == 0) throw;
    return false;
  }
}

}  // namespace vane
