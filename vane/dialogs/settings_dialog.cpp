#include "vane/dialogs/settings_dialog.h"

#include <algorithm>
#include <functional>

#include "vane/dialogs/editing.h"
#include "vane/dialogs/settings_rules.h"
#include "vane/dialogs/user_guard.h"
#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/failure.h"
#include "vane/support/field_editing.h"
#include "vane/support/messages.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

using ui::EButtonRole;
using enum ESettingsField;
using enum ET312BPasscodeState;

constexpr char kUnassigned[] = "-1";

// A group of the passcode, by what the instrument object holds of it.
struct GroupRow {
  EProtectedGroup group;
  bool (CVaneT312B::*isprotected)() const;
  ET312BPasscodeState (CVaneT312B::*state)() const;
  void (CVaneT312B::*setstate)(ET312BPasscodeState value);
};

constexpr GroupRow kGroupRows[] = {
    {EProtectedGroup::UNITS, &CVaneT312B::ProtectUnitsTime, &CVaneT312B::UnitsTimePasscodeState,
     &CVaneT312B::SetUnitsTimePasscodeState},
    {EProtectedGroup::SAMPLING, &CVaneT312B::ProtectSampling, &CVaneT312B::SamplingPasscodeState,
     &CVaneT312B::SetSamplingPasscodeState},
    {EProtectedGroup::CALIBRATION, &CVaneT312B::ProtectCalParams,
     &CVaneT312B::CalParamPasscodeState, &CVaneT312B::SetCalParamPasscodeState},
    {EProtectedGroup::CONVERSION, &CVaneT312B::ProtectConversion, &CVaneT312B::ConvPasscodeState,
     &CVaneT312B::SetConvPasscodeState},
};

template <class Flags>
auto& Of(Flags& flags, EProtectedGroup group) {
  return flags[static_cast<std::size_t>(group)];
}

}  // namespace

frmT312BSettings::frmT312BSettings(const Components& components)
    : form_(components.factory.MakeForm("frmT312BSettings")),
      frame_(form_->Add<ui::CFrame>("framT312BSettings")),
      fields_(*form_, frame_),
      sequence_(fields_.Find<ui::CListBox>(SEQUENCE), fields_.UpDown(STEPS).Field(),
                fields_.Find<ui::CDropDown>(SELECTED_CHANNEL)),
      editprotected_(form_->Add<ui::CButton>("cmdEditProtected")),
      apply_(form_->Add<ui::CButton>("cmdApply")),
      ok_(form_->Add<ui::CButton>("cmdOKCancelHelp(0)", nullptr, EButtonRole::DEFAULT)),
      cancel_(form_->Add<ui::CButton>("cmdOKCancelHelp(1)", nullptr, EButtonRole::CANCEL)),
      help_(form_->Add<ui::CButton>("cmdOKCancelHelp(2)", nullptr, EButtonRole::HELP)) {
  GuardEvents(*form_);
  form_->OnLoad([this] { LoadCaptions(); });
  form_->OnFirstPaint([this] { PaintFirst(); });
  form_->OnUnload([this] {
    if (instrument_ != nullptr) SavePlacement(instrument_->Registry(), *form_);
    instrument_ = nullptr;
  });
  for (const ESettingsField list :
       {FILTER_TYPE, SAMPLE_ACTION, CHANNEL_MODE, SCAN_MODE, CHANNELS}) {
    fields_.List(list).OnClick([this, list] { FollowChoice(fields_, list); });
  }
  sequence_.OnSelected([this] { FollowChoice(fields_, SEQUENCE); });
  for (const ESettingsField time : {INTERVAL, INTEGRATION_TIME, CONVERSION_TIME}) {
    fields_.Number(time).OnSettled([this] { EnforceTimingOrder(); });
  }
  fields_.Find<ui::CButton>(CHANNEL_SETTINGS).OnClick([this] { EditChannel(); });
  editprotected_.OnClick([this] { EditProtected(); });
  apply_.OnClick([this] { Apply(); });
  ok_.OnClick([this] { AcceptAndClose(); });
  cancel_.OnClick([this] { Cancel(); });
  help_.OnClick([this] { ShowHelpTopic(form_->HelpContext()); });
}

bool frmT312BSettings::Show(ui::CWindow* owner) {
  form_->ShowModal(owner);
  return !cancelled_;
}

