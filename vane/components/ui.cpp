#include "vane/components/ui.h"

#include <stdexcept>

namespace vane::ui {
namespace {

void Run(const Handler& handler) {
  if (handler) handler();
}

}  // namespace

void CButton::Click() {
  if (Enabled()) Run(click_);
}

void CCheckBox::Click() {
  if (!Enabled()) return;
  SetChecked(!Checked());
  Run(click_);
}

const CListBox::Item& CListBox::At(std::int32_t index) const {
  return items_.at(static_cast<std::size_t>(index));
}

void CListBox::Clear() {
  items_.clear();
  newindex_ = -1;
  Change(listindex_, -1);
}

void CListBox::AddItem(const std::string& text) {
  items_.push_back({text});
  Change(newindex_, ListCount() - 1);
}

void CListBox::SetItemData(std::int32_t index, std::int32_t value) {
  items_.at(static_cast<std::size_t>(index)).data = value;
}

void CListBox::SetListIndex(std::int32_t index) {
  if (index != -1) At(index);
  Change(listindex_, index);
  Run(click_);
}

void CListBox::DoubleClick(std::int32_t index) {
  if (!Enabled()) return;
  SetListIndex(index);
  Run(doubleclick_);
}

CLabel& CForm::AddLabel(const std::string& name) { return Keep(std::make_unique<CLabel>(name)); }

CListBox& CForm::AddListBox(const std::string& name) {
  return Keep(std::make_unique<CListBox>(name));
}

CCheckBox& CForm::AddCheckBox(const std::string& name) {
  return Keep(std::make_unique<CCheckBox>(name));
}

CButton& CForm::AddButton(const std::string& name) { return Keep(std::make_unique<CButton>(name)); }

CControl& CForm::FindControl(const std::string& name) const {
  for (const auto& control : controls_) {
    if (control->Name() == name) return *control;
  }
  throw std::invalid_argument("The window " + Name() + " has no control " + name + ".");
}

void CForm::ShowModal(CWindow* owner) {
  if (!loaded_) {
    loaded_ = true;
    painted_ = false;
    Run(load_);
  }
  Change(shown_, true);
  RunModal(owner);
}

void CForm::Paint() {
  if (std::exchange(painted_, true)) return;
  Run(firstpaint_);
}

void CForm::Unload() {
  if (!std::exchange(loaded_, false)) return;
  shown_ = false;
  Run(unload_);
}

}  // namespace vane::ui
