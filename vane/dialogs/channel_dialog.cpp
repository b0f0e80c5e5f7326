#include "vane/dialogs/channel_dialog.h"

#include "vane/channels/channel.h"
#include "vane/channels/probe_exchange.h"
#include "vane/dialogs/user_guard.h"
#include "vane/instrument/t312b.h"
#include "vane/support/failure.h"
#include "vane/support/field_editing.h"
#include "vane/support/messages.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

using ui::EButtonRole;

constexpr char kProbeFrame[] = "Probe Settings:";
constexpr std::int32_t kProbeTab = 0;

std::int32_t Code(ET312BProbeRefResistor value) { return static_cast<std::int32_t>(value); }
std::int32_t Code(EVaneConversionType value) { return static_cast<std::int32_t>(value); }

// "Channel 2 Settings", "Scanner Channel 1 Settings".
std::string TitleOf(const CVaneT312BPRTTHRMChannel& channel) {
  const std::int16_t number = channel.ActualChannel();
  const std::string text = ResourceText(EText::CHANNEL_N_SETTINGS);
  if (number <= kNumInputs) return SubstituteParams(text, std::to_string(number));
  return SubstituteParams(ResourceText(EText::SCANNER) + " " + text,
                          std::to_string(ScannerChannel(number)));
}

}  // namespace

frmT312BPRTTHRMChannel::frmT312BPRTTHRMChannel(const Components& components)
    : form_(components.factory.MakeForm("frmT312BPRTTHRMChannel")),
      frame_(form_->Add<ui::CFrame>("framChannelSettings")),
      lblprobeselection_(form_->Add<ui::CLabel>("lblProbeSelection", &frame_)),
      probeselection_(form_->Add<ui::CDropDown>("cboProbeSelection", &frame_)),
      tabs_(form_->Add<ui::CTabStrip>("tabSettings", &frame_)),
      probeframe_(form_->Add<ui::CFrame>("framSettings(0)", &frame_)),
      lblserial_(form_->Add<ui::CLabel>("lblProbeSerial", &probeframe_)),
      serial_(form_->Add<ui::CTextField>("txtProbeSerial", &probeframe_)),
      lblreference_(form_->Add<ui::CLabel>("lblReference", &probeframe_)),
      reference_(form_->Add<ui::CDropDown>("cboReference", &probeframe_)),
      lblcurrent_(form_->Add<ui::CLabel>("lblCurrent", &probeframe_)),
      txtcurrent_(form_->Add<ui::CTextField>("txtCurrent", &probeframe_)),
      lbloffset_(form_->Add<ui::CLabel>("lbl3WireOffset", &probeframe_)),
      txtoffset_(form_->Add<ui::CTextField>("txt3WireOffset", &probeframe_)),
      lblconversiontype_(form_->Add<ui::CLabel>("lblConversionType", &probeframe_)),
      conversiontype_(form_->Add<ui::CDropDown>("cboConversionType", &probeframe_)),
      conversionsettings_(form_->Add<ui::CButton>("cmdConversionSettings", &probeframe_)),
      protectednotice_(
          form_->Add<ui::CLabel>("lblPasscodeProtected", &probeframe_, ui::ELabelStyle::NOTICE)),
      editprotected_(form_->Add<ui::CButton>("cmdEditProtected")),
      apply_(form_->Add<ui::CButton>("cmdApply")),
      ok_(form_->Add<ui::CButton>("cmdOKCancelHelp(0)", nullptr, EButtonRole::DEFAULT)),
      cancel_(form_->Add<ui::CButton>("cmdOKCancelHelp(1)", nullptr, EButtonRole::CANCEL)),
      help_(form_->Add<ui::CButton>("cmdOKCancelHelp(2)", nullptr, EButtonRole::HELP)),
      current_(txtcurrent_, EFieldKind::REAL, FilterRealKey),
      offset_(txtoffset_, EFieldKind::REAL, FilterRealKey),
      fields_{{lblprobeselection_, probeselection_, EText::PROBE_SELECTION},
              {lblserial_, serial_, EText::PROBE_SERIAL_NUMBER},
              {lblreference_, reference_, EText::REFERENCE},
              {lblcurrent_, txtcurrent_, EText::CURRENT},
              {lbloffset_, txtoffset_, EText::OFFSET_3W},
              {lblconversiontype_, conversiontype_, EText::CONVERSION_TYPE}} {
  GuardEvents(*form_);
  tabs_.AddTab(kProbeTab);
  form_->OnLoad([this] { LoadCaptions(); });
  form_->OnFirstPaint([this] { PaintFirst(); });
  form_->OnUnload([this] {
    if (channel_ != nullptr) SavePlacement(channel_->Registry(), *form_);
    channel_ = nullptr;
  });
  tabs_.OnClick([this] { ShowFrameOfTab(); });
  serial_.OnGotFocus([] { SelectActiveText(); });
  serial_.OnKeyPress(FilterSerialKey);
  probeselection_.OnClick([this] { ChooseProbe(); });
  probeselection_.SetCommand(true);
  conversiontype_.OnClick([this] { ChooseConversionType(); });
  // Not while a write walks over the conversion that a choice would replace.
  conversiontype_.SetCommand(true);
  conversionsettings_.OnClick([this] { channel_->Probe()->Conversion().EditSettings(); });
  editprotected_.OnClick([this] { EditProtected(); });
  apply_.OnClick([this] { Apply(); });
  ok_.OnClick([this] { AcceptAndClose(); });
  cancel_.OnClick([this] { Cancel(); });
  help_.OnClick([this] { ShowHelpTopic(form_->HelpContext()); });
}

