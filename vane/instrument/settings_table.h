// The settings of the instrument: one row each, with its title, its command, the rule by which its
// reply is understood, and the text and field by which it is written; and the orders in which a run
// goes through them.
//
// `name` is the second half of the operation's name: "Interval" is read by `QueryInterval` and
// written by `UpdateInterval`. The words of a write are not those that a read looks for.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "vane/instrument/t312b.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {

class CLongRun;

struct SettingRow {
  std::string_view name;
  EText title;
  ECommand readid;
  bool (*store)(CVaneT312B& instrument, const std::string& reply);
  std::string (*text)(const CVaneT312B& instrument);
  std::string CommandParams::*field = &CommandParams::value;
  std::int32_t index = -1;  ///< from 0, where there are several of a setting
};

/// Of one of several, with its number from 1.
std::string TitleOf(const SettingRow& row);

/// What goes out in `Index`; empty for a setting that there is one of.
inline std::string IndexText(const SettingRow& row) {
  return row.index < 0 ? std::string() : std::to_string(row.index);
}

/// One exchange. True, or an error; only of `kUnits` also false, for a reply that names no unit.
bool Query(CVaneT312B& instrument, const SettingRow& row);
bool Update(const CVaneT312B& instrument, const SettingRow& row);

/// A step of `run` for each of `rows`.
bool QueryRows(CVaneT312B& instrument, CLongRun& run, std::span<const SettingRow* const> rows);
bool UpdateRows(const CVaneT312B& instrument, CLongRun& run,
                std::span<const SettingRow* const> rows);

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

template <std::int32_t Index>
bool StoreCalParam(CVaneT312B& instrument, const std::string& reply) {
  instrument.SetCalParams(static_cast<ET312BCalParams>(Index), NumberFromText(reply));
  return true;
}

