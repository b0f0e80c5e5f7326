// The International Practical Temperature Scale of 1968 (amended edition of 1975) in the range of
// the platinum resistance thermometer, and what leads from its temperatures to those of 1990.
//
// Sources: "The International Practical Temperature Scale of 1968, Amended Edition of 1975",
// Metrologia 12 (1976) 7-17: the reference function below 0 °C, the interpolation above with its
// correction, and the deviation function from the boiling point of oxygen to 0 °C. For T90 - T68:
// R. L. Rusby, "The conversion of thermal reference values to the ITS-90", J. Chem. Thermodynamics
// 23 (1991) 1153-1161: good to 1 mK above 0 °C and 1.5 mK below.
//
// W is the ratio of a resistance to that at 0 °C. No state; any thread.
#pragma once

namespace vane::physics {

// °C, of the formulas here: the boiling point of oxygen and the freezing point of antimony.
inline constexpr double kLowestT68 = 90.188 - 273.15;
inline constexpr double kHighestT68 = 630.74;

/// The reference function W CCT-68 of a temperature in kelvins below 0 °C.
double ReferenceRatio68(double kelvin);
/// Its inverse as the scale defines it, a polynomial in ln W from 13.81 K to 273.15 K.
double ReferenceTemperature68(double ratio);

/// What is added to t' to get t68, in °C, from 0 °C on.
double CorrectionOfT68(double celsius);

/// T90 - T68 in K, by the temperature of 1990 in °C, from -200 °C to 630 °C.
double DifferenceOfScales(double celsius90);

/// A temperature of 1968 as one of 1990, and back; in °C.
double T90OfT68(double celsius68);
double T68OfT90(double celsius90);

}  // namespace vane::physics
