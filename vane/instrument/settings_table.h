// The settings of the instrument: one row each, with its command, the rule by which its reply is
// understood, and the property that takes it. The command that writes a setting is the one behind
// the command that reads it.
//
// `name` is the second half of the operation's name: "Interval" is read by `QueryInterval`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vane/instrument/t312b.h"
#include "vane/support/numbers.h"
#include "vane/support/texts.h"

namespace vane {

struct SettingRow {
  std::string_view name;
  std::int32_t readid;
  bool (*store)(CVaneT312B& instrument, const std::string& reply);
};

// Rules that are numbers.

template <void (CVaneT312B::*Set)(double)>
bool StoreNumber(CVaneT312B& instrument, const std::string& reply) {
  (instrument.*Set)(NumberFromText(reply));
  return true;
}

template <void (CVaneT312B::*Set)(std::int16_t)>
bool StoreInteger(CVaneT312B& instrument, const std::string& reply) {
  (instrument.*Set)(ToInteger(NumberFromText(reply)));
  return true;
}

template <void (CVaneT312B::*Set)(std::int32_t)>
bool StoreLong(CVaneT312B& instrument, const std::string& reply) {
  (instrument.*Set)(ToLong(NumberFromText(reply)));
  return true;
}

// Rules that look for words or know certain numbers only; what they don't know has a fallback.

bool StoreFilterType(CVaneT312B& instrument, const std::string& reply);
bool StoreChannelMode(CVaneT312B& instrument, const std::string& reply);
bool StoreScannerScanMode(CVaneT312B& instrument, const std::string& reply);
bool StoreSampleAction(CVaneT312B& instrument, const std::string& reply);
bool StoreOven(CVaneT312B& instrument, const std::string& reply);
/// The only one that can give false.
bool StoreUnits(CVaneT312B& instrument, const std::string& reply);

inline constexpr SettingRow kFilterType{"FilterType", 24, StoreFilterType};
inline constexpr SettingRow kFilterResponseTime{"FilterResponseTime", 26,
                                                StoreNumber<&CVaneT312B::SetFilterRespTime>};
inline constexpr SettingRow kFilterThreshold{"FilterThreshold", 28,
                                             StoreNumber<&CVaneT312B::SetFilterThreshold>};
inline constexpr SettingRow kInterval{"Interval", 32, StoreLong<&CVaneT312B::SetInterval>};
inline constexpr SettingRow kConversionTime{"ConversionTime", 34,
                                            StoreInteger<&CVaneT312B::SetConversionTime>};
inline constexpr SettingRow kIntegrationTime{"IntegrationTime", 36,
                                             StoreInteger<&CVaneT312B::SetIntegrationTime>};
inline constexpr SettingRow kRepetitions{"Repetitions", 54,
                                         StoreInteger<&CVaneT312B::SetRepetitions>};
inline constexpr SettingRow kChannelMode{"ChannelMode", 56, StoreChannelMode};
inline constexpr SettingRow kSampleN{"SampleN", 58, StoreInteger<&CVaneT312B::SetSampleN>};
inline constexpr SettingRow kSampleAction{"SampleAction", 60, StoreSampleAction};
inline constexpr SettingRow kResolution{"Resolution", 66, StoreInteger<&CVaneT312B::SetResolution>};
inline constexpr SettingRow kResistanceResolution{
    "ResistanceResolution", 68, StoreInteger<&CVaneT312B::SetResistanceResolution>};
inline constexpr SettingRow kRatioResolution{"RatioResolution", 70,
                                             StoreInteger<&CVaneT312B::SetRatioResolution>};
inline constexpr SettingRow kADC{"ADC", 84, StoreNumber<&CVaneT312B::SetADC>};
inline constexpr SettingRow kOven{"Oven", 86, StoreOven};
inline constexpr SettingRow kScannerScanMode{"ScannerScanMode", 104, StoreScannerScanMode};
inline constexpr SettingRow kScanSeqChannels{"ScanSeqChannels", 106,
                                             StoreInteger<&CVaneT312B::SetScanSeqChannels>};
inline constexpr SettingRow kScanSeqSteps{"ScanSeqSteps", 108,
                                          StoreInteger<&CVaneT312B::SetScanSeqSteps>};
inline constexpr SettingRow kScanChannel{"ScanChannel", 116,
                                         StoreInteger<&CVaneT312B::SetScanChannel>};
inline constexpr SettingRow kUnits{"Units", 168, StoreUnits};

}  // namespace vane
