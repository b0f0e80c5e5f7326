// The values of the conversions as the instrument keeps them: one row per value, with its command,
// its fields and its place. Reading a conversion walks these rows, and so does writing one.
//
// `operation` is the second half of the operation's name: "CVDR0" is read by `QueryCVDR0` and
// written by `UpdateCVDR0`.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>

#include "vane/components/commands.h"
#include "vane/components/conversion.h"

namespace vane {

/// A coefficient of Callendar-Van Dusen or IPTS-68. Its place in the settings' `Coefficients` is
/// its place in the table.
struct CoefficientRow {
  std::string_view name;  ///< in the field
  std::string_view stepname;
  std::string_view operation;
  ECommand readid;
  std::string_view range;  ///< of the `Range` field; empty where the command has none
  const char* format;
  double start;  ///< what a new conversion begins with
};

inline constexpr CoefficientRow kCVDRows[] = {
    {"R0", "CVD R0", "CVDR0", ECommand::READ_CVD_R0, "", "##0.0##########", 100.0},
    {"alpha", "CVD ALPHA", "CVDALPHA", ECommand::READ_CVD_ALPHA, "", "0.0############", 0.00385},
    {"delta", "CVD DELTA", "CVDDELTA", ECommand::READ_CVD_DELTA, "", "0.0############", 1.507},
    {"beta", "CVD BETA", "CVDBETA", ECommand::READ_CVD_BETA, "", "0.0############", 0.111},
};

inline constexpr CoefficientRow kIPTS68Rows[] = {
    {"R0", "IPTS-68 R0", "IPTS68R0", ECommand::READ_IPTS68_R0, "", "##0.0##########", 100.0},
    {"alpha", "IPTS-68 ALPHA", "IPTS68ALPHA", ECommand::READ_IPTS68_ALPHA, "", "0.0############",
     0.00392597},
    {"delta", "IPTS-68 DELTA", "IPTS68DELTA", ECommand::READ_IPTS68_DELTA, "", "0.0############",
     1.496334},
    {"a4", "IPTS-68 A4", "IPTS68A4", ECommand::READ_IPTS68_A, "4", "0.0########E-00", 0.0},
    {"c4", "IPTS-68 C4", "IPTS68C4", ECommand::READ_IPTS68_C, "4", "0.0########E-00", 0.0},
};

/// A coefficient of a deviation function of ITS-90 (H. Preston-Thomas, Metrologia 27, 1990, pp.
/// 3-10). Its place in the range's `Coefficients` is its place in the table. The rows of a range
/// are walked from the top; the walk ends at the first row that the probe's subrange does not have.
struct RangeRow {
  std::string_view name;  ///< in the field, without the number of the subrange
  std::string_view operation;
  ECommand readid;
  bool sendsrange;         ///< whether the subrange goes out in `Range`
  std::string_view index;  ///< of the `Index` field; empty where the command has none
  std::int32_t lowest;     ///< subranges that have the coefficient
  std::int32_t highest;

  constexpr bool Has(std::int32_t subrange) const {
    return subrange >= lowest && subrange <= highest;
  }
};

inline constexpr std::int32_t kNoLimit = std::numeric_limits<std::int32_t>::max();

inline constexpr RangeRow kLowRangeRows[] = {
    {"a", "ITS90LowRangeACoefficient", ECommand::READ_ITS90_LOW_A, true, "", -kNoLimit, kNoLimit},
    {"b", "ITS90LowRangeBCoefficient", ECommand::READ_ITS90_LOW_B, true, "", -kNoLimit, kNoLimit},
    {"c1", "ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "1", -kNoLimit, 3},
    {"c2", "ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "2", -kNoLimit, 2},
    {"c3", "ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "3", -kNoLimit, 2},
    {"c4", "ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "4", 1, 1},
    {"c5", "ITS90LowRangeCxCoefficient", ECommand::READ_ITS90_LOW_C, true, "5", 1, 1},
};

inline constexpr RangeRow kHighRangeRows[] = {
    {"a", "ITS90HighRangeACoefficient", ECommand::READ_ITS90_HIGH_A, true, "", -kNoLimit, kNoLimit},
    {"b", "ITS90HighRangeBCoefficient", ECommand::READ_ITS90_HIGH_B, true, "", -kNoLimit, 9},
    {"c", "ITS90HighRangeCCoefficient", ECommand::READ_ITS90_HIGH_C, true, "", -kNoLimit, 7},
    {"d", "ITS90HighRangeDCoefficient", ECommand::READ_ITS90_HIGH_D, false, "", 6, 6},
};

/// "No such subrange."
inline constexpr std::int32_t kNoRange = -1;

/// One of the two sides of ITS-90: the numbers of its subranges, and their coefficients. The low
/// side has the lower ends hydrogen, neon, oxygen, argon and mercury; the high side the upper ends
/// silver, aluminium, zinc, tin, indium and gallium.
struct RangeSide {
  std::int32_t first;
  std::int32_t last;
  std::span<const RangeRow> rows;

  /// How many coefficients `subrange` has; none where it isn't one of this side.
  constexpr std::int16_t CoefficientsOf(std::int32_t subrange) const {
    if (subrange < first || subrange > last) return 0;
    const auto end =
        std::ranges::find_if_not(rows, [&](const RangeRow& row) { return row.Has(subrange); });
    return static_cast<std::int16_t>(std::distance(rows.begin(), end));
  }
};

inline constexpr RangeSide kLowSide{1, 5, kLowRangeRows};
inline constexpr RangeSide kHighSide{6, 11, kHighRangeRows};
static_assert(kLowSide.CoefficientsOf(4) == 2 && kHighSide.CoefficientsOf(6) == 4);

/// Coefficients that are numbered through.
struct SeriesRow {
  EVaneConversionType type;
  std::string_view letter;  ///< their name in the field is this and a number from 0
  std::string_view title;
  std::string_view operation;
  ECommand readid;
};

inline constexpr std::int16_t kThermistorCoefficients = 4;
inline constexpr std::int16_t kPolynomialCoefficients = 11;

inline constexpr SeriesRow kSeriesRows[] = {
    {EVaneConversionType::CONV_POLYNOMIAL, "c", "Polynomial", "POLYCoefficient",
     ECommand::READ_POLYNOMIAL},
    {EVaneConversionType::CONV_THERMISTOR_TR, "B", "Thermistor T(R)", "ThermistorTRCoefficient",
     ECommand::READ_THERMISTOR_TR},
    {EVaneConversionType::CONV_THERMISTOR_RT, "A", "Thermistor R(T)", "ThermistorRTCoefficient",
     ECommand::READ_THERMISTOR_RT},
};

}  // namespace vane
