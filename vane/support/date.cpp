#include "vane/support/date.h"

#include <cmath>

#include "vane/components/library_error.h"

namespace vane {
namespace {

using namespace std::chrono;

constexpr local_days kDayZero{year{1899} / December / 30};
constexpr local_days kFirstDay{year{100} / January / 1};
constexpr local_days kLastDay{year{9999} / December / 31};
constexpr double kSecondsOfDay = 86400;

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

}  // namespace vane
