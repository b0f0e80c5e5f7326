#include "vane/dialogs/settings_fields.h"

#include <string>

#include "vane/dialogs/editing.h"
#include "vane/support/field_editing.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

const FieldRow& RowOf(ESettingsField field) {
  return SettingsRows()[static_cast<std::size_t>(field)];
}

constexpr EText kTabTexts[] = {EText::FILTERING, EText::SAMPLING, EText::MEASUREMENT,
                               EText::CHANNELS_TAB, EText::CALIBRATION};
constexpr char kCalibrationFrame[] = "Module Settings:";

}  // namespace

CSettingsFields::CSettingsFields(ui::CForm& form, ui::CFrame& frame) {
  AddRows(form, frame, ESettingsTab::NONE);
  tabs_ = &form.Add<ui::CTabStrip>("tabSettings", &frame);
  tabs_->OnClick([this] { ShowFrame(); });
  for (std::size_t i = 0; i < frames_.size(); ++i) {
    const auto tag = static_cast<std::int32_t>(i);
    tabs_->AddTab(tag);
    frames_[i] = &form.Add<ui::CFrame>("framSettings(" + std::to_string(i) + ")", &frame);
    AddRows(form, *frames_[i], ESettingsTab{tag});
  }
}

void CSettingsFields::AddRows(ui::CForm& form, ui::CFrame& frame, ESettingsTab tab) {
  for (const FieldRow& row : SettingsRows()) {
    if (row.tab == tab) AddRow(form, frame, row);
  }
}

void CSettingsFields::AddRow(ui::CForm& form, ui::CFrame& frame, const FieldRow& row) {
  Field& field = fields_.at(static_cast<std::size_t>(row.id));
  const auto named = [&](const char* prefix) { return prefix + std::string(row.name); };
  const auto addlabel = [&](ui::ELabelStyle style) {
    field.label = &form.Add<ui::CLabel>("lbl" + std::string(row.labelname), &frame, style);
  };
  switch (row.shape) {
    case EFieldShape::HEADING:
      addlabel(ui::ELabelStyle::HEADING);
      break;
    case EFieldShape::NOTICE:
      addlabel(ui::ELabelStyle::NOTICE);
      break;
    case EFieldShape::READ_ONLY:
      addlabel(ui::ELabelStyle::PLAIN);
      field.control = &form.Add<ui::CTextField>(named("txt"), &frame, true);
      field.control->OnGotFocus([] { SelectActiveText(); });
      break;
    case EFieldShape::NUMBER:
    case EFieldShape::STEPPED: {
      addlabel(ui::ELabelStyle::PLAIN);
      auto& text = form.Add<ui::CTextField>(named("txt"), &frame);
      field.control = &text;
      if (row.shape == EFieldShape::STEPPED) {
        field.updown = &form.Add<ui::CUpDown>(named("ud"), &frame, text);
      }
      field.number = std::make_unique<CNumberField>(text, row.kind, row.filter, field.updown);
      break;
    }
    case EFieldShape::CHOICE:
      addlabel(ui::ELabelStyle::PLAIN);
      field.control = &form.Add<ui::CDropDown>(named("cbo"), &frame);
      break;
    case EFieldShape::LIST:
      addlabel(ui::ELabelStyle::PLAIN);
      field.control = &form.Add<ui::CListBox>(named("lst"), &frame);
      break;
    case EFieldShape::BUTTON:
      field.control = &form.Add<ui::CButton>(named("cmd"), &frame);
      break;
  }
}

void CSettingsFields::LoadCaptions() {
  for (const FieldRow& row : SettingsRows()) {
    const Field& field = At(row.id);
    if (row.shape == EFieldShape::BUTTON) {
      field.control->SetCaption(ResourceText(row.label));
    } else {
      field.label->SetCaption(row.shape == EFieldShape::NOTICE ? ResourceText(row.label)
                                                               : WithColon(row.label));
    }
  }
  for (std::int32_t i = 0; i < tabs_->Count(); ++i) {
    tabs_->SetTabText(i, ResourceText(kTabTexts[i]));
  }
  frames_.back()->SetCaption(kCalibrationFrame);
}

void CSettingsFields::SelectTab(ESettingsTab tab) {
  tabs_->Select(static_cast<std::int32_t>(tab));
  ShowFrame();
}

void CSettingsFields::ShowFrame() {
  for (std::int32_t i = 0; i < tabs_->Count(); ++i) {
    frames_.at(static_cast<std::size_t>(tabs_->TabTag(i)))->SetVisible(i == tabs_->Selected());
  }
}

void CSettingsFields::Enable(ESettingsField field, bool enabled) {
  const Field& at = At(field);
  for (ui::CControl* control :
       {static_cast<ui::CControl*>(at.label), at.control, static_cast<ui::CControl*>(at.updown)}) {
    if (control != nullptr) control->SetEnabled(enabled);
  }
}

void CSettingsFields::Load(ESettingsField field, const CVaneT312B& instrument) {
  const FieldRow& row = RowOf(field);
  if (row.text != nullptr) Find<ui::CTextField>(field).SetText(row.text(instrument));
  if (row.fill != nullptr) {
    ui::CItemList& list = List(field);
    row.fill(instrument, list);
    if (row.property.get != nullptr) SelectItemByData(list, ToLong(row.property.get(instrument)));
  }
  if (row.limits == nullptr) return;
  const FieldLimits limits = row.limits(instrument);
  if (row.shape == EFieldShape::STEPPED) {
    UpDown(field).SetRange(ToLong(limits.minimum), ToLong(limits.maximum), 1);
  } else {
    Number(field).SetLimits(limits.minimum, limits.maximum, row.format(instrument));
  }
  Number(field).Show(row.property.get(instrument));
}

void CSettingsFields::Gather(ESettingsField field, CVaneT312B& instrument) const {
  const FieldRow& row = RowOf(field);
  row.property.set(instrument, row.shape == EFieldShape::CHOICE
                                   ? SelectedCode(List(field))
                                   : row.gathered(Number(field).Field().Text()));
}

}  // namespace vane
