// The user's Ctrl-C, a polite request to end and a terminal that goes away: a flag and something to
// wait for, in place of a program that stops in the middle of a write.
//
// An interrupt is final: it stays pending to the end of the process, so that whatever the program
// still comes to ends early too.
//
// One object per process, made by the host before the other terminal components. Signals may come
// on any thread; the operations belong to the user-interface thread.
#pragma once

#include <signal.h>

#include <array>

namespace vane {

/// Handles SIGINT, SIGTERM and SIGHUP while it lives, and puts the former handling back at its end.
/// A signal that the program was started to ignore stays ignored. A system call that waits is left
/// with EINTR.
///
/// The third signal brings back the system's own handling of them all, so that the next one ends
/// the program, whatever it hangs in.
class CInterrupts {
 public:
  /// Raises `std::system_error` without a pipe, `std::logic_error` for a second object.
  CInterrupts();
  ~CInterrupts();
  CInterrupts(const CInterrupts&) = delete;
  CInterrupts& operator=(const CInterrupts&) = delete;

  /// True from an interrupt on.
  bool Pending() const;

  /// Readable from an interrupt on until `TakeArrivals`, to be given to `poll`.
  int Descriptor() const { return pipe_[0]; }

  /// How many interrupts came since the last call. `Pending` stays.
  int TakeArrivals();

 private:
  std::array<int, 2> pipe_{};
  std::array<struct sigaction, 3> former_{};
};

}  // namespace vane
