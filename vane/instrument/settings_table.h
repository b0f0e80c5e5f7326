// The settings of the instrument: one row each, with its command, the rule by which its reply is
// understood, and the field and text by which it is written.
//
// `name` is the second half of the operation's name: "Interval" is read by `QueryInterval` and
// written by `UpdateInterval`. The words of a write are not those that a read looks for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vane/instrument/t312b.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/texts.h"

namespace vane {

struct SettingRow {
  std::string_view name;
  ECommand readid;
  bool (*store)(CVaneT312B& instrument, const std::string& reply);
  std::string (*text)(const CVaneT312B& instrument);
  std::string CommandParams::*field = &CommandParams::value;
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

// Texts that are numbers.

template <auto Get>
std::string WholeText(const CVaneT312B& instrument) {
  return std::to_string(static_cast<std::int32_t>((instrument.*Get)()));
}

template <double (CVaneT312B::*Get)() const>
std::string NumberText(const CVaneT312B& instrument) {
  return ToDotDecimal(PlainNumberText((instrument.*Get)()));
}

inline std::string ADCText(const CVaneT312B& instrument) {
  return ToDotDecimal(FormatNumber(instrument.ADC(), instrument.ADCFormat()));
}

// Texts that are words. Of a value that has none, the empty text: the command goes out without it,
// and the instrument acknowledges that and changes nothing.

std::string FilterTypeCode(const CVaneT312B& instrument);
std::string SampleActionCode(const CVaneT312B& instrument);
std::string OvenCode(const CVaneT312B& instrument);
std::string UnitsCode(const CVaneT312B& instrument);

inline constexpr SettingRow kFilterType{"FilterType", ECommand::READ_FILTER_TYPE, StoreFilterType,
                                        FilterTypeCode, &CommandParams::FilterCode};
inline constexpr SettingRow kFilterResponseTime{
    "FilterResponseTime", ECommand::READ_FILTER_RESPONSE_TIME,
    StoreNumber<&CVaneT312B::SetFilterRespTime>, NumberText<&CVaneT312B::FilterRespTime>};
inline constexpr SettingRow kFilterThreshold{"FilterThreshold", ECommand::READ_FILTER_THRESHOLD,
                                             StoreNumber<&CVaneT312B::SetFilterThreshold>,
                                             NumberText<&CVaneT312B::FilterThreshold>};
inline constexpr SettingRow kInterval{"Interval", ECommand::READ_INTERVAL,
                                      StoreLong<&CVaneT312B::SetInterval>,
                                      WholeText<&CVaneT312B::Interval>};
inline constexpr SettingRow kConversionTime{"ConversionTime", ECommand::READ_CONVERSION_TIME,
                                            StoreInteger<&CVaneT312B::SetConversionTime>,
                                            WholeText<&CVaneT312B::ConversionTime>};
inline constexpr SettingRow kIntegrationTime{"IntegrationTime", ECommand::READ_INTEGRATION_TIME,
                                             StoreInteger<&CVaneT312B::SetIntegrationTime>,
                                             WholeText<&CVaneT312B::IntegrationTime>};
inline constexpr SettingRow kRepetitions{"Repetitions", ECommand::READ_REPETITIONS,
                                         StoreInteger<&CVaneT312B::SetRepetitions>,
                                         WholeText<&CVaneT312B::Repetitions>};
inline constexpr SettingRow kChannelMode{"ChannelMode", ECommand::READ_CHANNEL_MODE,
                                         StoreChannelMode, WholeText<&CVaneT312B::ChannelMode>};
inline constexpr SettingRow kSampleN{"SampleN", ECommand::READ_SAMPLE_N,
                                     StoreInteger<&CVaneT312B::SetSampleN>,
                                     WholeText<&CVaneT312B::SampleN>};
inline constexpr SettingRow kSampleAction{"SampleAction", ECommand::READ_SAMPLE_ACTION,
                                          StoreSampleAction, SampleActionCode};
inline constexpr SettingRow kResolution{"Resolution", ECommand::READ_RESOLUTION,
                                        StoreInteger<&CVaneT312B::SetResolution>,
                                        WholeText<&CVaneT312B::Resolution>};
inline constexpr SettingRow kResistanceResolution{
    "ResistanceResolution", ECommand::READ_RESISTANCE_RESOLUTION,
    StoreInteger<&CVaneT312B::SetResistanceResolution>,
    WholeText<&CVaneT312B::ResistanceResolution>};
inline constexpr SettingRow kRatioResolution{"RatioResolution", ECommand::READ_RATIO_RESOLUTION,
                                             StoreInteger<&CVaneT312B::SetRatioResolution>,
                                             WholeText<&CVaneT312B::RatioResolution>};
inline constexpr SettingRow kADC{"ADC", ECommand::READ_ADC, StoreNumber<&CVaneT312B::SetADC>,
                                 ADCText};
inline constexpr SettingRow kOven{"Oven", ECommand::READ_OVEN, StoreOven, OvenCode};
inline constexpr SettingRow kScannerScanMode{"ScannerScanMode", ECommand::READ_SCANNER_SCAN_MODE,
                                             StoreScannerScanMode,
                                             WholeText<&CVaneT312B::ScannerScanMode>};
inline constexpr SettingRow kScanSeqChannels{"ScanSeqChannels", ECommand::READ_SCAN_SEQ_CHANNELS,
                                             StoreInteger<&CVaneT312B::SetScanSeqChannels>,
                                             WholeText<&CVaneT312B::ScanSeqChannels>};
inline constexpr SettingRow kScanSeqSteps{"ScanSeqSteps", ECommand::READ_SCAN_SEQ_STEPS,
                                          StoreInteger<&CVaneT312B::SetScanSeqSteps>,
                                          WholeText<&CVaneT312B::ScanSeqSteps>};
inline constexpr SettingRow kScanChannel{
    "ScanChannel", ECommand::READ_SCAN_CHANNEL, StoreInteger<&CVaneT312B::SetScanChannel>,
    WholeText<&CVaneT312B::ScanChannel>, &CommandParams::Channel};
inline constexpr SettingRow kUnits{"Units", ECommand::READ_UNITS, StoreUnits, UnitsCode};

}  // namespace vane
