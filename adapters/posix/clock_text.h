// A time of day as the user's regional settings write it.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vane {

/// `timeformat` is the locale's format of a time of day, as `strftime` takes it. Only its kind of
/// clock counts: "3:07:09 PM" for 12 hours, with "AM" and "PM" in every language and 12 for noon
/// and midnight, else "15:07:09".
std::string ClockText(std::chrono::local_seconds moment, std::string_view timeformat);

}  // namespace vane
