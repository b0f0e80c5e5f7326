#include "apps/snapshots/instrument_properties.h"

#include <algorithm>
#include <type_traits>

#include "apps/snapshots/enum_words.h"
#include "apps/snapshots/value_text.h"
#include "vane/support/display_texts.h"
#include "vane/support/numbering.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

using enum EPropertyGroup;

constexpr PropertyGroupRow kGroups[] = {
    {READOUT, "readout", "Readout"},
    {FILTER, "filter", "Filtering"},
    {SAMPLING, "sampling", "Sampling"},
    {MEASUREMENT, "measurement", "Measurement"},
    {SCAN, "scan", "Scanner"},
    {CALIBRATION, "calibration", "Calibration"},
    {PROTECTION, "protection", "Passcode protection"},
};

constexpr std::string_view kSeconds = "s";
constexpr std::string_view kDigits = "digits";
constexpr std::string_view kOhms = "Ohms";
constexpr std::size_t kMaxSteps = 100;  // of a scan sequence

// The makers of rows, by what the property holds.

template <auto Get>
Value Got(const CVaneT312B& instrument) {
  return (instrument.*Get)();
}

template <auto Get>
PropertyRow ReadOnly(std::string_view name, EPropertyGroup group, std::string_view words) {
  return {.name = name, .group = group, .words = words, .unit = {}, .get = Got<Get>};
}

template <class T, auto Set>
void Store(CVaneT312B& instrument, const Value& value) {
  (instrument.*Set)(static_cast<T>(value.Number()));
}

template <auto Get, auto Set>
PropertyRow Number(std::string_view name, EPropertyGroup group, std::string_view words,
                   std::string_view unit, double minimum, double maximum) {
  using T = std::invoke_result_t<decltype(Get), const CVaneT312B&>;
  return {.name = name,
          .group = group,
          .words = words,
          .unit = unit,
          .get = Got<Get>,
          .set = Store<T, Set>,
          .rule = NumberRule{minimum, maximum, std::is_integral_v<T>}};
}

template <ET312BCalParams Cp>
PropertyRow CalParam(std::string_view name, std::string_view words) {
  return {.name = name,
          .group = CALIBRATION,
          .words = words,
          .unit = kOhms,
          .get = [](const CVaneT312B& instrument) { return Value(instrument.CalParams(Cp)); },
          .set = [](CVaneT312B& instrument,
                    const Value& value) { instrument.SetCalParams(Cp, value.Number()); },
          .rule = NumberRule{CVaneT312B::MinCalParamValue(Cp), CVaneT312B::MaxCalParamValue(Cp)}};
}

template <class Words, auto Get, auto Set>
PropertyRow Choice(std::string_view name, EPropertyGroup group, std::string_view words) {
  return {.name = name,
          .group = group,
          .words = words,
          .unit = {},
          .get = [](const CVaneT312B& instrument) { return Value(Words::Of((instrument.*Get)())); },
          .set =
              [](CVaneT312B& instrument, const Value& value) {
                if (const auto code = Words::Find(value.Text())) (instrument.*Set)(*code);
              },
          .rule = WordRule{Words::All}};
}

// Whether the readout protects a group.
template <auto Get>
PropertyRow Protection(std::string_view name, std::string_view words) {
  return {.name = name,
          .group = PROTECTION,
          .words = words,
          .unit = {},
          .get = Got<Get>,
          .flagwords = {"not protected", "protected"}};
}

// The same row with what its write needs beside it.

template <bool (CVaneT312B::*Update)()>
PropertyRow Alone(PropertyRow row, EGate gate = EGate::NONE) {
  row.update = [](CVaneT312B& instrument) { return (instrument.*Update)(); };
  row.gate = gate;
  return row;
}

PropertyRow Behind(EGate gate, PropertyRow row) {
  row.gate = gate;
  return row;
}

PropertyRow WithScannerOnly(bool (*needsscanner)(const Value&), PropertyRow row) {
  row.needsscanner = needsscanner;
  return row;
}

std::string UnitText(ET312BUnits units) { return UnitsText(static_cast<std::int16_t>(units)); }

using enum ET312BUnits;
using UnitWords = EnumWords<UnitText, UNITS_DEGREESC, UNITS_DEGREESF, UNITS_KELVIN, UNITS_OHMS,
                            UNITS_RATIO, UNITS_W>;
using enum ET312BFilterType;
using FilterWords = EnumWords<FilterTypeText, FT_NONE, FT_AVERAGE, FT_EXPONENTIAL>;
using enum ET312BSampleAction;
using ActionWords = EnumWords<SampleActionText, SA_RUN, SA_STOP, SA_SAMPLE_N>;
using enum ET312BOven;
using OvenWords = EnumWords<OvenText, OVEN_ON, OVEN_OFF>;
using enum ET312BChannelMode;
using ChannelModeWords = EnumWords<ChannelModeText, CM_ALTERNATE, CM_INPUT_1, CM_INPUT_2,
                                   CM_SCANNER_CHANNEL, CM_SCANNER_SEQUENCE>;
