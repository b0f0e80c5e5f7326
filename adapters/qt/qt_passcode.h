// The passcode prompt in a window: no character of it is shown or kept.
#pragma once

#include <string>

#include "vane/components/passcode_dialog.h"

namespace vane {

class CQtPasscodeDialog final : public CVanePasscodeDialog {
 public:
  void SetHelpFile(const std::string& file) override { helpfile_ = file; }

  /// What was typed is overwritten in the window's own memory before this returns; the copy in
  /// `entered` is the caller's.
  bool ShowDialog(std::string& entered, ui::CWindow* owner) override;

 private:
  std::string helpfile_;
};

}  // namespace vane
