#include "simulator/clock_parser.h"

#include <array>
#include <cstdint>
#include <string>

#include "simulator/readout_numbers.h"

namespace vane::simulator {
namespace {

// Three numbers without a sign, separated by `separator`.
std::optional<std::array<std::int32_t, 3>> ParseThree(std::string_view text, char separator) {
  std::array<std::int32_t, 3> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t end = i + 1 < numbers.size() ? text.find(separator) : text.size();
    if (end == text.npos) return std::nullopt;
    const std::string_view digits = text.substr(0, end);
    const auto number = ParseWhole(digits);
    if (!number || digits.find_first_not_of("0123456789") != digits.npos) return std::nullopt;
    numbers[i] = *number;
    text.remove_prefix(end < text.size() ? end + 1 : end);
  }
  return numbers;
}

}  // namespace

std::optional<std::chrono::sys_days> ParseDate(std::string_view text) {
  const auto numbers = ParseThree(text, '-');
  if (!numbers || (*numbers)[0] > 12 || (*numbers)[1] > 31 || (*numbers)[2] > 9999) {
    return std::nullopt;
  }
  const std::chrono::year_month_day date{std::chrono::year((*numbers)[2]),
                                         std::chrono::month(static_cast<unsigned>((*numbers)[0])),
                                         std::chrono::day(static_cast<unsigned>((*numbers)[1]))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date);
}

std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text) {
  std::string_view marker;
  if (text.size() > 2 && (text.ends_with("AM") || text.ends_with("PM"))) {
    marker = text.substr(text.size() - 2);
    text.remove_suffix(2);
  }
  auto numbers = ParseThree(text, ':');
  if (!numbers) return std::nullopt;
  auto& [hour, minute, second] = *numbers;
  if (hour > (marker.empty() ? 23 : 12) || minute > 59 || second > 59) return std::nullopt;
  if (!marker.empty()) hour = hour % 12 + (marker == "PM" ? 12 : 0);
  return std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

}  // namespace vane::simulator