using enum ET312BScannerScanMode;
using ScanModeWords = EnumWords<ScannerScanModeText, SSM_SCAN, SSM_INPUT_2_SCAN,
                                SSM_ALT_INPUT_2_SCAN, SSM_ALT_SCAN_1_SCAN, SSM_USER_DEFINED>;

using I = CVaneT312B;  // a short name, for the table
using enum ET312BCalParams;

const PropertyRow kProperties[] = {
    ReadOnly<&I::Model>("Model", READOUT, "Model"),
    ReadOnly<&I::Firmware>("Firmware", READOUT, "Firmware"),
    ReadOnly<&I::Identification>("Identification", READOUT, "Identification"),
    ReadOnly<&I::NumModules>("NumModules", READOUT, "Modules"),
    ReadOnly<&I::NumChannels>("NumChannels", READOUT, "Channels"),

    Choice<FilterWords, &I::FilterType, &I::SetFilterType>("FilterType", FILTER, "Filter type"),
    Number<&I::FilterRespTime, &I::SetFilterRespTime>("FilterRespTime", FILTER, "Response time",
                                                      kSeconds, I::MinFilterRespTime(),
                                                      I::MaxFilterRespTime()),
    Number<&I::FilterThreshold, &I::SetFilterThreshold>("FilterThreshold", FILTER, "Threshold", {},
                                                        I::MinFilterThreshold(),
                                                        I::MaxFilterThreshold()),

    Alone<&I::UpdateUnits>(Choice<UnitWords, &I::Units, &I::SetUnits>("Units", SAMPLING, "Units"),
                           EGate::UNITS_TIME),
    Alone<&I::UpdateSampleAction>(Choice<ActionWords, &I::SampleAction, &I::SetSampleAction>(
        "SampleAction", SAMPLING, "Sample action")),
    Alone<&I::UpdateSampleN>(Number<&I::SampleN, &I::SetSampleN>(
        "SampleN", SAMPLING, "Sample n", {}, I::MinSampleN(), I::MaxSampleN())),
    {.name = "Interval",
     .group = SAMPLING,
     .words = "Sample interval",
     .unit = kSeconds,
     .get = Got<&I::Interval>,
     .set = Store<std::int32_t, &I::SetInterval>,
     .rule = NumberRule{I::MinInterval(), I::MaxInterval(), true},
     .update = [](I& instrument) { return instrument.UpdateInterval(); },
     .gate = EGate::SAMPLING},
    Alone<&I::UpdateIntegrationTime>(Number<&I::IntegrationTime, &I::SetIntegrationTime>(
                                         "IntegrationTime", SAMPLING, "Integration time", kSeconds,
                                         I::MinIntegrationTime(), I::MaxIntegrationTime()),
                                     EGate::SAMPLING),
    Alone<&I::UpdateConversionTime>(Number<&I::ConversionTime, &I::SetConversionTime>(
                                        "ConversionTime", SAMPLING, "Conversion time", kSeconds,
                                        I::MinConversionTime(), I::MaxConversionTime()),
                                    EGate::SAMPLING),
    Alone<&I::UpdateResolution>(
        Number<&I::Resolution, &I::SetResolution>("Resolution", SAMPLING, "Temperature resolution",
                                                  kDigits, I::MinResolution(), I::MaxResolution())),
    Alone<&I::UpdateResistanceResolution>(
        Number<&I::ResistanceResolution, &I::SetResistanceResolution>(
            "ResistanceResolution", SAMPLING, "Resistance resolution", kDigits,
            I::MinResistanceResolution(), I::MaxResistanceResolution())),
    Alone<&I::UpdateRatioResolution>(Number<&I::RatioResolution, &I::SetRatioResolution>(
        "RatioResolution", SAMPLING, "Ratio resolution", kDigits, I::MinRatioResolution(),
        I::MaxRatioResolution())),

    WithScannerOnly(
        [](const Value& mode) { return ChannelModeWords::Find(mode.Text()) >= CM_SCANNER_CHANNEL; },
        Alone<&I::UpdateChannelMode>(Choice<ChannelModeWords, &I::ChannelMode, &I::SetChannelMode>(
            "ChannelMode", MEASUREMENT, "Channel mode"))),
    Alone<&I::UpdateRepetitions>(Number<&I::Repetitions, &I::SetRepetitions>(
        "Repetitions", MEASUREMENT, "Repetitions", {}, I::MinRepetitions(), I::MaxRepetitions())),

    Alone<&I::UpdateScanChannel>(Number<&I::ScanChannel, &I::SetScanChannel>(
        "ScanChannel", SCAN, "Scanner channel", {}, 1, kScannerChannels)),
    Alone<&I::UpdateScannerScanMode>(
        Choice<ScanModeWords, &I::ScannerScanMode, &I::SetScannerScanMode>(
            "ScannerScanMode", SCAN, "Scanner sequence mode")),
    Alone<&I::UpdateScanSeqChannels>(Number<&I::ScanSeqChannels, &I::SetScanSeqChannels>(
        "ScanSeqChannels", SCAN, "Sequence channels", {}, 1, kScannerChannels)),
    // The number of steps is that of the sequence, which writes it.
    {.name = "ScanSeqSteps",
     .group = SCAN,
     .words = "User-defined steps",
     .unit = {},
     .get = Got<&I::ScanSeqSteps>},
    {.name = "ScanChannels",
     .group = SCAN,
     .words = "User-defined sequence",
     .unit = {},
     .get = Got<&I::ScanChannels>,
     .set = [](I& instrument, const Value& value) { instrument.SetScanChannels(value.Text()); },
     .rule = TextRule{[](std::string_view list) { return ScanSequence(list, kHighestChannel); },
                      "a list of up to " + std::to_string(kMaxSteps) + " channels from " +
                          std::to_string(kNumInputs) + " to " + std::to_string(kHighestChannel) +
                          ", with \",\" between them"},
     .update = [](I& instrument) { return instrument.UpdateScanChannelList(); },
     .issequence = true},

    // The names count as the parameters do. The external resistor goes with the conversions.
    Behind(EGate::CONVERSION, CalParam<CP_EXTERNAL>("CalParams0", "External resistor")),
    Behind(EGate::CALIBRATION, CalParam<CP_1_OHM>("CalParams1", "1 Ohm resistor")),
    Behind(EGate::CALIBRATION, CalParam<CP_10_OHM>("CalParams2", "10 Ohm resistor")),
    Behind(EGate::CALIBRATION, CalParam<CP_100_OHM>("CalParams3", "100 Ohm resistor")),
    Behind(EGate::CALIBRATION, CalParam<CP_10K_OHM>("CalParams4", "10K Ohm resistor")),
    Behind(EGate::CALIBRATION,
           Number<&I::ADC, &I::SetADC>("ADC", CALIBRATION, "ADC", {}, I::MinADC(), I::MaxADC())),
    Behind(EGate::CALIBRATION,
           Choice<OvenWords, &I::Oven, &I::SetOven>("Oven", CALIBRATION, "Oven")),

    Protection<&I::ProtectConversion>("ProtectConversion", "Conversion"),
    Protection<&I::ProtectCalParams>("ProtectCalParams", "Calibration"),
    Protection<&I::ProtectSampling>("ProtectSampling", "Sampling"),
    Protection<&I::ProtectUnitsTime>("ProtectUnitsTime", "Units and time"),
};

}  // namespace

