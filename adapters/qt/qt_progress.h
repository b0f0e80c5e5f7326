// The progress of a long run in a window of its own, with a button to stop it.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "vane/components/progress.h"
#include "vane/components/ui.h"

class QWidget;

namespace vane {

class CProgressWindow;

/// The window comes up above the one that it is attached to, and takes the user's acts away from
/// all others. What the user does counts in `Step`, and in the pauses of the run.
class CQtProgress final : public CVaneProgress {
 public:
  CQtProgress();
  ~CQtProgress() override;

  void SetVisible(bool flag) override;
  void Attach(ui::CWindow* frm) override { owner_ = frm; }
  void Hide(bool flag) override;
  void Start(const std::string& text, double share) override;
  bool Step(std::int32_t total, std::int32_t position, std::int32_t extra) override;
  void Finish() override;

 private:
  void Refresh();

  std::unique_ptr<CProgressWindow> window_;  // while a run goes on
  ui::CWindow* owner_ = nullptr;
  bool visible_ = true;
  bool hidden_ = false;
  bool cancelled_ = false;
  double share_ = 0;
  double percent_ = 0;
  std::chrono::steady_clock::time_point looked_;  // at what the user does
};

}  // namespace vane
