#include "vane/support/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "vane/components/components.h"
#include "vane/components/library_error.h"

namespace vane {
namespace {

// One of the three things that are one per process. Empty until it is needed.
std::string g_decimalseparator;

constexpr int kShortestExponent = -5;
constexpr int kLongestExponent = 14;

// A decimal number 0.d1d2d3... * 10^point. Without digits it is 0.
struct Decimal {
  bool negative = false;
  std::string digits;
  int point = 0;

  char DigitAt(int place) const {
    return place < 0 || place >= static_cast<int>(digits.size())
               ? '0'
               : digits[static_cast<std::size_t>(place)];
  }
};

Decimal DecimalOf(double value) {
  if (!std::isfinite(value)) {
    throw LibraryError(ERR_PLATFORM_OVERFLOW, {}, "A value without a finite number has no text.");
  }
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                          std::chars_format::scientific);
  if (error != std::errc{}) throw PlatformError(ERR_PLATFORM_OVERFLOW);
  const std::string_view text(buffer, end);
  Decimal decimal{.negative = std::signbit(value), .digits = {}, .point = 0};
  const std::size_t exponent = text.find('e');
  for (const char c : text.substr(0, exponent)) {
    if (c != '.') decimal.digits += c;
  }
  // The sign of a negative exponent is one that `from_chars` takes; "+" is not.
  const std::size_t number = exponent + (text[exponent + 1] == '+' ? 2 : 1);
  std::from_chars(text.data() + number, text.data() + text.size(), decimal.point);
  ++decimal.point;  // one digit stands before the point of the text, none before that of the record
  if (value == 0) decimal = {};
  return decimal;
}

// Keeps `places` digits. Halves go away from zero.
void Round(Decimal& decimal, int places) {
  if (places >= static_cast<int>(decimal.digits.size())) return;
  const bool up = places >= 0 && decimal.DigitAt(places) >= '5';
  decimal.digits.resize(static_cast<std::size_t>(std::max(places, 0)));
  if (up) {
    auto digit = decimal.digits.rbegin();
    for (; digit != decimal.digits.rend() && *digit == '9'; ++digit) *digit = '0';
    if (digit != decimal.digits.rend()) {
      ++*digit;
    } else {
      decimal.digits.insert(0, 1, '1');
      ++decimal.point;
    }
  }
  if (decimal.digits.find_first_not_of('0') == decimal.digits.npos) decimal = {};
}

// What a pattern asks for.
struct Layout {
  int wholedigits = 0;    // that always show
  int wholeplaces = 0;    // of a mantissa
  int decimals = 0;       // at least
  int decimalplaces = 0;  // at most
  bool point = false;
  bool exponent = false;
  bool exponentsign = false;
};

Layout LayoutOf(std::string_view pattern) {
  Layout layout;
  const std::size_t exponent = pattern.find('E');
  if (exponent != pattern.npos) {
    layout.exponent = true;
    layout.exponentsign = pattern.substr(exponent).starts_with("E+");
    pattern = pattern.substr(0, exponent);
  }
  const std::size_t point = pattern.find('.');
  layout.point = point != pattern.npos;
  const std::string_view whole = pattern.substr(0, point);
  layout.wholeplaces = static_cast<int>(whole.size());
  layout.wholedigits = static_cast<int>(std::ranges::count(whole, '0'));
  if (layout.point) {
    const std::string_view decimals = pattern.substr(point + 1);
    layout.decimalplaces = static_cast<int>(decimals.size());
    layout.decimals = static_cast<int>(std::ranges::count(decimals, '0'));
  }
  return layout;
}

std::string Digits(const Decimal& decimal, int from, int to) {
  std::string digits;
  for (int place = from; place < to; ++place) digits += decimal.DigitAt(place);
  return digits;
}

std::string FixedText(const Decimal& decimal, const Layout& layout) {
  std::string whole = Digits(decimal, 0, decimal.point);
  if (static_cast<int>(whole.size()) < layout.wholedigits) {
    whole.insert(0, static_cast<std::size_t>(layout.wholedigits) - whole.size(), '0');
  }
  if (!layout.point) return whole;
  std::string decimals = Digits(decimal, decimal.point, decimal.point + layout.decimalplaces);
  while (static_cast<int>(decimals.size()) > layout.decimals && decimals.back() == '0') {
    decimals.pop_back();
  }
  return whole + GetDecimalSeparator() + decimals;
}

std::string ExponentText(int exponent, bool sign) {
  std::string digits = std::to_string(std::abs(exponent));
  if (digits.size() < 2) digits.insert(0, 1, '0');
  return std::string("E") + (exponent < 0 ? "-" : sign ? "+" : "") + digits;
}

}  // namespace

std::string FormatNumber(double value, std::string_view pattern) {
  if (pattern.empty()) return PlainNumberText(value);
  const Layout layout = LayoutOf(pattern);
  Decimal decimal = DecimalOf(value);
  std::string exponent;
  if (layout.exponent) {
    Round(decimal, layout.wholeplaces + layout.decimalplaces);
    const bool zero = decimal.digits.empty();
    exponent = ExponentText(zero ? 0 : decimal.point - layout.wholeplaces, layout.exponentsign);
    if (!zero) decimal.point = layout.wholeplaces;
  } else {
    Round(decimal, decimal.point + layout.decimalplaces);
  }
  return (decimal.negative ? "-" : "") + FixedText(decimal, layout) + exponent;
}

std::string PlainNumberText(double value) {
  Decimal decimal = DecimalOf(value);
  const int exponent = decimal.point - 1;
  const int length = static_cast<int>(decimal.digits.size());
  std::string end;
  if (!decimal.digits.empty() && (exponent < kShortestExponent || exponent > kLongestExponent)) {
    end = ExponentText(exponent, true);
    decimal.point = 1;
  }
  const int decimals = std::max(length - decimal.point, 0);
  return (decimal.negative ? "-" : "") +
         FixedText(decimal, {.wholedigits = 1, .decimalplaces = decimals, .point = decimals > 0}) +
         end;
}

const std::string& GetDecimalSeparator() {
  if (g_decimalseparator.empty()) {
    g_decimalseparator = InstalledComponents().platform.DecimalSeparator();
    if (g_decimalseparator.empty()) g_decimalseparator = ".";
  }
  return g_decimalseparator;
}

void SetDecimalSeparator(const std::string& text) { g_decimalseparator = text; }

std::string ToDotDecimal(std::string text) {
  const std::string& separator = GetDecimalSeparator();
  if (separator == ".") return text;
  for (std::size_t at = text.find(separator); at != text.npos; at = text.find(separator, at + 1)) {
    text.replace(at, separator.size(), ".");
  }
  return text;
}

}  // namespace vane
