// The instrument's date and time.
#include <cmath>
#include <cstdio>
#include <string>

#include "vane/instrument/t312b.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

using namespace std::chrono;

constexpr local_days kDayZero{year{1899} / December / 30};
constexpr local_days kFirstDay{year{100} / January / 1};
constexpr local_days kLastDay{year{9999} / December / 31};
constexpr double kSecondsOfDay = 86400;

template <class... Numbers>
std::string Text(const char* format, Numbers... numbers) {
  char text[32];
  std::snprintf(text, sizeof text, format, numbers...);
  return text;
}

std::string DateText(local_seconds moment) {
  const year_month_day date(floor<days>(moment));
  return Text("%02u-%02u-%04d", static_cast<unsigned>(date.month()),
              static_cast<unsigned>(date.day()), static_cast<int>(date.year()));
}

// Characters of UTF-8; those behind the first byte of one begin with the bits 10.
std::string LastCharacters(const std::string& text, int count) {
  std::size_t start = text.size();
  while (start > 0 && count > 0) {
    --start;
    if ((static_cast<unsigned char>(text[start]) & 0xC0) != 0x80) --count;
  }
  return text.substr(start);
}

// On a clock of 12 hours noon and midnight are hour 0, and the marker of the half day is the one
// that the user's own clock has.
std::string TimeText(local_seconds moment, const std::string& usersclock) {
  const hh_mm_ss time(moment - floor<days>(moment));
  const auto hours = static_cast<int>(time.hours().count());
  const auto minutes = static_cast<int>(time.minutes().count());
  const auto seconds = static_cast<int>(time.seconds().count());
  if (!Contains(usersclock, "M")) return Text("%02d:%02d:%02d", hours, minutes, seconds);
  return Text("%d:%02d:%02d", hours % 12, minutes, seconds) + LastCharacters(usersclock, 2);
}

}  // namespace

local_seconds MomentOf(Date date) {
  const double day = std::trunc(date);
  // Written so that what is not a number fails as well.
  if (!(day >= (kFirstDay - kDayZero).count() && day <= (kLastDay - kDayZero).count())) {
    throw PlatformError(ERR_PLATFORM_OVERFLOW);
  }
  const double time = std::round(std::fabs(date - day) * kSecondsOfDay);
  return kDayZero + days(static_cast<int>(day)) + seconds(static_cast<std::int64_t>(time));
}

Date DateOf(local_seconds moment) {
  const auto day = floor<days>(moment);
  const auto whole = static_cast<double>((day - kDayZero).count());
  const double time = static_cast<double>((moment - day).count()) / kSecondsOfDay;
  return whole < 0 ? whole - time : whole + time;
}

bool CVaneT312B::UpdateSystemClock(ui::CWindow*) {
  return Exchange("UpdateSystemClock", [&] {
    const local_seconds moment =
        SystemClock() == 0 ? components_.platform.LocalTime() : MomentOf(SystemClock());
    Write(Line(), ECommand::WRITE_DATE, {{&CommandParams::value, DateText(moment)}});
    Line().params().value = TimeText(moment, components_.platform.LongTimeText(moment));
    Line().WriteSetting(ECommand::WRITE_TIME);
    return true;
  });
}

}  // namespace vane
