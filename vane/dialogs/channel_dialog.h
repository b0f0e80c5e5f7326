// The dialog in which a user edits one channel: the probe that it uses, and that probe's record.
//
// It reads the channel when it is first painted. What the user does to the fields reaches the
// channel object on Apply and OK; two choices reach it at once: another probe is read into it, and
// another type of conversion replaces the one that it has. All of it stands behind the instrument's
// protection of conversions.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vane/components/components.h"
#include "vane/dialogs/editing.h"
#include "vane/dialogs/number_field.h"
#include "vane/support/text_table.h"

namespace vane {

class CVaneT312B;
class CVaneT312BPRTTHRMChannel;

/// Loaded, handed its channel, shown and unloaded once, by `CVaneT312BPRTTHRMChannel::Edit`.
class frmT312BPRTTHRMChannel {
 public:
  explicit frmT312BPRTTHRMChannel(const Components& components);
  frmT312BPRTTHRMChannel(const frmT312BPRTTHRMChannel&) = delete;
  frmT312BPRTTHRMChannel& operator=(const frmT312BPRTTHRMChannel&) = delete;

  ui::CForm& Form() { return *form_; }

  /// Of the window and of the frame in it.
  void SetTitle(const std::string& title);

  /// The channel outlives the dialog's unloading.
  void SetChannel(CVaneT312BPRTTHRMChannel& channel) { channel_ = &channel; }

  /// Modal. False when the user has left it with Cancel.
  bool Show(ui::CWindow* owner);

 private:
  // A field behind the protection, with its label.
  struct Field {
    ui::CLabel& label;
    ui::CControl& control;
    EText text;
  };

  CVaneT312B& Instrument() const;

  void LoadCaptions();
  void PaintFirst();
  void ShowFrameOfTab();
  void PrepareFields();
  void LoadFields(bool reloadprobes);
  void EnableChannelFields(bool enabled);
  void UpdateConversionButton();
  void CloseProtection();

  void ChooseProbe();
  void ChooseConversionType();
  void EditProtected();
  bool GatherSettings();
  bool ValidateSettings();
  void Apply();
  void AcceptAndClose();
  void Cancel();

  CVaneT312BPRTTHRMChannel* channel_ = nullptr;
  bool loading_ = false;  // lists are filled by the dialog itself: their events stay out
  bool cancelled_ = false;

  std::unique_ptr<ui::CForm> form_;
  ui::CFrame& frame_;
  ui::CLabel& lblprobeselection_;
  ui::CDropDown& probeselection_;
  ui::CTabStrip& tabs_;
  ui::CFrame& probeframe_;
  ui::CLabel& lblserial_;
  ui::CTextField& serial_;
  ui::CLabel& lblreference_;
  ui::CDropDown& reference_;
  ui::CLabel& lblcurrent_;
  ui::CTextField& txtcurrent_;
  ui::CLabel& lbloffset_;
  ui::CTextField& txtoffset_;
  ui::CLabel& lblconversiontype_;
  ui::CDropDown& conversiontype_;
  ui::CButton& conversionsettings_;
  ui::CLabel& protectednotice_;
  ui::CButton& editprotected_;
  ui::CButton& apply_;
  ui::CButton& ok_;
  ui::CButton& cancel_;
  ui::CButton& help_;
  CNumberField current_;
  CNumberField offset_;
  const std::vector<Field> fields_;
};

}  // namespace vane
