// The user's Ctrl-C, and a polite request to end: a flag and something to wait for, in place of a
// program that stops in the middle of a write.
//
// One object per process, made by the host before the other terminal components. Signals may come
// on any thread; the operations belong to the user-interface thread.
#pragma once

#include <signal.h>

#include <array>

namespace vane {

/// Handles SIGINT and SIGTERM while it lives, and puts the former handling back at its end. A
/// signal that the program was started to ignore stays ignored.
///
/// The third signal that nobody has cleared brings back the system's own handling of both, so that
/// the next one ends the program, whatever it hangs in.
class CInterrupts {
 public:
  /// Raises `std::system_error` without a pipe, `std::logic_error` for a second object.
  CInterrupts();
  ~CInterrupts();
  CInterrupts(const CInterrupts&) = delete;
  CInterrupts& operator=(const CInterrupts&) = delete;

  /// True from an interrupt on until `Clear`.
  bool Pending() const;

  /// The interrupts so far are dealt with. Also ends the bringing back that the third one has done.
  void Clear();

  /// True once `Clear` has dealt with an interrupt: the user has stopped something.
  bool Heeded() const { return heeded_; }

  /// Readable from an interrupt on until `TakeArrivals` or `Clear`, to be given to `poll`.
  int Descriptor() const { return pipe_[0]; }

  /// How many interrupts came since the last call. `Pending` stays.
  int TakeArrivals();

 private:
  void Handle();
  void Restore();

  bool heeded_ = false;
  std::array<int, 2> pipe_{};
  std::array<struct sigaction, 2> former_{};
};

}  // namespace vane
