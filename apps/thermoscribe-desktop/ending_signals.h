// Signals that end the program, such as of a session that is closed, as an event of its loop: an
// exchange that is under way then ends in order.
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace vane::desktop {

/// One object per process. SIGTERM, SIGINT and SIGHUP do their own again behind its end.
class CEndingSignals {
 public:
  explicit CEndingSignals(std::function<void()> arrived);
  ~CEndingSignals();
  CEndingSignals(const CEndingSignals&) = delete;
  CEndingSignals& operator=(const CEndingSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vane::desktop
