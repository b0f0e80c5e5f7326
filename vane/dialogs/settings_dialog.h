// The dialog in which a user edits all settings of the instrument.
//
// It is a view on the instrument object: it reads the instrument when it is first painted, shows
// what the object holds, and writes the fields into the object, and the object to the instrument,
// on Apply and OK. What the instrument protects can be edited once its passcode has been given.
#pragma once

#include <array>
#include <memory>

#include "vane/components/components.h"
#include "vane/dialogs/scan_sequence.h"
#include "vane/dialogs/settings_fields.h"

namespace vane {

class CVaneT312B;

/// Loaded, handed its instrument, shown and unloaded once, by `CVaneT312B::Edit`.
class frmT312BSettings {
 public:
  explicit frmT312BSettings(const Components& components);
  frmT312BSettings(const frmT312BSettings&) = delete;
  frmT312BSettings& operator=(const frmT312BSettings&) = delete;

  ui::CForm& Form() { return *form_; }

  /// The instrument outlives the dialog's unloading.
  void SetInstrument(CVaneT312B& instrument) { instrument_ = &instrument; }

  /// Modal. False when the user has left it with Cancel.
  bool Show(ui::CWindow* owner);

 private:
  // One for each group of the passcode.
  using Groups = std::array<bool, static_cast<std::size_t>(EProtectedGroup::END)>;

  void LoadCaptions();
  void PaintFirst();
  void LoadFields();
  void EnableScannerFields(bool enabled);
  void LoadPasscodeState();
  void ApplyPasscodeStates(const Groups& open);
  void EnablePasscodeStates();
  void ShowNotices(const Groups& shut);
  void EnforceTimingOrder();

  void EditProtected();
  void EditChannel();
  bool GatherSettings();
  bool ValidateSettings();
  void Apply();
  void AcceptAndClose();
  void Cancel();

  CVaneT312B* instrument_ = nullptr;
  bool cancelled_ = false;

  std::unique_ptr<ui::CForm> form_;
  ui::CFrame& frame_;
  CSettingsFields fields_;
  CScanSequence sequence_;
  ui::CButton& editprotected_;
  ui::CButton& apply_;
  ui::CButton& ok_;
  ui::CButton& cancel_;
  ui::CButton& help_;
};

}  // namespace vane
