// Windows on a terminal: a form is printed as text, and the user answers with a line.
//
// Made for the small dialogs of a run: labels, a list to choose from, check boxes and one button
// that closes the window. Any other kind of control is refused. Where there is no terminal to ask
// on, the window shows itself and closes at once, as if its default button had been pressed.
#pragma once

#include <string>

#include "adapters/terminal/interrupts.h"
#include "vane/components/form.h"
#include "vane/components/user.h"

namespace vane {

class CTerminalView final : public ui::CFormView {
 public:
  /// `interrupts` outlives the view; the descriptors stay the host's.
  explicit CTerminalView(CInterrupts& interrupts, int input = 0, int output = 2)
      : interrupts_(interrupts), input_(input), output_(output) {}

  void Load(ui::CForm& form) override;
  /// Nothing: the window is printed anew when it has been answered.
  void Changed(ui::CControl&, ui::EAspect) override {}
  void RunModal(ui::CForm& form, ui::CWindow* owner) override;

 private:
  /// Does what the line asks for; false when it asks for nothing that is there.
  bool Obey(ui::CUser& user, const std::string& line);

  CInterrupts& interrupts_;
  const int input_;
  const int output_;
};

}  // namespace vane
