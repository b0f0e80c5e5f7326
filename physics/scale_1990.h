// The reference functions of the International Temperature Scale of 1990 and their inverses.
//
// Source of every formula and constant here: H. Preston-Thomas, "The International Temperature
// Scale of 1990 (ITS-90)", Metrologia 27 (1990) 3-10, and its erratum 107: equations (9a), (9b),
// (10a) and (10b), tables 1 and 4.
//
// W is the ratio of a resistance to that at the triple point of water, Wr the one that the
// reference function gives. Temperatures are in kelvins. No state; any thread.
#pragma once

#include <array>
#include <cstdint>

namespace vane::physics {

inline constexpr double kIcePoint = 273.15;            ///< K, 0 °C
inline constexpr double kTriplePointOfWater = 273.16;  ///< K

// Where the two functions hold: (9a) up to the triple point of water, (10a) from 0 °C on.
inline constexpr double kLowestT90 = 13.8033;
inline constexpr double kHighestT90 = 1234.93;

/// A defining fixed point in the range of the platinum resistance thermometer.
struct FixedPoint {
  const char* name;
  double kelvin;
  double ratio;  ///< the reference function there, table 1
};

/// From the triple point of hydrogen to the freezing point of silver.
extern const std::array<FixedPoint, 12> kFixedPoints;

inline constexpr double kAluminiumPoint = 933.473;  ///< K

/// Equation (9a) below the triple point of water, (10a) from there on. Outside the limits above
/// raises `std::domain_error`.
double ReferenceRatio(double kelvin);

/// Its derivative, in 1/K.
double ReferenceSlope(double kelvin);

/// The temperature whose reference ratio is `ratio`: the inverse of `ReferenceRatio` itself, to the
/// precision of a double, and not the published one, which is off by up to 0.13 mK. Outside the
/// limits raises `std::domain_error`.
double ReferenceTemperature(double ratio);

/// Equations (9b) and (10b), the approximations to the inverses that the scale publishes. Only to
/// be compared with, and to start from.
double PublishedInverse(double ratio);

// The one or the other function, also beyond the triple point of water by as much as they are
// defined: between 0 °C and 0.01 °C both hold.

double LowReferenceRatio(double kelvin);
double HighReferenceRatio(double kelvin);
/// The inverse of the latter, also raises.
double HighReferenceTemperature(double ratio);

}  // namespace vane::physics
