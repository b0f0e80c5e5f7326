#include "vane/support/field_editing.h"

#include <algorithm>

#include "vane/components/components.h"
#include "vane/support/failure.h"
#include "vane/support/number_text.h"

namespace vane {
namespace {

// Backspace, enter, copy, paste, cut, undo.
constexpr std::int16_t kControlKeys[] = {8, 13, 3, 22, 24, 26};

bool IsControlKey(std::int16_t key) { return std::ranges::count(kControlKeys, key) > 0; }
bool IsBetween(std::int16_t key, char first, char last) { return key >= first && key <= last; }
bool IsDigit(std::int16_t key) { return IsBetween(key, '0', '9'); }

// The code of the one character that `text` holds in UTF-8; 0 for one that no key code can be.
std::int16_t KeyOf(const std::string& text) {
  std::uint32_t code = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // The first byte of a longer character tells its length by leading ones.
    code = i > 0           ? code << 6 | (byte & 0x3Fu)
           : byte < 0x80u  ? byte
           : byte >= 0xF0u ? byte & 0x07u
           : byte >= 0xE0u ? byte & 0x0Fu
                           : byte & 0x1Fu;
  }
  return code <= 0x7FFF ? static_cast<std::int16_t>(code) : std::int16_t{0};
}

// A key must not fail for lack of a platform that knows the separator; "." then stands for it.
std::int16_t SeparatorKey() noexcept {
  std::int16_t key = '.';
  CPendingFailure ignored;
  ignored.Try([&] { key = KeyOf(GetDecimalSeparator()); });
  return key;
}

}  // namespace

void FilterRealKey(std::int16_t& key) noexcept {
  const std::int16_t separator = SeparatorKey();
  if (IsDigit(key) || key == '-' || key == '+' || key == separator) return;
  if (key == '.') {
    key = separator;
  } else if (!IsControlKey(key)) {
    key = 0;
  }
}

void FilterExponentKey(std::int16_t& key) noexcept {
  if (key != 'e' && key != 'E') FilterRealKey(key);
}

void FilterIntegerKey(std::int16_t& key) noexcept {
  if (!IsDigit(key) && !IsControlKey(key)) key = 0;
}

void FilterSerialKey(std::int16_t& key) noexcept {
  const bool letter = IsBetween(key, 'a', 'z') || IsBetween(key, 'A', 'Z');
  if (!letter && !IsDigit(key) && key != '-' && !IsControlKey(key)) key = 0;
}

void SelectItemByData(ui::CListControl& list, std::int32_t value) {
  for (std::int32_t index = 0; index < list.ListCount(); ++index) {
    if (list.ItemData(index) != value) continue;
    list.SetListIndex(index);
    return;
  }
}

void SelectActiveText() noexcept {
  CPendingFailure ignored;
  ignored.Try([] {
    ui::CForm* const form = ui::CForm::Active();
    auto* const field = dynamic_cast<ui::CTextField*>(form ? form->Focused() : nullptr);
    if (field) field->SetSelection(0, field->TextLength());
  });
}

}  // namespace vane
