// The values of a probe's conversion, read from the instrument or written to it, under a reporter.
//
// The two directions walk the same tables and differ in the fields of a `ConversionWay`.
#pragma once

#include <cstdint>

#include "vane/components/components.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {

class CVaneT312BPRTTHRMChannel;

struct ConversionWay {
  bool writes;
  EText starttext;  ///< of the reporter, for the name of a conversion or range

  // The runs over named values, over one range, and over numbered values.
  const RunPolicy& sequencerun;
  const RunPolicy& rangerun;
  const RunPolicy& seriesrun;

  /// Whether no numbered values at all are done at once. A read takes what the instrument has, so
  /// that none is a failure there.
  bool maybenone;
};

inline constexpr ConversionWay kConversionRead{
    false,         EText::READING_COEFFICIENTS, kConversionReadRun,
    kRangeReadRun, kConversionReadRun,          false};
inline constexpr ConversionWay kConversionWrite{
    true, EText::UPDATING_COEFFICIENTS, kConversionWriteRun, kRangeWriteRun, kSeriesWriteRun, true};

/// True also for a conversion without values; false when the user has been told.
bool RunConversion(const CVaneT312BPRTTHRMChannel& channel, const Components& components,
                   const ConversionWay& way, std::int16_t prbidx, ui::CWindow* frm);

}  // namespace vane
