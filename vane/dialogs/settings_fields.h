// The fields of the dialog of the instrument's settings, as their rows have them, with the tabs on
// which they lie; and what is done with a field whatever it is of: caption, use, loading,
// gathering.
#pragma once

#include <array>
#include <memory>

#include "vane/components/form.h"
#include "vane/dialogs/number_field.h"
#include "vane/dialogs/settings_rows.h"

namespace vane {

class CSettingsFields {
 public:
  /// Adds to `frame` what stands above the tabs, the tabs, and a frame for each of them, all with
  /// the controls of their rows.
  CSettingsFields(ui::CForm& form, ui::CFrame& frame);
  CSettingsFields(const CSettingsFields&) = delete;
  CSettingsFields& operator=(const CSettingsFields&) = delete;

  void LoadCaptions();

  void SelectTab(ESettingsTab tab);
  /// Of the selected tab, and no other.
  void ShowFrame();

  ui::CLabel& Label(ESettingsField field) const { return *At(field).label; }
  ui::CItemList& List(ESettingsField field) const { return Find<ui::CItemList>(field); }
  CNumberField& Number(ESettingsField field) const { return *At(field).number; }
  ui::CUpDown& UpDown(ESettingsField field) const { return *At(field).updown; }
  template <class Control>
  Control& Find(ESettingsField field) const {
    return dynamic_cast<Control&>(*At(field).control);
  }

  /// All controls of a field: its label, itself, its up-down.
  void Enable(ESettingsField field, bool enabled);
  bool IsEnabled(ESettingsField field) const { return At(field).control->Enabled(); }
  bool HasSelection(ESettingsField field) const { return List(field).ListIndex() >= 0; }

  /// Fills, limits and shows a field from the object. A list is left without a selection when it
  /// has no entry for the stored value, and a list without a property always.
  void Load(ESettingsField field, const CVaneT312B& instrument);

  /// Writes what a field shows into its property.
  void Gather(ESettingsField field, CVaneT312B& instrument) const;

 private:
  struct Field {
    ui::CLabel* label = nullptr;
    ui::CControl* control = nullptr;
    ui::CUpDown* updown = nullptr;
    std::unique_ptr<CNumberField> number;
  };

  void AddRows(ui::CForm& form, ui::CFrame& frame, ESettingsTab tab);
  void AddRow(ui::CForm& form, ui::CFrame& frame, const FieldRow& row);

  const Field& At(ESettingsField field) const {
    return fields_.at(static_cast<std::size_t>(field));
  }

  std::array<Field, static_cast<std::size_t>(ESettingsField::END)> fields_;
  ui::CTabStrip* tabs_ = nullptr;
  std::array<ui::CFrame*, static_cast<std::size_t>(ESettingsTab::END)> frames_{};
};

}  // namespace vane
