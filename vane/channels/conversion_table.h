// The values of the conversions as the instrument keeps them: one row per value, with its command,
// its fields and its place. Reading a conversion walks these rows, and so does writing one.
//
// `operation` is the second half of the operation's name: "CVDR0" is read by `QueryCVDR0` and
// written by `UpdateCVDR0`.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "vane/components/commands.h"
#include "vane/components/conversion.h"
#include "vane/support/text_table.h"

namespace vane {

/// A coefficient of Callendar-Van Dusen or IPTS-68.
struct CoefficientRow {
  std::string_view stepname;
  std::string_view operation;
  ECommand readid;
  std::string_view range;  ///< of the `Range` field; empty where the command has none
  std::int32_t index;      ///< in the settings' `Coefficients`
};

inline constexpr CoefficientRow kCVDRows[] = {
    {"CVD R0", "CVDR0", ECommand::READ_CVD_R0, "", 0},
    {"CVD ALPHA", "CVDALPHA", ECommand::READ_CVD_ALPHA, "", 1},
    {"CVD DELTA", "CVDDELTA", ECommand::READ_CVD_DELTA, "", 2},
    {"CVD BETA", "CVDBETA", ECommand::READ_CVD_BETA, "", 3},
};

/// Behind the scale, which is no number.
inline constexpr CoefficientRow kIPTS68Rows[] = {
    {"IPTS-68 R0", "IPTS68R0", ECommand::READ_IPTS68_R0, "", 0},
    {"IPTS-68 ALPHA", "IPTS68ALPHA", ECommand::READ_IPTS68_ALPHA, "", 1},
    {"IPTS-68 DELTA", "IPTS68DELTA", ECommand::READ_IPTS68_DELTA, "", 2},
    {"IPTS-68 A4", "IPTS68A4", ECommand::READ_IPTS68_A, "4", 3},
    {"IPTS-68 C4", "IPTS68C4", ECommand::READ_IPTS68_C, "4", 4},
};

/// A coefficient of a deviation function of ITS-90 (H. Preston-Thomas, Metrologia 27, 1990, pp.
/// 3-10). The rows of a range are walked from the top; the walk ends at the first row whose
/// subrange limits leave the probe's subrange out.
struct RangeRow {
  std::string_view operation;
  ECommand readid;
  bool sendsrange;         ///< whether the subrange goes out in `Range`
  std::string_view index;  ///< of the `Index` field; empty where the command has none
  std::int32_t place;      ///< in the range's `Coefficients`
  std::int32_t lowest;     ///< subranges that have the coefficient
  std::int32_t highest;
};

inline constexpr std::int32_t kNoLimit = std::numeric_limits<std::int32_t>::max();

inline constexpr RangeRow kLowRangeRows[] = {
    {"ITS90LowRangeACoefficient", ECommand::READ_ITS90_LOW_A, true, "", 0, -kNoLimit, kNoLimit},
    {"ITS90LowRangeBCoefficient", ECommand::READ_ITS90_LOW_B, true, "", 1, -kNoLimit, kNoLimit},
    {"ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "1", 2, -kNoLimit, 3},
    {"ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "2", 3, -kNoLimit, 2},
    {"ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "3", 4, -kNoLimit, 2},
    {"ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "4", 5, 1, 1},
    {"ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "5", 6, 1, 1},
};

inline constexpr RangeRow kHighRangeRows[] = {
    {"ITS90HighRangeACoefficient", ECommand::READ_ITS90_HIGH_A, true, "", 0, -kNoLimit, kNoLimit},
    {"ITS90HighRangeBCoefficient", ECommand::READ_ITS90_HIGH_B, true, "", 1, -kNoLimit, 9},
    {"ITS90HighRangeCCoefficient", ECommand::READ_ITS90_HIGH_C, true, "", 2, -kNoLimit, 7},
    {"ITS90HighRangeDCoefficient", ECommand::READ_ITS90_HIGH_D, false, "", 3, 6, 6},
};

/// One of the two ranges: its rows and its names.
struct RangeWalk {
  std::span<const RangeRow> rows;
  CITS90Range& (CITS90Settings::*range)();
  EText rangename;
  EText coefficientsname;
};

inline constexpr RangeWalk kLowRangeWalk{kLowRangeRows, &CITS90Settings::LowRange, EText::LOW_RANGE,
                                         EText::LOW_RANGE_COEFFICIENTS};
inline constexpr RangeWalk kHighRangeWalk{kHighRangeRows, &CITS90Settings::HighRange,
                                          EText::HIGH_RANGE, EText::HIGH_RANGE_COEFFICIENTS};

/// Coefficients that are numbered through: of a thermistor or a polynomial.
struct SeriesRow {
  std::string_view operation;
  ECommand readid;
  std::string_view name;  ///< of the conversion, for the reporter
};

inline constexpr SeriesRow kThermistorTR{"ThermistorTRCoefficient", ECommand::READ_THERMISTOR_TR,
                                         "Thermistor T(R)"};
inline constexpr SeriesRow kThermistorRT{"ThermistorRTCoefficient", ECommand::READ_THERMISTOR_RT,
                                         "Thermistor R(T)"};
inline constexpr SeriesRow kPolynomial{"POLYCoefficient", ECommand::READ_POLYNOMIAL, "Polynomial"};

/// "No such subrange." On the line it is the number before the first subrange of the low range, and
/// the one behind the last of the high range.
inline constexpr std::int32_t kNoRange = -1;
inline constexpr char kNoLowRange[] = "0";
inline constexpr char kNoHighRange[] = "12";

}  // namespace vane