void frmT312BSettings::LoadCaptions() {
  form_->SetCaption(ResourceText(EText::T312B_SETTINGS));
  frame_.SetCaption(WithColon(EText::T312B_SETTINGS));
  fields_.LoadCaptions();
  editprotected_.SetCaption(ResourceText(EText::EDIT));
  apply_.SetCaption(ResourceText(EText::APPLY));
  ok_.SetCaption(ResourceText(EText::OK));
  cancel_.SetCaption(ResourceText(EText::CANCEL));
  help_.SetCaption(ResourceText(EText::HELP));
}

void frmT312BSettings::PaintFirst() {
  CReadingSteps steps(*form_, ok_, apply_);
  steps.Do([&] { fields_.ShowFrame(); });
  steps.Do([&] { form_->DrawNow(); });
  steps.Do([&] { form_->SetEnabled(false); });
  if (steps.Succeeds([&] { return instrument_->QueryInfo(form_.get(), true, false); })) {
    steps.Do([&] {
      form_->SetEnabled(true);
      LoadFields();
      instrument_->SetChanged(false);
    });
  } else {
    steps.TellUnable();
  }
}

void frmT312BSettings::LoadFields() {
  const CVaneT312B& instrument = *instrument_;
  for (const ESettingsField field : FieldsToLoad()) fields_.Load(field, instrument);
  if (instrument.HasScanners()) {
    for (const ESettingsField field : ScannerFieldsToLoad()) fields_.Load(field, instrument);
    fields_.Load(SEQUENCE, instrument);
    sequence_.ShowStep();
    fields_.Load(SELECTED_CHANNEL, instrument);
  } else {
    EnableScannerFields(false);
  }
  fields_.Load(CHANNELS, instrument);
  FollowChoice(fields_, CHANNELS);
  for (const ESettingsField field : CalibrationFieldsToLoad()) fields_.Load(field, instrument);
  LoadPasscodeState();
}

void frmT312BSettings::EnableScannerFields(bool enabled) {
  for (const FieldRow& row : SettingsRows()) {
    if (row.ofscanner) fields_.Enable(row.id, enabled);
  }
}

void frmT312BSettings::LoadPasscodeState() {
  Groups guarded{};
  Groups open{};
  for (const GroupRow& row : kGroupRows) {
    Of(guarded, row.group) = (instrument_->*row.isprotected)();
    Of(open, row.group) = (instrument_->*row.state)() == PS_ENABLED;
  }
  if (std::ranges::any_of(guarded, std::identity())) {
    ApplyPasscodeStates(open);
  } else {
    ShowNotices(guarded);
    EnablePasscodeStates();
    editprotected_.SetVisible(false);
  }
}

void frmT312BSettings::EnablePasscodeStates() {
  for (const GroupRow& row : kGroupRows) (instrument_->*row.setstate)(PS_ENABLED);
}

void frmT312BSettings::ApplyPasscodeStates(const Groups& open) {
  Groups shut{};
  std::ranges::transform(open, shut.begin(), std::logical_not());
  ShowNotices(shut);
  for (const FieldRow& row : SettingsRows()) {
    if (row.group != EProtectedGroup::NONE) fields_.Enable(row.id, Of(open, row.group));
  }
  editprotected_.SetEnabled(std::ranges::any_of(shut, std::identity()));
}

void frmT312BSettings::ShowNotices(const Groups& shut) {
  using Group = EProtectedGroup;
  fields_.Label(SAMPLING_NOTICE).SetVisible(Of(shut, Group::UNITS) || Of(shut, Group::SAMPLING));
  fields_.Label(CALIBRATION_NOTICE)
      .SetVisible(Of(shut, Group::CALIBRATION) || Of(shut, Group::CONVERSION));
}

void frmT312BSettings::EnforceTimingOrder() {
  const auto shown = [&](ESettingsField field) {
    return ToLong(NumberFromText(fields_.Number(field).Field().Text()));
  };
  const std::int32_t interval = shown(INTERVAL);
  const std::int32_t integrationbefore = shown(INTEGRATION_TIME);
  const std::int32_t conversionbefore = shown(CONVERSION_TIME);
  std::int32_t integration = integrationbefore;
  std::int32_t conversion = conversionbefore;
  if (integration > interval) {
    integration = std::min<std::int32_t>(interval, CVaneT312B::MaxIntegrationTime());
  }
  if (conversion > integration) {
    conversion = std::min<std::int32_t>(integration, CVaneT312B::MaxConversionTime());
  }
  if (conversion != conversionbefore) fields_.Number(CONVERSION_TIME).Show(conversion);
  if (integration != integrationbefore) fields_.Number(INTEGRATION_TIME).Show(integration);
}

