#include "vane/components/user.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace vane::ui {
namespace {

constexpr std::int16_t kBackspace = 8;
constexpr std::int16_t kReturn = 13;
constexpr std::int16_t kFirstPrintable = 32;

std::string Utf8(std::uint32_t code) {
  const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
  if (code < 0x80u) return {byte(code)};
  if (code < 0x800u) return {byte(0xC0u | code >> 6), byte(0x80u | (code & 0x3Fu))};
  return {byte(0xE0u | code >> 12), byte(0x80u | (code >> 6 & 0x3Fu)),
          byte(0x80u | (code & 0x3Fu))};
}

// 0 for a character that no key code can be.
std::int16_t CodeOf(const std::string& character) {
  const auto at = [&](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(character[i]));
  };
  std::uint32_t code = 0;
  if (character.size() == 1 && at(0) < 0x80u) code = at(0);
  if (character.size() == 2) code = (at(0) & 0x1Fu) << 6 | (at(1) & 0x3Fu);
  if (character.size() == 3) {
    code = (at(0) & 0x0Fu) << 12 | (at(1) & 0x3Fu) << 6 | (at(2) & 0x3Fu);
  }
  return code <= 0x7FFFu ? static_cast<std::int16_t>(code) : std::int16_t{0};
}

std::int64_t LeadingNumber(const std::string& text) {
  const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
  const char* const begin = text.data() + start + (text.compare(start, 1, "+") == 0 ? 1 : 0);
  const char* const end = text.data() + text.size();
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(begin, end, number);
  if (error != std::errc::result_out_of_range) return number;
  return *begin == '-' ? INT32_MIN : INT32_MAX;
}

}  // namespace

bool CUser::Reaches() const {
  return form_.Shown() && form_.Enabled() && CForm::Active() == &form_;
}

bool CUser::Do(CControl& control, bool iscommand, const Handler& body) {
  if (!CanUse(control) || (iscommand && form_.IsRunning())) return false;
  bool possible = true;
  const bool done = form_.Guarded(
      [&] {
        if (control.TakesFocus()) form_.MoveFocus(&control);
        // What the control that lost the focus does may have closed this one.
        possible = CanUse(control);
        if (possible) body();
      },
      iscommand);
  form_.SettleFocus();
  return done && possible;
}

bool CUser::Focus(CControl& control) {
  return control.TakesFocus() && Do(control, false, [] {});
}

bool CUser::Tab(bool forward) {
  if (!Reaches()) return false;
  CControl* const next = form_.NextStop(form_.Focused(), forward);
  return next != nullptr && Focus(*next);
}

CTextField* CUser::FieldToEdit() const {
  CControl* const focused = form_.Focused();
  if (focused == nullptr || focused->Kind() != EKind::TEXT_FIELD || !CanUse(*focused)) {
    return nullptr;
  }
  auto& field = static_cast<CTextField&>(*focused);
  return field.IsReadOnly() ? nullptr : &field;
}

bool CUser::Key(std::int16_t code) {
  CTextField* const field = FieldToEdit();
  if (field == nullptr) return code == kReturn && Return();
  bool taken = true;
  const bool done = form_.Guarded([&] {
    std::int16_t key = code;
    if (field->keypress_) field->keypress_(key);
    if (key == kBackspace) {
      if (field->SelectionLength() == 0 && field->SelectionStart() > 0) {
        field->SetSelection(field->SelectionStart() - 1, 1);
      }
      Edit(*field, {});
    } else if (key == kReturn) {
      taken = Return();
    } else if (key >= kFirstPrintable) {
      taken = Edit(*field, Utf8(static_cast<std::uint32_t>(key)));
    } else {
      // Copying and the like are the back end's.
      taken = key != 0;
    }
  });
  form_.SettleFocus();
  return done && taken;
}

bool CUser::Type(const std::string& text) {
  bool taken = true;
  for (const std::string& character : Characters(text)) {
    const std::int16_t code = CodeOf(character);
    taken = (code != 0 && Key(code)) && taken;
  }
  return taken;
}

bool CUser::Paste(const std::string& text) {
  CTextField* const field = FieldToEdit();
  if (field == nullptr) return false;
  bool taken = true;
  const bool done =
      form_.Guarded([&] { taken = Edit(*field, text.substr(0, text.find_first_of("\r\n"))); });
  form_.SettleFocus();
  return done && taken;
}

bool CUser::Delete() {
  CTextField* const field = FieldToEdit();
  if (field == nullptr) return false;
  const bool done = form_.Guarded([&] {
    if (field->SelectionLength() == 0) field->SetSelection(field->SelectionStart(), 1);
    Edit(*field, {});
  });
  form_.SettleFocus();
  return done;
}

bool CUser::Select(std::int32_t start, std::int32_t length) {
  CControl* const focused = form_.Focused();
  if (focused == nullptr || focused->Kind() != EKind::TEXT_FIELD || !CanUse(*focused)) return false;
  static_cast<CTextField&>(*focused).SetSelection(start, length);
  return true;
}

bool CUser::SelectAll() { return Select(0, INT32_MAX); }

