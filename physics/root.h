// The root of a function between two places where its signs differ.
#pragma once

#include <cmath>
#include <optional>

namespace vane::physics {

/// Newton's steps, and halving where one would leave the bracket; to the last digits of a double.
/// `f(x)` gives the value and the slope as `.value` and `.slope`. Nothing when the signs are equal.
template <class Function>
std::optional<double> FindRoot(Function f, double low, double high) {
  const double atlow = f(low).value;
  const double athigh = f(high).value;
  if (atlow == 0) return low;
  if (athigh == 0) return high;
  if (!((atlow < 0) != (athigh < 0)) || std::isnan(atlow + athigh)) return std::nullopt;
  double x = (low + high) / 2;
  for (int i = 0; i < 200; ++i) {
    const auto at = f(x);
    if (at.value == 0) return x;
    ((at.value < 0) == (atlow < 0) ? low : high) = x;
    double next = x - at.value / at.slope;
    if (!(next > low && next < high)) next = (low + high) / 2;
    if (std::abs(next - x) <= 4e-16 * std::abs(next)) return next;
    x = next;
  }
  return x;
}

}  // namespace vane::physics
