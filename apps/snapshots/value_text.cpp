#include "apps/snapshots/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

#include "vane/support/number_text.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

template <class Number>
std::string NumberText(Number number) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

}  // namespace

std::string WithUsersSeparator(std::string number) {
  const std::size_t point = number.find('.');
  if (point != number.npos) number.replace(point, 1, GetDecimalSeparator());
  return number;
}

std::string TextOf(const Value& value) {
  if (value.IsNone()) return "-";
  if (const auto* const flag = value.If<bool>()) return *flag ? "yes" : "no";
  if (const auto* const whole = value.If<std::int64_t>()) return NumberText(*whole);
  if (value.IsNumber()) return WithUsersSeparator(NumberText(value.Number() + 0.0));
  return PrintableText(value.Text());
}

std::string TextOf(const Value& value, std::string_view unit) {
  return TextOf(value) + (unit.empty() ? "" : " ") + std::string(unit);
}

void AddLine(std::string& lines, const std::string& title, std::size_t columns,
             std::string_view text) {
  Append(lines, "\n", Padded(title, columns) + std::string(text));
}

std::string MomentText(std::chrono::local_seconds moment) {
  const auto midnight = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss time(moment - midnight);
  std::array<char, 48> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return text.data();
}

std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string Padded(const std::string& text, std::size_t columns) {
  const std::size_t used = Columns(text);
  return text + std::string(columns > used ? columns - used : 0, ' ');
}

}  // namespace vane::thermoscribe
