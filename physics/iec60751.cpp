#include "physics/iec60751.h"

#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace vane::physics {
namespace {

struct ToleranceRow {
  double lowest;  // °C
  double highest;
  double constant;  // K
  double slope;     // K per °C
};

// In the order of the classes.
constexpr ToleranceRow kTolerances[] = {{-50, 250, 0.1, 0.0017},
                                        {-100, 450, 0.15, 0.002},
                                        {-196, 600, 0.3, 0.005},
                                        {-196, 600, 0.6, 0.01}};

}  // namespace

CvdRecord IecRecord(double r0) {
  constexpr double kA = 3.9083e-3;
  constexpr double kB = -5.775e-7;
  constexpr double kC = -4.183e-12;
  constexpr double kAlpha = kA + 100 * kB;
  return {r0, kAlpha, -1e4 * kB / kAlpha, -1e8 * kC / kAlpha};
}

double ToleranceOf(EToleranceClass grade, double celsius) {
  const ToleranceRow& row = kTolerances[static_cast<std::size_t>(grade)];
  if (!(celsius >= row.lowest && celsius <= row.highest)) {
    throw std::domain_error("The tolerance class doesn't reach to that temperature.");
  }
  return row.constant + row.slope * std::abs(celsius);
}

}  // namespace vane::physics
