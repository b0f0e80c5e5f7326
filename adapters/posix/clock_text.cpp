#include "adapters/posix/clock_text.h"

#include <cstdio>

namespace vane {
namespace {

constexpr std::string_view kFlags = "_-^#0123456789EO";  // may stand between "%" and the letter
constexpr std::string_view kTwelveHourLetters = "Ilr";

bool CountsToTwelve(std::string_view format) {
  std::size_t i = format.find('%');
  while (i != format.npos) {
    i = format.find_first_not_of(kFlags, i + 1);
    if (i == format.npos) return false;
    if (kTwelveHourLetters.find(format[i]) != kTwelveHourLetters.npos) return true;
    i = format.find('%', i + 1);
  }
  return false;
}

}  // namespace

std::string ClockText(std::chrono::local_seconds moment, std::string_view timeformat) {
  const std::chrono::hh_mm_ss time(moment - std::chrono::floor<std::chrono::days>(moment));
  const int hours = static_cast<int>(time.hours().count());
  const int minutes = static_cast<int>(time.minutes().count());
  const int seconds = static_cast<int>(time.seconds().count());
  char text[64];
  if (CountsToTwelve(timeformat)) {
    std::snprintf(text, sizeof text, "%d:%02d:%02d %s", (hours + 11) % 12 + 1, minutes, seconds,
                  hours < 12 ? "AM" : "PM");
  } else {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, seconds);
  }
  return text;
}

}  // namespace vane
