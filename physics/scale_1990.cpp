#include "physics/scale_1990.h"

#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace vane::physics {
namespace {

// Table 4.
constexpr std::array kA = {-2.13534729, 3.18324720,  -1.80143597, 0.71727204, 0.50344027,
                           -0.61899395, -0.05332322, 0.28021362,  0.10715224, -0.29302865,
                           0.04459872,  0.11868632,  -0.05248134};
constexpr std::array kB = {0.183324722,  0.240975303,  0.209108771, 0.190439972,
                           0.142648498,  0.077993465,  0.012475611, -0.032267127,
                           -0.075291522, -0.056470670, 0.076201285, 0.123893204,
                           -0.029201193, -0.091173542, 0.001317696, 0.026025526};
constexpr std::array kC = {2.78157254, 1.64650916, -0.13714390, -0.00649767, -0.00234444,
                           0.00511868, 0.00187982, -0.00204472, -0.00046122, 0.00045724};
constexpr std::array kD = {439.932854, 472.418020, 37.684494, 7.472018, 2.920828,
                           0.005184,   -0.963864,  -0.188732, 0.191203, 0.049025};

struct ValueAndSlope {
  double value;
  double slope;
};

// Horner's scheme for both.
template <std::size_t N>
ValueAndSlope Evaluate(const std::array<double, N>& coefficients, double x) {
  double value = coefficients[N - 1];
  double slope = 0;
  for (std::size_t i = N - 1; i-- > 0;) {
    slope = slope * x + value;
    value = value * x + coefficients[i];
  }
  return {value, slope};
}

// ln Wr by x = ln(T / 273.16 K), and its derivative.
ValueAndSlope LowByLogarithm(double x) {
  const ValueAndSlope sum = Evaluate(kA, (x + 1.5) / 1.5);
  return {sum.value, sum.slope / 1.5};
}

// Wr by the temperature in K, and its derivative.
ValueAndSlope High(double kelvin) {
  const ValueAndSlope sum = Evaluate(kC, (kelvin - 754.15) / 481);
  return {sum.value, sum.slope / 481};
}

double StartBelow(double ratio) {
  return kTriplePointOfWater * Evaluate(kB, (std::cbrt(std::sqrt(ratio)) - 0.65) / 0.35).value;
}

double StartAbove(double ratio) { return Evaluate(kD, (ratio - 2.64) / 1.64).value + kIcePoint; }

// Where to start below the triple point of water: ln(T / 273.16 K) by ln Wr, a Chebyshev fit to the
// inverse of (9a) that is off by 6.3e-5 at most. It costs no root and no second logarithm, which
// (9b) does; a wrong digit in it would cost a step, and no exactness.
constexpr std::array kStart = {-1.9851262, 1.1300803,   0.37973315,  0.31646851,  0.17876414,
                               0.18964009, 0.12523616,  -0.15176545, -0.34887086, -0.044585904,
                               0.18475121, 0.053888593, -0.028164282};

// Newton's steps double the digits: behind a step below 1e-8 of the value, the next one would be
// below the last digit.
constexpr double kLastStep = 1e-8;
constexpr int kMostSteps = 8;

double InverseBelow(double ratio) {
  const double wanted = std::log(ratio);
  double x = Evaluate(kStart, (wanted + 3.37) / 3.37).value;
  for (int i = 0; i < kMostSteps; ++i) {
    const ValueAndSlope at = LowByLogarithm(x);
    const double step = (wanted - at.value) / at.slope;
    x += step;
    if (std::abs(step) < kLastStep) break;
  }
  return kTriplePointOfWater * std::exp(x);
}

double InverseAbove(double ratio) {
  double kelvin = StartAbove(ratio);
  for (int i = 0; i < kMostSteps; ++i) {
    const ValueAndSlope at = High(kelvin);
    const double step = (ratio - at.value) / at.slope;
    kelvin += step;
    if (std::abs(step) < kLastStep * kelvin) break;
  }
  return kelvin;
}

void RequireTemperature(double kelvin) {
  if (kelvin >= kLowestT90 && kelvin <= kHighestT90) return;
  throw std::domain_error("ITS-90 has no reference function at " + std::to_string(kelvin) + " K.");
}

// Where the upper function begins: a little below 1, by the digits of its constants.
const double kRatioOfWater = High(kTriplePointOfWater).value;

// The limits themselves are inside, whatever the last digit of a table says.
constexpr double kMarginOfRatio = 1e-7;

void Require(bool isinside, double ratio) {
  if (isinside) return;
  throw std::domain_error("ITS-90 has no temperature for the ratio " + std::to_string(ratio) + ".");
}

}  // namespace

const std::array<FixedPoint, 12> kFixedPoints = {{
    {"hydrogen", 13.8033, 0.00119007},
    {"neon", 24.5561, 0.00844974},
    {"oxygen", 54.3584, 0.09171804},
    {"argon", 83.8058, 0.21585975},
    {"mercury", 234.3156, 0.84414211},
    {"water", 273.16, 1.00000000},
    {"gallium", 302.9146, 1.11813889},
    {"indium", 429.7485, 1.60980185},
    {"tin", 505.078, 1.89279768},
    {"zinc", 692.677, 2.56891730},
    {"aluminium", kAluminiumPoint, 3.37600860},
    {"silver", 1234.93, 4.28642053},
}};

double LowReferenceRatio(double kelvin) {
  return std::exp(LowByLogarithm(std::log(kelvin / kTriplePointOfWater)).value);
}

double HighReferenceRatio(double kelvin) { return High(kelvin).value; }

double ReferenceRatio(double kelvin) {
  RequireTemperature(kelvin);
  return kelvin < kTriplePointOfWater ? LowReferenceRatio(kelvin) : HighReferenceRatio(kelvin);
}

double ReferenceSlope(double kelvin) {
  RequireTemperature(kelvin);
  if (kelvin >= kTriplePointOfWater) return High(kelvin).slope;
  const ValueAndSlope at = LowByLogarithm(std::log(kelvin / kTriplePointOfWater));
  return std::exp(at.value) * at.slope / kelvin;
}

double ReferenceTemperature(double ratio) {
  Require(ratio >= kFixedPoints.front().ratio - kMarginOfRatio, ratio);
  return ratio < kRatioOfWater ? InverseBelow(ratio) : HighReferenceTemperature(ratio);
}

double HighReferenceTemperature(double ratio) {
  Require(ratio <= kFixedPoints.back().ratio + kMarginOfRatio, ratio);
  return InverseAbove(ratio);
}

double PublishedInverse(double ratio) { return ratio < 1 ? StartBelow(ratio) : StartAbove(ratio); }

}  // namespace vane::physics
