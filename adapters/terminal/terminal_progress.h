// The progress of a long run as one line on a terminal, and Ctrl-C as the way to stop it.
//
// Lives on the user-interface thread. Output that isn't a terminal gets nothing; the run and the
// stopping are the same.
#pragma once

#include <chrono>
#include <string>

#include "adapters/terminal/interrupts.h"
#include "vane/components/progress.h"

namespace vane {

class CTerminalProgress final : public CVaneProgress {
 public:
  /// `interrupts` outlives the reporter; the descriptor stays the host's.
  explicit CTerminalProgress(CInterrupts& interrupts, int output = 2);
  /// Ends a run that is still open, as `Finish` does.
  ~CTerminalProgress() override;
  CTerminalProgress(const CTerminalProgress&) = delete;
  CTerminalProgress& operator=(const CTerminalProgress&) = delete;

  void SetVisible(bool flag) override;
  void Attach(ui::CWindow*) override {}  // a terminal has one place for it
  void Hide(bool flag) override;

  void Start(const std::string& text, double share) override;

  /// False once an interrupt is pending, also one that came before the run. The bar stops at 100
  /// percent, however many steps come. With a position, the line also tells the rate and the time
  /// that is left.
  bool Step(std::int32_t total, std::int32_t position, std::int32_t extra) override;

  void Finish() override;

 private:
  /// Brings the screen in line with the state. A line that is there already is redrawn no more
  /// often than every 50 ms, unless `now` says so.
  void Refresh(bool now);
  std::string Line() const;
  std::string RateText() const;

  CInterrupts& interrupts_;
  const int output_;
  const bool terminal_;
  bool visible_ = true;
  bool hidden_ = false;
  bool running_ = false;
  std::string caption_;
  double share_ = 0;
  double percent_ = 0;
  std::int32_t total_ = 0;  // 0 for a run that only counts its steps
  std::int32_t position_ = 0;
  std::chrono::steady_clock::time_point starttime_;
  std::size_t drawncolumns_ = 0;  // of the line on the screen; 0 is none
  std::chrono::steady_clock::time_point drawntime_;
};

}  // namespace vane
