// The record of a probe, without the values of its conversion: one row per value, with its title,
// its command, the rule by which its reply is understood, and the text by which it is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vane/components/commands.h"
#include "vane/support/text_table.h"

namespace vane {

class CVaneT312BPRTTHRMChannel;

/// "Current" is read by `QueryCurrent` and written by `UpdateCurrent`; the serial number has a name
/// for each.
struct ProbeRow {
  std::string_view readname;
  std::string_view writename;
  EText title;
  ECommand readid;
  void (*store)(CVaneT312BPRTTHRMChannel& channel, const std::string& reply);  ///< in upper case
  std::string (*text)(const CVaneT312BPRTTHRMChannel& channel);
};

inline std::string TitleOf(const ProbeRow& row) { return ResourceText(row.title); }

extern const ProbeRow kProbeSerial;
extern const ProbeRow kRefResistor;
extern const ProbeRow kProbeCurrent;
extern const ProbeRow kProbe3WireOffset;
/// Read with the check for odd bytes off, and written behind a passcode of its own.
extern const ProbeRow kConversionType;

/// In the order in which they are read and written, the conversion type behind them.
inline constexpr const ProbeRow* kProbeRecord[] = {&kProbeSerial, &kRefResistor, &kProbeCurrent,
                                                   &kProbe3WireOffset};

/// True, or an error.
bool QueryProbe(CVaneT312BPRTTHRMChannel& channel, const ProbeRow& row, std::int16_t prbidx);
bool UpdateProbe(const CVaneT312BPRTTHRMChannel& channel, const ProbeRow& row, std::int16_t prbidx);

}  // namespace vane
