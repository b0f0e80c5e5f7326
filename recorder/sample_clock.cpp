#include "recorder/sample_clock.h"

#include <algorithm>

namespace vane::recorder {
namespace {

// Two quartzes are apart by less, and both clocks are read in whole milliseconds.
constexpr std::int64_t kDriftPart = 5000;  // one part in
constexpr std::int64_t kLeastJitter = 3;

}  // namespace

void CSampleClock::Restart(std::int64_t interval) {
  interval_ = std::max<std::int64_t>(interval, 1);
  isknown_ = false;
  jitter_ = kLeastJitter;
}

void CSampleClock::TakeOver(std::int64_t sample, std::optional<std::int64_t> time) {
  sample_ = sample;
  seen_.reset();
  if (time) seen_ = {*time, *time};
}

CSampleClock::Window CSampleClock::WindowOf(std::int64_t sample) const {
  const Window seen = seen_.value_or(Window{});
  const std::int64_t passed = (sample - sample_) * interval_;
  // Of the one that was seen there is nothing to be foretold.
  const std::int64_t slack = passed == 0 ? 0 : jitter_ + std::max(passed, -passed) / kDriftPart;
  return {seen.earliest + passed - slack, seen.latest + passed + slack};
}

std::int64_t CSampleClock::Reckon(std::int64_t time) const {
  if (!seen_) return sample_ + 1;
  const std::int64_t since = time - (seen_->earliest + seen_->latest) / 2;
  return sample_ + std::max<std::int64_t>((since + interval_ / 2) / interval_, 1);
}

void CSampleClock::See(std::int64_t sample, std::int64_t earliest, std::int64_t latest) {
  const Window expected = WindowOf(sample);
  const Window both{std::max(earliest, expected.earliest), std::min(latest, expected.latest)};
  sample_ = sample;
  if (isknown_ && both.earliest <= both.latest) {
    seen_ = both;
    return;
  }
  // The readout isn't as regular as that. What was seen is what counts, and the next ones may be
  // as far from it.
  if (isknown_) {
    const std::int64_t off = std::max(expected.earliest - latest, earliest - expected.latest);
    if (off < interval_ / 2) jitter_ = std::min(jitter_ + off, interval_ / 4);
  }
  seen_ = {earliest, latest};
  isknown_ = true;
}

std::optional<std::int64_t> CSampleClock::At(std::int64_t time) const {
  if (!isknown_) return std::nullopt;
  const std::int64_t sample = sample_ + (time - seen_->earliest) / interval_;
  // The window of a sample may begin early enough to hold a moment of the interval before.
  for (const std::int64_t near : {sample - 1, sample, sample + 1}) {
    if (WindowOf(near).latest <= time && time < WindowOf(near + 1).earliest) return near;
  }
  return std::nullopt;
}

}  // namespace vane::recorder
