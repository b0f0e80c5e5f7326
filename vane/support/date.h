// A date and time as one number.
#pragma once

#include <chrono>

namespace vane {

/// A date and time as a count of days; the whole part is the day, 0 being 30 December 1899, the
/// fraction the time of day.
using Date = double;

/// The nearest whole second of `date`; before day 0 the fraction still counts forward from
/// midnight. A date outside the years 100 to 9999 is the platform's overflow error.
std::chrono::local_seconds MomentOf(Date date);
Date DateOf(std::chrono::local_seconds moment);

}  // namespace vane
