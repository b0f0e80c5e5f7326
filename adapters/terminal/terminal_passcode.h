// The passcode prompt of a program in a terminal, and its stand-in for scripts.
//
// Lives on the user-interface thread. What is typed is never shown, and nothing of it stays here
// once the caller has it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "adapters/posix/patience.h"
#include "adapters/terminal/interrupts.h"
#include "vane/components/passcode_dialog.h"

namespace vane {

/// `source` as the number of a descriptor, if it is one, or "-" for standard input; anything else
/// is the path of a file. A file of such a name is "./3".
std::optional<int> DescriptorNumber(const std::string& source);

class CTerminalPasscodeDialog final : public CVanePasscodeDialog {
 public:
  /// `interrupts` outlives the dialog; the descriptors stay the host's. With `source`, the passcode
  /// is the first line of that file or descriptor, and nobody is asked; `patience` says how long a
  /// pipe there is waited for. An interrupt ends each wait. `tell` gets why there is no passcode;
  /// without it, the output does.
  explicit CTerminalPasscodeDialog(CInterrupts& interrupts, std::string source = {}, int input = 0,
                                   int output = 2, Patience patience = {},
                                   std::function<void(const std::string&)> tell = {});

  void SetHelpFile(const std::string&) override {}  // a prompt has no place for help

  /// Asks on the terminal without echo. An empty line, the end of the input and an interrupt, which
  /// stays pending, cancel; so does a host without a terminal on both descriptors. Which it was is
  /// told.
  ///
  /// A source is used up by the first call: asked again, it cancels, so that a wrong passcode in a
  /// script ends. One that can't be read raises `std::runtime_error`.
  bool ShowDialog(std::string& entered, ui::CWindow* owner) override;

 private:
  bool AskOnTerminal(std::string& entered);
  bool TakeFromSource(std::string& entered);
  bool Cancel(const std::string& why);

  const std::string source_;
  const int input_;
  const int output_;
  Patience patience_;
  const std::function<void(const std::string&)> tell_;
  bool sourceused_ = false;
};

}  // namespace vane
