// The date and time texts that the readout's clock takes.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace vane::simulator {

/// Month, day, year: "mm-dd-yyyy". Nothing for any other text and for a day that doesn't exist.
std::optional<std::chrono::sys_days> ParseDate(std::string_view text);

/// "hh:mm:ss" on the 24-hour clock, or with AM or PM straight behind the seconds on the 12-hour
/// clock, where noon and midnight may be hour 0 or 12.
std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text);

}  // namespace vane::simulator
