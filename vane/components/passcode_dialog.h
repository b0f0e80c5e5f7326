// The passcode prompt.
//
// A passcode check makes one through `CComponentFactory` and asks it until the user gives the right
// passcode or gives up. Lives on the user-interface thread.
#pragma once

#include <string>

namespace vane {

namespace ui {
class CWindow;
}

class CVanePasscodeDialog {
 public:
  virtual ~CVanePasscodeDialog() = default;

  virtual void SetHelpFile(const std::string& file) = 0;

  /// Modal. True with the typed text in `entered`; false when the user cancels. The implementer
  /// shows no typed character and keeps none.
  virtual bool ShowDialog(std::string& entered, ui::CWindow* owner) = 0;
};

}  // namespace vane