void frmT312BSettings::EditProtected() {
  if (!instrument_->ValidatePasscode(form_.get())) return;
  EnablePasscodeStates();
  Groups open{};
  open.fill(true);
  ApplyPasscodeStates(open);
}

void frmT312BSettings::EditChannel() {
  AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_EDIT_CHANNEL); },
             [&] {
               ui::CItemList& channels = fields_.List(CHANNELS);
               const std::int32_t index = channels.ListIndex();
               instrument_->EditChannel(ToInteger(SelectedCode(channels)));
               fields_.Load(CHANNELS, *instrument_);  // another probe shows
               channels.SetListIndex(index);
               FollowChoice(fields_, CHANNELS);
               return true;
             });
}

bool frmT312BSettings::GatherSettings() {
  return AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_GATHER_SETTINGS); },
                    [&] {
                      for (const ESettingsField field : FieldsToGather()) {
                        const FieldRow& row = SettingsRows()[static_cast<std::size_t>(field)];
                        if (row.ofscanner && !instrument_->HasScanners()) continue;
                        if (field == SEQUENCE) {
                          instrument_->SetScanChannels(sequence_.ScanChannels());
                        } else {
                          fields_.Gather(field, *instrument_);
                        }
                      }
                      return true;
                    });
}

bool frmT312BSettings::ValidateSettings() {
  return AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_VALIDATE_SETTINGS); },
                    [&] {
                      if (instrument_->ScanChannels().find(kUnassigned) == std::string::npos &&
                          !(instrument_->HasScanners() && sequence_.LacksChannel())) {
                        return true;
                      }
                      ShowMessage(ResourceText(EText::EVERY_STEP_NEEDS_A_CHANNEL));
                      fields_.SelectTab(ESettingsTab::MEASUREMENT);
                      CPendingFailure ignored;
                      ignored.Try([&] { form_->SetFocus(fields_.List(SEQUENCE)); });
                      return false;
                    });
}

void frmT312BSettings::Apply() {
  if (!GatherSettings() || !ValidateSettings()) return;
  if (!instrument_->Changed()) {
    ShowMessage(ResourceText(EText::NO_CHANGES_TO_APPLY));
    return;
  }
  if (!AskToWrite(EText::WISH_TO_WRITE_T312B) || !instrument_->UpdateInfo(form_.get(), false)) {
    return;
  }
  instrument_->SetChanged(false);
  if (instrument_->ReadAfterApply()) form_->PaintAnew();
}

void frmT312BSettings::AcceptAndClose() {
  if (!GatherSettings() || !ValidateSettings()) return;
  if (instrument_->Changed() && AskToWrite(EText::WISH_TO_WRITE_T312B) &&
      !instrument_->UpdateInfo(form_.get(), false)) {
    return;
  }
  form_->Hide();
}

void frmT312BSettings::Cancel() {
  cancelled_ = true;
  form_->Hide();
}

bool CVaneT312B::Edit() {
  return Labelled("CVaneT312B", "Edit", [&] {
    frmT312BSettings dialog(components_);
    const CLoadedForm loaded(dialog.Form());
    dialog.SetInstrument(*this);
    RestorePlacement(Registry(), dialog.Form());
    return dialog.Show(ui::CForm::Active());
  });
}

bool CVaneT312B::EditChannel(std::int16_t chnidx) {
  return Labelled("CVaneT312B", "EditChannel", [&] {
    if (chnidx <= kNumInputs) {
      return ModuleOf(*this, 0).Channels(static_cast<std::int16_t>(chnidx - 1))->Edit();
    }
    for (auto idx = static_cast<std::int16_t>(NumModules() - 1); idx >= 1; --idx) {
      const CModule& module = ModuleOf(*this, idx);
      if (module.StartChannel() > chnidx) continue;
      return module.Channels(static_cast<std::int16_t>(chnidx - module.StartChannel()))->Edit();
    }
    return false;
  });
}

}  // namespace vane
