// The program around a run of exchanges and the person before it: who is told, and who may stop it.
//
// A program implements it once. Everything here runs on the library's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "vane/components/ui.h"

namespace vane::thermoscribe {

/// How a run has ended.
enum class EEnd : std::int32_t {
  DONE,
  STOPPED,  ///< by the user, or by the library, which has told why
  RAISED,   ///< by an error, which has been told
  BADLY,    ///< it reached its end, but not everything was read well, which has been told
};

class CAudience {
 public:
  virtual ~CAudience() = default;

  /// True once the user wants to stop, also where he has said so to the display of a long run; from
  /// then on.
  virtual bool IsInterrupted() const = 0;

  /// The owner of the display of a long run; null: there is to be none.
  virtual ui::CWindow* ProgressWindow() = 0;

  /// How often an exchange has failed or a box of an error was shown so far. A run of the library
  /// may reach its end over such, without a word.
  virtual std::int32_t Troubles() const = 0;

  /// Tells what went wrong.
  virtual void Say(const std::string& text) = 0;

  /// Called inside a catch: shows the pending error. `action` completes "An error occurred while".
  virtual void SayError(const std::string& action) = 0;

  /// Runs `read`, which gives false when it was stopped, and judges it.
  EEnd ReadWell(const std::function<bool()>& read);
};

}  // namespace vane::thermoscribe
