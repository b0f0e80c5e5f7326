// The communications component for a program with windows: an exchange takes as long as ever, but
// the windows stay alive meanwhile.
//
// A decorator of another component. That one does its exchanges on a thread that this object owns,
// one at a time; the caller waits for the end of the exchange in the event loop, where timers,
// painting and sockets go on and what the user does is kept for later. So nothing that a user
// starts comes in between the lines of a run, and the close box counts when the run next looks for
// events.
//
// The object lives on the user-interface thread. While an exchange runs, the decorated component
// belongs to the other thread; behind it, all that the exchange has done is there to be seen.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "vane/components/communications.h"
#include "vane/components/library_error.h"

class QObject;

namespace vane {

/// An exchange was asked for by what ran in the event loop of another one. Nothing was sent.
inline constexpr std::int32_t ERR_LINE_BUSY = ErrorCode(0x8004050E);

class CPumpedCommunications final : public CVaneCommunications {
 public:
  /// `line` is not null. Without an application, or on another thread than its, an exchange runs
  /// as `line` does it.
  explicit CPumpedCommunications(std::unique_ptr<CVaneCommunications> line);
  /// Not while an exchange runs: its caller is still in here.
  ~CPumpedCommunications() override;

  // As of the decorated component; each raises `ERR_LINE_BUSY` while an exchange runs.

  CommandParams& params() override { return Idle().params(); }
  CVaneCOMPort& COMPort() override { return Idle().COMPort(); }
  void SetDataPath(const std::string& path) override { Idle().SetDataPath(path); }
  void SetInstrumentKind(std::int32_t kind) override { Idle().SetInstrumentKind(kind); }
  std::string ReadSetting(ECommand id, bool flag = true, const std::string& text = {}) override;
  void WriteSetting(ECommand id) override;

  bool IsBusy() const { return busy_; }

 private:
  CVaneCommunications& Idle();
  /// Does `exchange` on the other thread and raises what it raises.
  void Run(const std::function<void()>& exchange);
  void Serve();
  /// One pass of the event loop. Must not raise: the exchange has to end first.
  void Pump() noexcept;

  const std::unique_ptr<CVaneCommunications> line_;
  const std::unique_ptr<QObject> waker_;  // gets an event at the end of an exchange
  bool busy_ = false;                     // of the user-interface thread alone

  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* exchange_ = nullptr;  // to be done; null when it is
  std::exception_ptr failure_;
  bool ends_ = false;
  std::thread worker_;
};

}  // namespace vane
