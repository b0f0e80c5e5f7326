#include "recorder/statistics.h"

#include <algorithm>
#include <cmath>

namespace vane::recorder {
namespace {

constexpr std::int64_t kExactFactor = 1024;
constexpr std::size_t kLevels = 26;  // two years of a reading a second

std::int64_t StrideOf(std::int64_t factor) {
  return std::max<std::int64_t>(factor / kExactFactor, 1);
}

}  // namespace

void CTrend::Add(double time, double value) {
  ++count_;
  const auto count = static_cast<double>(count_);
  const double offtime = time - meantime_;
  const double off = value - mean_;
  meantime_ += offtime / count;
  mean_ += off / count;
  timesquares_ += offtime * (time - meantime_);
  squares_ += off * (value - mean_);
  products_ += offtime * (value - mean_);
}

std::optional<double> CTrend::Deviation() const {
  if (count_ < 2) return std::nullopt;
  return std::sqrt(squares_ / static_cast<double>(count_ - 1));
}

std::optional<CTrend::Slope> CTrend::Drift() const {
  if (count_ < 3 || !(timesquares_ > 0)) return std::nullopt;
  const double slope = products_ / timesquares_;
  const double residuals = std::max(squares_ - slope * products_, 0.0);
  return Slope{slope, std::sqrt(residuals / static_cast<double>(count_ - 2) / timesquares_)};
}

void CAllanDeviation::Add(double value) {
  // The sums keep their digits when they are of small numbers.
  if (!origin_) {
    origin_ = value;
    levels_.resize(kLevels);
  }
  if (taken_ == 0) {
    sum_ = 0;
    for (std::size_t i = 0; i < levels_.size(); ++i) Take(levels_[i], std::int64_t{1} << i);
  }
  sum_ += value - *origin_;
  ++taken_;
  for (std::size_t i = 0; i < levels_.size(); ++i) {
    const std::int64_t factor = std::int64_t{1} << i;
    if (taken_ % StrideOf(factor) == 0) Take(levels_[i], factor);
  }
}

void CAllanDeviation::Take(Level& level, std::int64_t factor) const {
  const auto lag = static_cast<std::size_t>(factor / StrideOf(factor));
  const std::size_t size = 2 * lag + 1;
  if (level.sums.empty()) level.sums.resize(size);
  level.sums[level.next] = sum_;
  ++level.held;
  if (level.held >= static_cast<std::int64_t>(size)) {
    const double middle = level.sums[(level.next + size - lag) % size];
    const double first = level.sums[(level.next + 1) % size];
    const double difference = sum_ - 2 * middle + first;
    level.squares += difference * difference;
    ++level.differences;
  }
  level.next = (level.next + 1) % size;
}

void CAllanDeviation::Break() {
  taken_ = 0;
  sum_ = 0;
  for (Level& level : levels_) {
    level.held = 0;
    level.next = 0;
  }
}

std::vector<CAllanDeviation::Point> CAllanDeviation::Points() const {
  std::vector<Point> points;
  for (std::size_t i = 0; i < levels_.size(); ++i) {
    const Level& level = levels_[i];
    if (level.differences < kFewest) continue;
    const std::int64_t factor = std::int64_t{1} << i;
    const double factors = static_cast<double>(factor) * static_cast<double>(factor);
    points.push_back(
        {factor, std::sqrt(level.squares / (2 * factors * static_cast<double>(level.differences))),
         level.differences});
  }
  return points;
}

}  // namespace vane::recorder