template <std::int32_t Index>
std::string CalParamText(const CVaneT312B& instrument) {
  constexpr auto kParam = static_cast<ET312BCalParams>(Index);
  return ToDotDecimal(
      FormatNumber(instrument.CalParams(kParam), instrument.CalParamsFormat(kParam)));
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

inline constexpr SettingRow kFilterType{
    "FilterType",    EText::FILTER_TYPE, ECommand::READ_FILTER_TYPE,
    StoreFilterType, FilterTypeCode,     &CommandParams::FilterCode};
inline constexpr SettingRow kFilterResponseTime{
    "FilterResponseTime", EText::FILTER_RESPONSE_TIME, ECommand::READ_FILTER_RESPONSE_TIME,
    StoreNumber<&CVaneT312B::SetFilterRespTime>, NumberText<&CVaneT312B::FilterRespTime>};
inline constexpr SettingRow kFilterThreshold{
    "FilterThreshold", EText::THRESHHOLD, ECommand::READ_FILTER_THRESHOLD,
    StoreNumber<&CVaneT312B::SetFilterThreshold>, NumberText<&CVaneT312B::FilterThreshold>};
inline constexpr SettingRow kInterval{"Interval", EText::SAMPLE_INTERVAL, ECommand::READ_INTERVAL,
                                      StoreLong<&CVaneT312B::SetInterval>,
                                      WholeText<&CVaneT312B::Interval>};
inline constexpr SettingRow kConversionTime{
    "ConversionTime", EText::CONVERSION_TIME, ECommand::READ_CONVERSION_TIME,
    StoreInteger<&CVaneT312B::SetConversionTime>, WholeText<&CVaneT312B::ConversionTime>};
inline constexpr SettingRow kIntegrationTime{
    "IntegrationTime", EText::INTEGRATION_TIME, ECommand::READ_INTEGRATION_TIME,
    StoreInteger<&CVaneT312B::SetIntegrationTime>, WholeText<&CVaneT312B::IntegrationTime>};
inline constexpr SettingRow kRepetitions{
    "Repetitions", EText::REPETITIONS, ECommand::READ_REPETITIONS,
    StoreInteger<&CVaneT312B::SetRepetitions>, WholeText<&CVaneT312B::Repetitions>};
inline constexpr SettingRow kChannelMode{"ChannelMode", EText::CHANNEL_MODE,
                                         ECommand::READ_CHANNEL_MODE, StoreChannelMode,
                                         WholeText<&CVaneT312B::ChannelMode>};
inline constexpr SettingRow kSampleN{"SampleN", EText::SAMPLE_N, ECommand::READ_SAMPLE_N,
                                     StoreInteger<&CVaneT312B::SetSampleN>,
                                     WholeText<&CVaneT312B::SampleN>};
inline constexpr SettingRow kSampleAction{"SampleAction", EText::SAMPLE_ACTION,
                                          ECommand::READ_SAMPLE_ACTION, StoreSampleAction,
                                          SampleActionCode};
inline constexpr SettingRow kResolution{
    "Resolution", EText::TEMPERATURE_RESOLUTION, ECommand::READ_RESOLUTION,
    StoreInteger<&CVaneT312B::SetResolution>, WholeText<&CVaneT312B::Resolution>};
inline constexpr SettingRow kResistanceResolution{
    "ResistanceResolution", EText::RESISTANCE_RESOLUTION, ECommand::READ_RESISTANCE_RESOLUTION,
    StoreInteger<&CVaneT312B::SetResistanceResolution>,
    WholeText<&CVaneT312B::ResistanceResolution>};
inline constexpr SettingRow kRatioResolution{
    "RatioResolution", EText::RATIO_RESOLUTION, ECommand::READ_RATIO_RESOLUTION,
    StoreInteger<&CVaneT312B::SetRatioResolution>, WholeText<&CVaneT312B::RatioResolution>};
template <std::int32_t Index>
inline constexpr SettingRow kCalParam{"CalParam",
                                      EText::CALIBRATION_PARAMETER,
                                      ECommand::READ_CAL_PARAM,
                                      StoreCalParam<Index>,
                                      CalParamText<Index>,
                                      &CommandParams::value,
                                      Index};
inline constexpr SettingRow kADC{"ADC", EText::ADC, ECommand::READ_ADC,
                                 StoreNumber<&CVaneT312B::SetADC>, ADCText};
inline constexpr SettingRow kOven{"Oven", EText::OVEN, ECommand::READ_OVEN, StoreOven, OvenCode};
inline constexpr SettingRow kScannerScanMode{"ScannerScanMode", EText::SCANNER_SEQUENCE_MODE,
                                             ECommand::READ_SCANNER_SCAN_MODE, StoreScannerScanMode,
                                             WholeText<&CVaneT312B::ScannerScanMode>};
inline constexpr SettingRow kScanSeqChannels{
    "ScanSeqChannels", EText::SEQ_CHANNELS, ECommand::READ_SCAN_SEQ_CHANNELS,
    StoreInteger<&CVaneT312B::SetScanSeqChannels>, WholeText<&CVaneT312B::ScanSeqChannels>};
inline constexpr SettingRow kScanSeqSteps{
    "ScanSeqSteps", EText::STEPS, ECommand::READ_SCAN_SEQ_STEPS,
    StoreInteger<&CVaneT312B::SetScanSeqSteps>, WholeText<&CVaneT312B::ScanSeqSteps>};
inline constexpr SettingRow kScanChannel{"ScanChannel",
                                         EText::SCANNER_CHANNEL,
                                         ECommand::READ_SCAN_CHANNEL,
                                         StoreInteger<&CVaneT312B::SetScanChannel>,
                                         WholeText<&CVaneT312B::ScanChannel>,
                                         &CommandParams::Channel};
inline constexpr SettingRow kUnits{"Units", EText::UNITS, ECommand::READ_UNITS, StoreUnits,
                                   UnitsCode};

// The orders, which a read and a write of everything share but for the scanner's.

inline constexpr const SettingRow* kReadoutSettings[] = {
    &kFilterType,  &kFilterResponseTime,   &kFilterThreshold,
    &kUnits,       &kSampleAction,         &kSampleN,
    &kInterval,    &kConversionTime,       &kIntegrationTime,
    &kResolution,  &kResistanceResolution, &kRatioResolution,
    &kChannelMode, &kRepetitions,
};

/// Behind a passcode of their own.
inline constexpr const SettingRow* kCalibrationSettings[] = {
    &kCalParam<0>, &kCalParam<1>, &kCalParam<2>, &kCalParam<3>, &kCalParam<4>, &kADC, &kOven,
};
static_assert(&kCalParam<CVaneT312B::NumCalParams() - 1> ==
              kCalibrationSettings[CVaneT312B::NumCalParams() - 1]);

inline constexpr const SettingRow* kScannerReads[] = {&kScanChannel, &kScannerScanMode,
                                                      &kScanSeqChannels, &kScanSeqSteps};
/// The number of steps goes out with the steps.
inline constexpr const SettingRow* kScannerWrites[] = {&kScanChannel, &kScannerScanMode,
                                                       &kScanSeqChannels};

}  // namespace vane
