// Windows on a terminal: a form is printed as text, and the user answers with a line.
//
// Made for the small dialogs of a run: labels, a list to choose from, check boxes and one button
// that closes the window. Where there is no terminal to ask on, the window shows itself and closes
// at once, as if its default button had been pressed.
#pragma once

#include <string>

#include "adapters/terminal/interrupts.h"
#include "vane/components/ui.h"

namespace vane {

class CTerminalForm final : public ui::CForm {
 public:
  /// `interrupts` outlives the form; the descriptors stay the host's.
  CTerminalForm(CInterrupts& interrupts, const std::string& name, int input = 0, int output = 2)
      : CForm(name), interrupts_(interrupts), input_(input), output_(output) {}

 private:
  void RunModal(ui::CWindow* owner) override;

  std::string Text() const;
  std::string Question() const;
  /// Does what the line asks for; false when it asks for nothing that is there.
  bool Obey(const std::string& line);
  void ClickDefault();

  CInterrupts& interrupts_;
  const int input_;
  const int output_;
};

}  // namespace vane
