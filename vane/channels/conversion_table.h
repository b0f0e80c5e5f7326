// The values of the conversions as the instrument keeps them: one row per value, with its command,
// its fields and its place. Reading a conversion walks these rows, and so does whatever writes one:
// the command that writes a value is the one behind the command that reads it.
//
// `operation` is the second half of the operation's name: "CVDR0" is read by `QueryCVDR0` and
// written by `UpdateCVDR0`.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "vane/components/conversion.h"

namespace vane {

/// A coefficient of Callendar-Van Dusen or IPTS-68.
struct CoefficientRow {
  std::string_view stepname;
  std::string_view operation;
  std::int32_t readid;
  std::string_view range;  ///< of the `Range` field; empty where the command has none
  std::int32_t index;      ///< in the settings' `Coefficients`
};

inline constexpr CoefficientRow kCVDRows[] = {
    {"CVD R0", "CVDR0", 243, "", 0},
    {"CVD ALPHA", "CVDALPHA", 245, "", 1},
    {"CVD DELTA", "CVDDELTA", 247, "", 2},
    {"CVD BETA", "CVDBETA", 249, "", 3},
};

/// Behind the scale, which is no number.
inline constexpr CoefficientRow kIPTS68Rows[] = {
    {"IPTS-68 R0", "IPTS68R0", 229, "", 0},       {"IPTS-68 ALPHA", "IPTS68ALPHA", 231, "", 1},
    {"IPTS-68 DELTA", "IPTS68DELTA", 233, "", 2}, {"IPTS-68 A4", "IPTS68A4", 239, "4", 3},
    {"IPTS-68 C4", "IPTS68C4", 241, "4", 4},
};

/// A coefficient of a deviation function of ITS-90 (H. Preston-Thomas, Metrologia 27, 1990, pp.
/// 3-10). The rows of a range are walked from the top; the walk ends at the first row whose
/// subrange limits leave the probe's subrange out.
struct RangeRow {
  std::string_view operation;
  std::int32_t readid;
  bool sendsrange;         ///< whether the subrange goes out in `Range`
  std::string_view index;  ///< of the `Index` field; empty where the command has none
  std::int32_t place;      ///< in the range's `Coefficients`
  std::int32_t lowest;     ///< subranges that have the coefficient
  std::int32_t highest;
};

inline constexpr std::int32_t kNoLimit = std::numeric_limits<std::int32_t>::max();

inline constexpr RangeRow kLowRangeRows[] = {
    {"ITS90LowRangeACoefficient", 211, true, "", 0, -kNoLimit, kNoLimit},
    {"ITS90LowRangeBCoefficient", 213, true, "", 1, -kNoLimit, kNoLimit},
    {"ITS90LowRangeCxCoefficient", 215, true, "1", 2, -kNoLimit, 3},
    {"ITS90LowRangeCxCoefficient", 215, true, "2", 3, -kNoLimit, 2},
    {"ITS90LowRangeCxCoefficient", 215, true, "3", 4, -kNoLimit, 2},
    {"ITS90LowRangeCxCoefficient", 215, true, "4", 5, 1, 1},
    {"ITS90LowRangeCxCoefficient", 215, true, "5", 6, 1, 1},
};

inline constexpr RangeRow kHighRangeRows[] = {
    {"ITS90HighRangeACoefficient", 217, true, "", 0, -kNoLimit, kNoLimit},
    {"ITS90HighRangeBCoefficient", 219, true, "", 1, -kNoLimit, 9},
    {"ITS90HighRangeCCoefficient", 221, true, "", 2, -kNoLimit, 7},
    {"ITS90HighRangeDCoefficient", 223, false, "", 3, 6, 6},
};

/// One of the two ranges: its rows, and the resources of its names.
struct RangeWalk {
  std::span<const RangeRow> rows;
  CITS90Range& (CITS90Settings::*range)();
  std::int16_t rangename;
  std::int16_t coefficientsname;
};

inline constexpr RangeWalk kLowRangeWalk{kLowRangeRows, &CITS90Settings::LowRange, 152, 154};
inline constexpr RangeWalk kHighRangeWalk{kHighRangeRows, &CITS90Settings::HighRange, 153, 155};

/// Coefficients that are numbered through: of a thermistor or a polynomial.
struct SeriesRow {
  std::string_view operation;
  std::int32_t readid;
  std::string_view name;  ///< of the conversion, for the reporter
};

inline constexpr SeriesRow kThermistorTR{"ThermistorTRCoefficient", 259, "Thermistor T(R)"};
inline constexpr SeriesRow kThermistorRT{"ThermistorRTCoefficient", 257, "Thermistor R(T)"};
inline constexpr SeriesRow kPolynomial{"POLYCoefficient", 261, "Polynomial"};

/// A value of ITS-90 as a whole.
inline constexpr std::int32_t READ_ITS90_LOW_RANGE = 205;
inline constexpr std::int32_t READ_ITS90_HIGH_RANGE = 207;
inline constexpr std::int32_t READ_ITS90_RTPW = 209;
inline constexpr std::int32_t READ_IPTS68_SCALE = 225;
inline constexpr std::int32_t READ_CONVERSION_TYPE = 130;

/// "No such subrange." On the line it is the number before the first subrange of the low range, and
/// the one behind the last of the high range.
inline constexpr std::int32_t kNoRange = -1;
inline constexpr char kNoLowRange[] = "0";
inline constexpr char kNoHighRange[] = "12";

}  // namespace vane
