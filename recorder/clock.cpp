#include "recorder/clock.h"

#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>

namespace vane::recorder {
namespace {

constexpr std::int64_t kMsPerSecond = 1000;
// A clock that is steered gains or loses 500 millionths at most; what lies below this is reading
// the two clocks one after the other.
constexpr std::int64_t kSteering = 1000;  // one part in
constexpr std::int64_t kSmallestStep = 100;
constexpr int kTries = 5;

std::int64_t Milliseconds(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return std::int64_t{now.tv_sec} * kMsPerSecond + now.tv_nsec / 1'000'000;
}

std::string Formatted(const char* form, const std::tm& fields) {
  char text[80];
  return {text, std::strftime(text, sizeof text, form, &fields)};
}

}  // namespace

Moment CMachineClock::Now() const {
  Moment now;
  // Somebody else may have the processor between two of them; that is no step of a clock.
  for (int tries = 0; tries < kTries; ++tries) {
    now.monotonic = Milliseconds(CLOCK_BOOTTIME);
    now.utc = Milliseconds(CLOCK_REALTIME);
    now.awake = Milliseconds(CLOCK_MONOTONIC);
    if (Milliseconds(CLOCK_BOOTTIME) - now.monotonic <= 1) break;
  }
  return now;
}

std::string CMachineClock::Boot() const {
  std::ifstream file("/proc/sys/kernel/random/boot_id");
  std::string id;
  std::getline(file, id);
  return id;
}

CStepWatch::Found CStepWatch::Look(const Moment& now) {
  const Moment last = last_.value_or(now);
  const std::int64_t passed = now.monotonic - last.monotonic;
  Found found{now.utc - last.utc - passed, passed - (now.awake - last.awake)};
  if (std::llabs(found.step) <= kSmallestStep + passed / kSteering) {
    found.step = 0;
    // A clock that creeps away in smaller ones is still one that was set.
    if (last_ && passed < kSmallestStep) return found;
  }
  if (found.asleep <= kSmallestStep) found.asleep = 0;
  last_ = now;
  return found;
}

std::string TimeText(std::int64_t utc, bool islocal) {
  std::int64_t rest = utc % kMsPerSecond;
  if (rest < 0) rest += kMsPerSecond;
  const auto seconds = static_cast<time_t>((utc - rest) / kMsPerSecond);
  std::tm fields{};
  if (islocal) {
    localtime_r(&seconds, &fields);
  } else {
    gmtime_r(&seconds, &fields);
  }
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(rest));
  std::string text = Formatted("%Y-%m-%dT%H:%M:%S", fields) + fraction;
  if (!islocal) return text + "Z";
  std::string zone = Formatted("%z", fields);
  zone.insert(zone.size() - 2, ":");
  return text + zone;
}

std::optional<std::int64_t> TimeOfText(const std::string& text) {
  int year = 0;
  int month = 0;
  int day = 0;
  int used = 0;
  if (std::sscanf(text.c_str(), "%4d-%2d-%2d%n", &year, &month, &day, &used) != 3) return {};
  std::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_isdst = -1;
  std::string rest = text.substr(static_cast<std::size_t>(used));
  double seconds = 0;
  if (!rest.empty()) {
    int size = 0;
    if ((rest[0] != 'T' && rest[0] != ' ') ||
        std::sscanf(rest.c_str() + 1, "%2d:%2d%n", &fields.tm_hour, &fields.tm_min, &size) != 2) {
      return {};
    }
    rest.erase(0, 1 + static_cast<std::size_t>(size));
    if (rest.starts_with(':')) {
      if (std::sscanf(rest.c_str(), ":%6lf%n", &seconds, &size) != 1) return {};
      rest.erase(0, static_cast<std::size_t>(size));
    }
  }
  const bool isinrange = month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
                         fields.tm_hour >= 0 && fields.tm_hour <= 23 && fields.tm_min >= 0 &&
                         fields.tm_min <= 59 && seconds >= 0 && seconds < 61;
  if (!isinrange) return {};
  const auto fraction = static_cast<std::int64_t>(seconds * 1000 + 0.5);
  if (rest.empty()) return std::int64_t{mktime(&fields)} * kMsPerSecond + fraction;
  std::int64_t distance = 0;
  if (rest != "Z") {
    int hours = 0;
    int minutes = 0;
    int size = 0;
    const bool iszone = (rest[0] == '+' || rest[0] == '-') &&
                        std::sscanf(rest.c_str() + 1, "%2d:%2d%n", &hours, &minutes, &size) == 2 &&
                        rest.size() == 1 + static_cast<std::size_t>(size);
    if (!iszone) return {};
    distance = (hours * 60 + minutes) * 60 * (rest[0] == '-' ? -1 : 1);
  }
  fields.tm_isdst = 0;
  return (std::int64_t{timegm(&fields)} - distance) * kMsPerSecond + fraction;
}

}  // namespace vane::recorder
