// The platform of a program in a terminal: messages and questions as text, no windows, no cursor,
// no help viewer.
//
// Lives on the user-interface thread. Everything for the user goes to the output descriptor, which
// is standard error unless the host says otherwise, so that standard output stays free for data.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "adapters/posix/machine_platform.h"
#include "adapters/terminal/interrupts.h"

namespace vane {

class CTerminalPlatform : public CMachinePlatform {
 public:
  /// `interrupts` outlives the platform; the descriptors stay the host's.
  explicit CTerminalPlatform(CInterrupts& interrupts, int input = 0, int output = 2);

  /// What one pass of the message queue does for each interrupt that came since the last pass;
  /// empty for nothing. It runs inside the library's waits and shouldn't call the library.
  void SetInterruptHandler(std::function<void()> handler) { handler_ = std::move(handler); }

  /// Prints "title: kind", the text, and the help topic if there is one. Only a question waits. It
  /// asks until it reads "y", "yes", "n" or "no"; without a terminal on both descriptors, at the
  /// end of the input and while an interrupt is pending the answer is No, and the output says why.
  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;

  /// The text of a box without its buttons.
  static std::string BoxText(const std::string& text, const std::string& title, std::int32_t flags,
                             const std::string& helpfile, std::int32_t helpcontext);

  void SetBusyCursor(bool) override {}

  /// Sleeps the whole time unless an interrupt comes.
  void RunMessageQueue(std::uint32_t longestwait) override;

  /// Names the topic instead of showing it; always succeeds.
  std::int32_t OpenHelp(const std::string& helpfile, std::int32_t command,
                        std::int32_t data) override;

 private:
  EBoxButton Ask();

  CInterrupts& interrupts_;
  int input_;
  int output_;
  std::function<void()> handler_;
};

}  // namespace vane
