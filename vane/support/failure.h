// The one road of a failure: an operation that can't go on raises, every operation on the way up
// stamps its label and raises again, and the first one that stands before the user shows one box.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "vane/components/library_error.h"
#include "vane/support/messages.h"
#include "vane/support/text_table.h"

namespace vane {

/// Help that an error carries: the file, and the topic's number in it.
struct HelpFields {
  std::string file;
  std::int32_t context = 0;
};

/// "CVaneT312B - QueryUnits": the label of an operation.
std::string OperationLabel(std::string_view classname, std::string_view operation);

/// The error that the calling catch holds, as a record. An exception of the standard library gets
/// the platform's number of its kind. Outside a catch the number is 0.
LibraryError PendingError();

/// To be called inside a catch: raises the pending error again under `label`. Number and
/// description stay; the help fields stay too, or become `help`.
[[noreturn]] void RaiseAgain(const std::string& label);
[[noreturn]] void RaiseAgain(const std::string& label, const HelpFields& help);

/// Runs `body`; what it raises is raised again under the label of `classname` and `operation`.
template <class Body>
auto Labelled(std::string_view classname, std::string_view operation, Body&& body)
    -> decltype(body()) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    RaiseAgain(OperationLabel(classname, operation));
  }
}

/// Runs `body` at the user's boundary: what it raises is shown in a box that says the text of
/// `action`, and the result is false. The text is fetched only then.
template <class Body, std::invocable Action>
bool AtBoundary(Action&& action, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    ShowError(std::forward<Action>(action)(), kCompanyName, {}, 0);
    return false;
  }
}

/// Steps whose failures are swallowed: a step that fails has no effect, the next one runs, and
/// `IsSet` tells whether any failed so far.
class CPendingFailure {
 public:
  template <class Step>
  void Try(Step&& step) noexcept {
    try {
      std::forward<Step>(step)();
    } catch (...) {
      set_ = true;
    }
  }

  bool IsSet() const { return set_; }

 private:
  bool set_ = false;
};

}  // namespace vane