CVaneT312B& frmT312BPRTTHRMChannel::Instrument() const { return InstrumentOf(*channel_); }

void frmT312BPRTTHRMChannel::SetTitle(const std::string& title) {
  form_->SetCaption(title);
  frame_.SetCaption(title + ":");
}

bool frmT312BPRTTHRMChannel::Show(ui::CWindow* owner) {
  form_->ShowModal(owner);
  return !cancelled_;
}

void frmT312BPRTTHRMChannel::LoadCaptions() {
  for (const Field& field : fields_) field.label.SetCaption(WithColon(field.text));
  tabs_.SetTabText(0, ResourceText(EText::PROBE_TAB));
  probeframe_.SetCaption(kProbeFrame);
  conversionsettings_.SetCaption(ResourceText(EText::CONVERSION_SETTINGS));
  protectednotice_.SetCaption(ResourceText(EText::CONVERSION_IS_PROTECTED));
  editprotected_.SetCaption(ResourceText(EText::EDIT));
  apply_.SetCaption(ResourceText(EText::APPLY));
  ok_.SetCaption(ResourceText(EText::OK));
  cancel_.SetCaption(ResourceText(EText::CANCEL));
  help_.SetCaption(ResourceText(EText::HELP));
}

void frmT312BPRTTHRMChannel::PaintFirst() {
  CReadingSteps steps(*form_, ok_, apply_);
  steps.Do([&] { PrepareFields(); });
  steps.Do([&] { ShowFrameOfTab(); });
  steps.Do([&] { form_->DrawNow(); });
  steps.Do([&] { form_->SetEnabled(false); });
  if (steps.Succeeds([&] { return channel_->QueryInfo(form_.get()); })) {
    steps.Do([&] {
      LoadFields(true);
      channel_->SetChanged(false);
    });
  } else {
    steps.TellUnable();
  }
}

void frmT312BPRTTHRMChannel::ShowFrameOfTab() {
  probeframe_.SetVisible(tabs_.TabTag(tabs_.Selected()) == kProbeTab);
}

void frmT312BPRTTHRMChannel::PrepareFields() {
  serial_.SetMaxLength(CVaneT312BPRTTHRMChannel::MaxSerialLength());
  current_.SetLimits(CVaneT312BPRTTHRMChannel::MinProbeCurrent(),
                     CVaneT312BPRTTHRMChannel::MaxProbeCurrent(), channel_->ProbeCurrentFormat());
  offset_.SetLimits(CVaneT312BPRTTHRMChannel::MinProbe3WireOffset(),
                    CVaneT312BPRTTHRMChannel::MaxProbe3WireOffset(),
                    channel_->Probe3WireOffsetFormat());
  CVaneT312B& instrument = Instrument();
  protectednotice_.SetVisible(instrument.ProtectConversion());
  if (instrument.ProtectConversion()) {
    EnableChannelFields(instrument.ConvPasscodeState() == ET312BPasscodeState::PS_ENABLED);
  } else {
    editprotected_.SetVisible(false);
    instrument.SetConvPasscodeState(ET312BPasscodeState::PS_ENABLED);
  }
}

void frmT312BPRTTHRMChannel::LoadFields(bool reloadprobes) {
  if (reloadprobes) {
    const CStanding loading(loading_);
    Instrument().FillProbeNameList(probeselection_);
    SelectItemByData(probeselection_, channel_->ProbeIndex());
  }
  serial_.SetText(channel_->Probe()->SerialNumber());
  channel_->FillRefResistorList(reference_);
  SelectItemByData(reference_, Code(channel_->ProbeRefResistor()));
  current_.Show(channel_->ProbeCurrent());
  offset_.Show(channel_->Probe3WireOffset());
  {
    const CStanding loading(loading_);
    channel_->FillConversionTypeList(conversiontype_, false);
    SelectItemByData(conversiontype_, Code(channel_->Probe()->ConversionType()));
  }
  UpdateConversionButton();
}