std::span<const PropertyGroupRow> PropertyGroups() { return kGroups; }

std::span<const PropertyRow> InstrumentProperties() { return kProperties; }

const PropertyRow* FindProperty(std::string_view name) {
  for (const PropertyRow& row : kProperties) {
    if (Folded(row.name) == Folded(name)) return &row;
  }
  return nullptr;
}

Value ValueIn(const CVaneT312B& instrument, const PropertyRow& row) {
  return IsThere(row.group, instrument) ? row.get(instrument) : Value();
}

std::vector<PropertyValue> SettableValues(const CVaneT312B& instrument) {
  std::vector<PropertyValue> values;
  for (const PropertyRow& row : kProperties) {
    if (row.set != nullptr) values.push_back({&row, ValueIn(instrument, row)});
  }
  return values;
}

Members MembersOf(const std::vector<PropertyValue>& values) {
  Members members;
  for (const auto& [row, value] : values) members.push_back({std::string(row->name), value});
  return members;
}

bool IsThere(EPropertyGroup group, const CVaneT312B& instrument) {
  return group != SCAN || instrument.HasScanners();
}

std::optional<std::string> ScanSequence(std::string_view list, std::int32_t highest) {
  std::string sequence;
  std::size_t count = 0;
  for (std::size_t begin = 0; begin <= list.size(); ++count) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    const std::string item(TrimBlanks(list.substr(begin, end - begin)));
    begin = end + 1;
    const bool digits =
        !item.empty() && item.size() <= 2 && item.find_first_not_of("0123456789") == item.npos;
    if (!digits) return std::nullopt;
    const int channel = std::stoi(item);
    if (channel < kNumInputs || channel > highest) return std::nullopt;
    Append(sequence, ",", std::to_string(channel));
  }
  if (count > kMaxSteps) return std::nullopt;
  return sequence;
}

bool NeedsScanner(const PropertyRow& row, const Value& value) {
  return row.group == SCAN || (row.needsscanner != nullptr && row.needsscanner(value));
}

std::string PropertyText(const PropertyRow& row, const Value& value) {
  const auto* const flag = value.If<bool>();
  if (flag != nullptr && !row.flagwords[0].empty())
    return std::string(row.flagwords[*flag ? 1 : 0]);
  return TextOf(value, row.unit);
}

}  // namespace vane::thermoscribe
