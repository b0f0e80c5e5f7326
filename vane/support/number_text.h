// Numbers on their way out: to the user in his own notation, and to the instrument, which knows "."
// only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vane {

/// `value` as `pattern` has it: "0" is a digit that always shows, "#" one that doesn't when it is a
/// leading or trailing zero, "." the user's decimal separator, "E+00" or "E-00" an exponent of at
/// least two digits, with a sign always or only when it is negative. An empty pattern is
/// `PlainNumberText`.
///
/// What is rounded is the shortest decimal text that stands for `value` and for no other Double:
/// the digits that were typed or received, not the binary fraction behind them. Halves round away
/// from zero. A result without a digit above 0 has no sign.
///
/// Infinities and what is not a number have no text: the platform's overflow error.
std::string FormatNumber(double value, std::string_view pattern);

/// The shortest text that stands for `value` and for no other Double, under the user's decimal
/// separator; with an exponent from 1E+15 up and below 0.00001. The same errors.
std::string PlainNumberText(double value);

/// The user's decimal separator, one character in UTF-8. The platform is asked once per process.
const std::string& GetDecimalSeparator();

/// Puts `text` in its place; with an empty one, the platform is asked anew. For a host that changes
/// its locale while it runs.
void SetDecimalSeparator(const std::string& text);

/// `text` with each of the user's decimal separators replaced by ".".
std::string ToDotDecimal(std::string text);

}  // namespace vane
