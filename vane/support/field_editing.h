// How dialogs keep their fields clean: what a key press may put into a field, how a number is
// limited, and how a list or a field is set. User-interface thread only.
#pragma once

#include <cstdint>

#include "vane/components/ui.h"

namespace vane {

// Filters of key presses. `key` is the code of the typed character: left as it is, the key is
// accepted; 0 drops it; another code takes the place of the character. Backspace, enter, copy,
// paste, cut and undo always pass. Where the separator can't be found out, it is ".".

/// Digits, signs and the user's decimal separator, into which "." turns. Where a sign or a
/// separator stands is not looked at.
void FilterRealKey(std::int16_t& key) noexcept;

/// As above, with "e" and "E".
void FilterExponentKey(std::int16_t& key) noexcept;

/// Digits only: a sign can't be typed.
void FilterIntegerKey(std::int16_t& key) noexcept;

/// Digits, the letters of the alphabet, and "-".
void FilterSerialKey(std::int16_t& key) noexcept;

/// `value` limited to the range. `minimum` is tested first, so it wins in a range that is upside
/// down.
template <class Number>
constexpr Number Clamp(Number value, Number minimum, Number maximum) {
  if (value < minimum) return minimum;
  return value > maximum ? maximum : value;
}

/// Selects the first entry that carries `value`; without one the selection stays.
void SelectItemByData(ui::CListControl& list, std::int32_t value);

/// Selects the whole text of the field that has the focus, if it is a text field.
void SelectActiveText() noexcept;

}  // namespace vane