bool CUser::Edit(CTextField& field, const std::string& inserted) {
  std::vector<std::string> characters = Characters(field.text_);
  std::vector<std::string> added = Characters(inserted);
  const auto first = characters.begin() + field.SelectionStart();
  const auto place = characters.erase(first, first + field.SelectionLength());
  const std::size_t room =
      field.MaxLength() <= 0
          ? added.size()
          : static_cast<std::size_t>(field.MaxLength()) -
                std::min(static_cast<std::size_t>(field.MaxLength()), characters.size());
  const bool fits = added.size() <= room;
  if (!fits) added.resize(room);
  characters.insert(place, added.begin(), added.end());
  std::string text;
  for (const std::string& character : characters) text += character;
  const auto caret = field.SelectionStart() + static_cast<std::int32_t>(added.size());
  const bool changed = text != field.text_;
  field.text_ = std::move(text);
  field.selection_ = {caret, 0};
  field.Tell(changed ? EAspect::TEXT : EAspect::SELECTION);
  if (changed) CControl::Run(field.change_);
  return fits;
}

bool CUser::Step(CUpDown& updown, bool up) {
  CTextField& field = updown.Field();
  if (!CanUse(updown)) return false;
  return Do(field, false, [&] {
    const std::int64_t step = up ? updown.Increment() : -std::int64_t{updown.Increment()};
    // As a limit of fields is: the lower one wins where they are upside down.
    const std::int64_t moved =
        std::min<std::int64_t>(LeadingNumber(field.Text()) + step, updown.Max());
    const std::string text = std::to_string(std::max<std::int64_t>(moved, updown.Min()));
    if (text == field.Text()) return;
    field.SetText(text);
    CControl::Run(updown.change_);
  });
}

bool CUser::Pick(CItemList& list, std::int32_t index) {
  if (index < 0 || index >= list.ListCount()) return false;
  bool there = false;
  const bool done = Do(list, list.IsCommand(), [&] {
    // What the control that lost the focus does may have shortened this one.
    there = index < list.ListCount();
    if (there) list.SetListIndex(index);
  });
  return done && there;
}

bool CUser::DoubleClick(CListBox& list, std::int32_t index) {
  if (index < 0 || index >= list.ListCount()) return false;
  bool there = false;
  const bool done = Do(list, true, [&] {
    there = index < list.ListCount();
    if (!there) return;
    list.SetListIndex(index);
    CControl::Run(list.doubleclick_);
  });
  return done && there;
}

bool CUser::Choose(COptionGroup& group, std::int32_t index) {
  if (index < 0 || index >= group.Count()) return false;
  return Do(group, false, [&] { group.Select(index); });
}

bool CUser::SelectTab(CTabStrip& tabs, std::int32_t index) {
  if (index < 0 || index >= tabs.Count()) return false;
  return Do(tabs, false, [&] { tabs.Select(index); });
}

bool CUser::Click(CCheckBox& box) {
  return Do(box, false, [&] {
    box.SetChecked(!box.Checked());
    CControl::Run(box.click_);
  });
}

bool CUser::Click(CButton& button) {
  return Do(button, true, [&] { CControl::Run(button.click_); });
}

bool CUser::Press(CButton* button, bool leaves) {
  if (button == nullptr || !CanUse(*button) || form_.IsRunning()) return false;
  bool possible = true;
  const bool done = form_.Guarded(
      [&] {
        if (leaves && form_.Focused() != nullptr) CControl::Run(form_.Focused()->lostfocus_);
        possible = CanUse(*button);
        if (possible) CControl::Run(button->click_);
      },
      true);
  form_.SettleFocus();
  return done && possible;
}

bool CUser::Return() {
  CControl* const focused = form_.Focused();
  if (focused != nullptr && focused->Kind() == EKind::BUTTON) {
    return Click(static_cast<CButton&>(*focused));
  }
  return Press(form_.FindButton(EButtonRole::DEFAULT), true);
}

bool CUser::Escape() { return Press(form_.FindButton(EButtonRole::CANCEL), false); }

bool CUser::Help() { return Press(form_.FindButton(EButtonRole::HELP), false); }

bool CUser::CloseBox() {
  CButton* const cancel = form_.FindButton(EButtonRole::CANCEL);
  return cancel != nullptr ? Press(cancel, false)
                           : Press(form_.FindButton(EButtonRole::DEFAULT), false);
}

bool CUser::PressAccessKey(char key) {
  if (key >= 'A' && key <= 'Z') key = static_cast<char>(key - 'A' + 'a');
  for (const auto& control : form_.Controls()) {
    if (!CanUse(*control)) continue;
    if (control->Kind() == EKind::OPTION_GROUP) {
      auto& group = static_cast<COptionGroup&>(*control);
      for (std::int32_t i = 0; i < group.Count(); ++i) {
        if (AccessKey(group.OptionCaption(i)) == key) return Choose(group, i);
      }
    }
    if (AccessKey(control->Caption()) != key) continue;
    switch (control->Kind()) {
      case EKind::BUTTON:
        return Click(static_cast<CButton&>(*control));
      case EKind::CHECK_BOX:
        return Click(static_cast<CCheckBox&>(*control));
      case EKind::LABEL: {
        CControl* const next = form_.NextStop(control.get(), true);
        return next != nullptr && Focus(*next);
      }
      default:
        return Focus(*control);
    }
  }
  return false;
}

}  // namespace vane::ui
