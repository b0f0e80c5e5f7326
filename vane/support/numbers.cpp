#include "vane/support/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "vane/components/library_error.h"

namespace vane {
namespace {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A number that the 64-bit reading refused is either too large or too near to 0; the wider reading
// tells which.
double OutsideDouble(std::string_view number) {
  long double wide = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), wide);
  const std::size_t exponent =
      number.substr(0, static_cast<std::size_t>(end - number.data())).find_first_of("eE");
  const bool tiny = error == std::errc{}      ? std::fabs(wide) < 1
                    : exponent != number.npos ? number[exponent + 1] == '-'
                                              : number.find_first_not_of('0') == number.find('.');
  if (tiny) return 0;
  throw PlatformError(ERR_PLATFORM_OVERFLOW);
}

template <class Whole>
Whole ToWhole(double number) {
  const double rounded = std::nearbyint(number);
  // Written so that what is not a number fails as well.
  if (!(rounded >= std::numeric_limits<Whole>::min() &&
        rounded <= std::numeric_limits<Whole>::max())) {
    throw PlatformError(ERR_PLATFORM_OVERFLOW);
  }
  return static_cast<Whole>(rounded);
}

}  // namespace

double NumberFromText(std::string_view text) {
  const std::size_t start = text.find_first_not_of(' ');
  if (start == text.npos) return 0;
  text.remove_prefix(start);
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') {
    text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  }
  // `from_chars` also takes a second sign and the names of what is not a number.
  const std::size_t first = text.starts_with('.') ? 1 : 0;
  if (first >= text.size() || !IsDigit(text[first])) return 0;

  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) number = OutsideDouble(text);
  return negative && number != 0 ? -number : number;
}

std::int16_t ToInteger(double number) { return ToWhole<std::int16_t>(number); }

std::int32_t ToLong(double number) { return ToWhole<std::int32_t>(number); }

double PercentShare(std::int64_t steps) {
  if (steps == 0) throw PlatformError(ERR_PLATFORM_DIVISION);
  return 100.0 / static_cast<double>(steps);
}

void RequireIndex(std::int32_t index, std::size_t size) {
  if (index < 0 || static_cast<std::size_t>(index) >= size) {
    throw PlatformError(ERR_PLATFORM_OUT_OF_RANGE);
  }
}

}  // namespace vane