void frmT312BPRTTHRMChannel::EnableChannelFields(bool enabled) {
  protectednotice_.SetVisible(!enabled);
  for (const Field& field : fields_) {
    field.label.SetEnabled(enabled);
    field.control.SetEnabled(enabled);
  }
  UpdateConversionButton();
  editprotected_.SetEnabled(!enabled);
}

void frmT312BPRTTHRMChannel::UpdateConversionButton() {
  if (conversiontype_.ListIndex() < 0) {
    conversionsettings_.SetEnabled(false);
    return;
  }
  CVaneProbe& probe = *channel_->Probe();
  conversionsettings_.SetEnabled(
      probe.ConversionHasSettings(EVaneConversionType{SelectedCode(conversiontype_)}));
  // Also while the values are protected: they can be looked at then.
  probe.Conversion().SetAllowEdit(Instrument().ConvPasscodeState() ==
                                  ET312BPasscodeState::PS_ENABLED);
}

void frmT312BPRTTHRMChannel::CloseProtection() {
  Instrument().SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  EnableChannelFields(false);
}

void frmT312BPRTTHRMChannel::ChooseProbe() {
  if (loading_) return;
  CReadingSteps steps(*form_, ok_, apply_);
  steps.Do([&] {
    const std::int16_t index = ToInteger(SelectedCode(probeselection_));
    form_->SetEnabled(false);
    if (channel_->QueryProbeInfo(index, form_.get())) {
      LoadFields(false);
    } else {
      steps.TellUnable();
    }
  });
}

void frmT312BPRTTHRMChannel::ChooseConversionType() {
  if (!loading_) {
    try {
      channel_->SetConversionType(EVaneConversionType{SelectedCode(conversiontype_)});
    } catch (...) {
      // The window shows the type that the probe has, so that the choice can be made again.
      const CStanding loading(loading_);
      conversiontype_.SetListIndex(-1);
      SelectItemByData(conversiontype_, Code(channel_->Probe()->ConversionType()));
      throw;
    }
  }
  UpdateConversionButton();
}

void frmT312BPRTTHRMChannel::EditProtected() {
  CVaneT312B& instrument = Instrument();
  if (!instrument.ValidatePasscode(form_.get())) return;
  instrument.SetConvPasscodeState(ET312BPasscodeState::PS_ENABLED);
  EnableChannelFields(true);
}

bool frmT312BPRTTHRMChannel::GatherSettings() {
  return AtBoundary(
      [] { return ResourceText(EText::ATTEMPTING_TO_GATHER_SETTINGS); },
      [&] {
        channel_->SetProbeIndex(ToInteger(SelectedCode(probeselection_)));
        channel_->Probe()->SetSerialNumber(serial_.Text());
        channel_->SetProbeRefResistor(ET312BProbeRefResistor{SelectedCode(reference_)});
        channel_->SetProbeCurrent(RealFromField(txtcurrent_.Text()));
        channel_->SetProbe3WireOffset(RealFromField(txtoffset_.Text()));
        return true;
      });
}

bool frmT312BPRTTHRMChannel::ValidateSettings() { return true; }

void frmT312BPRTTHRMChannel::Apply() {
  if (!GatherSettings() || !ValidateSettings()) return;
  if (!channel_->Changed()) {
    ShowMessage(ResourceText(EText::NO_CHANGES_TO_APPLY));
    return;
  }
  if (!AskToWrite(EText::WISH_TO_WRITE_CHANNEL) || !channel_->UpdateInfo(form_.get())) return;
  channel_->SetChanged(false);
  if (editprotected_.Visible()) CloseProtection();
  if (Instrument().ReadAfterApply()) form_->PaintAnew();
}

void frmT312BPRTTHRMChannel::AcceptAndClose() {
  cancelled_ = false;
  if (!GatherSettings() || !ValidateSettings()) return;
  if (channel_->Changed() && AskToWrite(EText::WISH_TO_WRITE_CHANNEL) &&
      !channel_->UpdateInfo(form_.get())) {
    return;
  }
  CloseProtection();
  form_->Hide();
}

void frmT312BPRTTHRMChannel::Cancel() {
  cancelled_ = true;
  try {
    CloseProtection();
  } catch (...) {
    form_->Hide();
    throw;
  }
  form_->Hide();
}

bool CVaneT312BPRTTHRMChannel::Edit() {
  return Labelled("frmT312BPRTTHRMChannel", "Edit", [&] {
    // Without one there is nothing to edit, and the window could not even close its protection.
    InstrumentOf(*this);
    frmT312BPRTTHRMChannel dialog(components_);
    const CLoadedForm loaded(dialog.Form());
    dialog.SetTitle(TitleOf(*this));
    RestorePlacement(Registry(), dialog.Form());
    dialog.SetChannel(*this);
    return dialog.Show(ui::CForm::Active());
  });
}

}  // namespace vane
