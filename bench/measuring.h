// What the benchmarks share: times and medians.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

namespace vane::bench {

using std::chrono::steady_clock;

inline double SecondsSince(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

inline double MedianOf(std::vector<double> numbers) {
  std::ranges::sort(numbers);
  return (numbers[(numbers.size() - 1) / 2] + numbers[numbers.size() / 2]) / 2;
}

/// The median of `whole` over `base`, round by round.
inline double MedianRatio(const std::vector<double>& whole, const std::vector<double>& base) {
  std::vector<double> ratios;
  std::ranges::transform(whole, base, std::back_inserter(ratios), std::divides<>());
  return MedianOf(std::move(ratios));
}

}  // namespace vane::bench
