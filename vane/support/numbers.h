// Numbers out of the instrument's replies, and into the widths of the properties.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vane {

/// The decimal number, with an optional exponent, that `text` begins with. Blanks before the
/// number and behind its sign are skipped, the decimal point is "." in every locale, and reading
/// stops at the first character that can't go on the number. A text without a leading number gives
/// 0. A number beyond the range of a Double is the platform's overflow error; one too near to 0
/// gives 0. A 0 has no sign.
double NumberFromText(std::string_view text);

/// Rounds to the nearest whole number, halves to the even neighbour. A number beyond the width is
/// the platform's overflow error.
std::int16_t ToInteger(double number);
std::int32_t ToLong(double number);

/// The share of one of `steps` in 100 percent; 0 steps are the platform's division error.
double PercentShare(std::int64_t steps);

/// Raises the platform's out-of-range error unless 0 <= `index` < `size`.
void RequireIndex(std::int32_t index, std::size_t size);

}  // namespace vane
