// A run of the desktop program that ends by itself: for a picture of its window, or for figures.
#pragma once

#include <QTimer>
#include <chrono>
#include <optional>
#include <string>

#include "apps/thermoscribe-desktop/desktop_request.h"
#include "apps/thermoscribe-desktop/main_window.h"

namespace vane::desktop {

class CUnattendedRun {
 public:
  using Clock = std::chrono::steady_clock;

  /// Of a window that is connected; it is closed at the end. `start` is that of the program.
  CUnattendedRun(CMainWindow& window, const Request& request, Clock::time_point start);

  /// Of the process.
  int ExitCode() const { return exitcode_; }

 private:
  void Look();
  std::int64_t NumReadings() const;
  void PrintFigures(Clock::time_point now) const;
  void End(const std::string& trouble);

  CMainWindow& window_;
  const Request& request_;
  const Clock::time_point start_;
  std::optional<Clock::time_point> first_;
  double processorbefore_ = 0;
  int exitcode_ = 1;
  QTimer timer_;
};

}  // namespace vane::desktop
