#include "tests/support/form_text.h"

#include <algorithm>

namespace vane::test {
namespace {

std::string ValueText(const ui::CControl& control) {
  using ui::EKind;
  switch (control.Kind()) {
    case EKind::TEXT_FIELD:
      return "=" + dynamic_cast<const ui::CTextField&>(control).Text();
    case EKind::DROP_DOWN:
    case EKind::LIST_BOX: {
      const auto& list = dynamic_cast<const ui::CItemList&>(control);
      return "=" + (list.ListIndex() < 0 ? "<none>" : list.ItemText(list.ListIndex()));
    }
    case EKind::CHECK_BOX:
      return dynamic_cast<const ui::CCheckBox&>(control).Checked() ? "=yes" : "=no";
    case EKind::OPTION_GROUP:
      return "=" + std::to_string(dynamic_cast<const ui::COptionGroup&>(control).Selected());
    case EKind::TAB_STRIP:
      return "=" + std::to_string(dynamic_cast<const ui::CTabStrip&>(control).Selected());
    default:
      return {};
  }
}

bool IsSilent(const ui::CControl& control) {
  if (!control.Enabled()) return false;
  const auto* const label = dynamic_cast<const ui::CLabel*>(&control);
  if (label != nullptr) return label->Style() != ui::ELabelStyle::NOTICE;
  return control.Kind() == ui::EKind::FRAME || control.Kind() == ui::EKind::UP_DOWN;
}

bool IsSeen(const ui::CControl& control) {
  for (const ui::CControl* each = &control; each != nullptr; each = each->Frame()) {
    if (!each->Visible()) return false;
  }
  return true;
}

}  // namespace

std::string FormText(const ui::CForm& form, const std::vector<std::string>& parts) {
  std::string text = form.Enabled() ? "" : form.Name() + " off\n";
  for (const auto& control : form.Controls()) {
    const auto holds = [&](const std::string& part) {
      return control->Name().find(part) != std::string::npos;
    };
    if (!parts.empty() && std::ranges::none_of(parts, holds)) continue;
    if (!IsSeen(*control) || IsSilent(*control)) continue;
    text += control->Name() + ValueText(*control) + (control->Enabled() ? "\n" : " off\n");
  }
  return text;
}

}  // namespace vane::test
