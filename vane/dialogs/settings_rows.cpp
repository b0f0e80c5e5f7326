#include "vane/dialogs/settings_rows.h"

#include <type_traits>

#include "vane/instrument/t312b.h"
#include "vane/support/field_editing.h"
#include "vane/support/number_text.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

using It = CVaneT312B;
using enum ESettingsField;
using enum EFieldShape;
using Group = EProtectedGroup;
using Tab = ESettingsTab;

template <class T>
T Narrowed(double value) {
  if constexpr (std::is_same_v<T, double>) {
    return value;
  } else if constexpr (std::is_same_v<T, std::int16_t>) {
    return ToInteger(value);
  } else {
    return static_cast<T>(ToLong(value));
  }
}

template <auto Get, auto Set>
constexpr FieldProperty kOf{
    [](const It& it) { return static_cast<double>((it.*Get)()); },
    [](It& it, double value) {
      (it.*Set)(Narrowed<std::remove_cvref_t<decltype((it.*Get)())>>(value));
    }};

template <ET312BCalParams Index>
constexpr FieldProperty kOfCalParam{[](const It& it) { return it.CalParams(Index); },
                                    [](It& it, double value) { it.SetCalParams(Index, value); }};

template <auto Min, auto Max>
FieldLimits Within(const It&) {
  return {static_cast<double>(Min()), static_cast<double>(Max())};
}

template <ET312BCalParams Index>
FieldLimits WithinCalParam(const It&) {
  return {It::MinCalParamValue(Index), It::MaxCalParamValue(Index)};
}

FieldLimits WithinScanner(const It& it) {
  return {1, static_cast<double>(ScannerChannel(it.NumChannels()))};
}

FieldLimits WithinSteps(const It&) { return {1, 100}; }

template <ET312BCalParams Index>
std::string FormatOfCalParam(const It& it) {
  return it.CalParamsFormat(Index);
}

template <auto Fill>
void FillBy(const It& it, ui::CListControl& lst) {
  (it.*Fill)(lst);
}

void FillAllUnits(const It& it, ui::CListControl& lst) { it.FillUnitsList(lst, false, true); }

// What a text is taken for on its way into the object. Only the number of samples is refused when
// all of the text is no number.
double WholeText(std::string_view text) { return WholeFromField(text); }
constexpr auto kLeading = &NumberFromText;

constexpr FieldRow Heading(ESettingsField id, Tab tab, std::string_view name, EText text,
                           Group group = Group::NONE, bool ofscanner = false) {
  return {.id = id,
          .tab = tab,
          .shape = HEADING,
          .name = name,
          .label = text,
          .group = group,
          .ofscanner = ofscanner};
}

constexpr FieldRow Notice(ESettingsField id, Tab tab, std::string_view name, EText text) {
  return {.id = id, .tab = tab, .shape = NOTICE, .name = name, .label = text};
}

using TextOf = std::string (*)(const It& it);

constexpr FieldRow ReadOnly(ESettingsField id, std::string_view name, EText text, TextOf of) {
  return {.id = id, .tab = Tab::NONE, .shape = READ_ONLY, .name = name, .label = text, .text = of};
}

constexpr FieldRow Choice(ESettingsField id, Tab tab, std::string_view name, EText text,
                          void (*fill)(const It&, ui::CListControl&), FieldProperty property = {},
                          Group group = Group::NONE, bool ofscanner = false) {
  return {.id = id,
          .tab = tab,
          .shape = CHOICE,
          .name = name,
          .label = text,
          .group = group,
          .ofscanner = ofscanner,
          .fill = fill,
          .property = property};
}

constexpr FieldRow List(ESettingsField id, Tab tab, std::string_view name, EText text,
                        std::string_view labelname, void (*fill)(const It&, ui::CListControl&),
                        bool ofscanner) {
  return {.id = id,
          .tab = tab,
          .shape = LIST,
          .name = name,
          .label = text,
          .labelname = labelname,
          .ofscanner = ofscanner,
          .fill = fill};
}

using LimitsOf = FieldLimits (*)(const It& it);

constexpr FieldRow Real(ESettingsField id, Tab tab, std::string_view name, EText text,
                        FieldProperty property, LimitsOf limits, TextOf format,
                        CNumberField::KeyFilter filter = FilterRealKey, Group group = Group::NONE) {
  return {.id = id,
          .tab = tab,
          .shape = NUMBER,
          .name = name,
          .label = text,
          .group = group,
          .property = property,
          .kind = EFieldKind::REAL,
          .filter = filter,
          .limits = limits,
          .format = format,
          .gathered = RealFromField};
}

template <ET312BCalParams Index>
constexpr FieldRow CalParam(ESettingsField id, std::string_view name, EText text, Group group) {
  return Real(id, Tab::CALIBRATION, name, text, kOfCalParam<Index>, WithinCalParam<Index>,
              FormatOfCalParam<Index>, FilterExponentKey, group);
}

constexpr FieldRow Stepped(ESettingsField id, Tab tab, std::string_view name, EText text,
                           EFieldKind kind, FieldProperty property, LimitsOf limits,
                           bool ofscanner = false) {
  return {.id = id,
          .tab = tab,
          .shape = STEPPED,
          .name = name,
          .label = text,
          .group = kind == EFieldKind::TIME ? Group::SAMPLING : Group::NONE,
          .ofscanner = ofscanner,
          .property = property,
          .kind = kind,
          .filter = FilterIntegerKey,
          .limits = limits,
          .gathered = id == SAMPLE_N ? WholeText : kLeading};
}

using enum EFieldKind;
using Param = ET312BCalParams;

constexpr FieldRow kFieldRows[] = {
    ReadOnly(MODEL, "Model", EText::MODEL, [](const It& it) { return it.Model(); }),
    ReadOnly(IDENTIFICATION, "Identification", EText::IDENTIFICATION,
             [](const It& it) { return it.Identification(); }),
    ReadOnly(NUM_CHANNELS, "Channels", EText::CHANNELS,
             [](const It& it) { return std::to_string(it.NumChannels()); }),

    Choice(FILTER_TYPE, Tab::FILTERING, "FilterType", EText::FILTER_TYPE,
           FillBy<&It::FillFilterTypeList>, kOf<&It::FilterType, &It::SetFilterType>),
    Real(RESPONSE_TIME, Tab::FILTERING, "ResponseTime", EText::RESPONSE_TIME,
         kOf<&It::FilterRespTime, &It::SetFilterRespTime>,
         Within<It::MinFilterRespTime, It::MaxFilterRespTime>,
         [](const It&) { return std::string("#0.0"); }),
    Real(THRESHOLD, Tab::FILTERING, "Threshold", EText::THRESHOLD,
         kOf<&It::FilterThreshold, &It::SetFilterThreshold>,
         Within<It::MinFilterThreshold, It::MaxFilterThreshold>,
         [](const It&) { return std::string("#0.0000"); }),

    Choice(UNITS, Tab::SAMPLING, "Units", EText::UNITS, FillAllUnits,
           kOf<&It::Units, &It::SetUnits>, Group::UNITS),
    Choice(SAMPLE_ACTION, Tab::SAMPLING, "SampleAction", EText::SAMPLE_ACTION,
           FillBy<&It::FillSampleActionList>, kOf<&It::SampleAction, &It::SetSampleAction>),
    Stepped(SAMPLE_N, Tab::SAMPLING, "SampleN", EText::SAMPLE_N, WHOLE,
            kOf<&It::SampleN, &It::SetSampleN>, Within<It::MinSampleN, It::MaxSampleN>),
    Heading(SAMPLE_TIMING, Tab::SAMPLING, "SampleTiming", EText::SAMPLE_TIMING, Group::SAMPLING),
    Stepped(INTERVAL, Tab::SAMPLING, "Interval", EText::SAMPLE_INTERVAL, TIME,
            kOf<&It::Interval, &It::SetInterval>, Within<It::MinInterval, It::MaxInterval>),
    Stepped(INTEGRATION_TIME, Tab::SAMPLING, "IntegrationTime", EText::INTEGRATION_TIME, TIME,
            kOf<&It::IntegrationTime, &It::SetIntegrationTime>,
            Within<It::MinIntegrationTime, It::MaxIntegrationTime>),
    Stepped(CONVERSION_TIME, Tab::SAMPLING, "ConversionTime", EText::CONVERSION_TIME, TIME,
            kOf<&It::ConversionTime, &It::SetConversionTime>,
            Within<It::MinConversionTime, It::MaxConversionTime>),
    Heading(RESOLUTIONS, Tab::SAMPLING, "Resolutions", EText::RESOLUTIONS),
    Stepped(TEMP_RESOLUTION, Tab::SAMPLING, "TempResolution", EText::TEMPERATURE, WHOLE,
            kOf<&It::Resolution, &It::SetResolution>, Within<It::MinResolution, It::MaxResolution>),
    Stepped(RES_RESOLUTION, Tab::SAMPLING, "ResResolution", EText::RESISTANCE, WHOLE,
            kOf<&It::ResistanceResolution, &It::SetResistanceResolution>,
            Within<It::MinResistanceResolution, It::MaxResistanceResolution>),
    Stepped(RATIO_RESOLUTION, Tab::SAMPLING, "RatioResolution", EText::RATIO, WHOLE,
            kOf<&It::RatioResolution, &It::SetRatioResolution>,
            Within<It::MinRatioResolution, It::MaxRatioResolution>),
    Notice(SAMPLING_NOTICE, Tab::SAMPLING, "PasscodeProtectedSamp", EText::SAMPLING_IS_PROTECTED),

    Choice(CHANNEL_MODE, Tab::MEASUREMENT, "ChannelMode", EText::CHANNEL_MODE,
           FillBy<&It::FillChannelModeList>, kOf<&It::ChannelMode, &It::SetChannelMode>),
    Choice(SCAN_CHANNEL, Tab::MEASUREMENT, "ScanChannel", EText::SCANNER_CHANNEL,
           FillBy<&It::FillScanChannelList>, kOf<&It::ScanChannel, &It::SetScanChannel>,
           Group::NONE, true),
    Stepped(REPETITIONS, Tab::MEASUREMENT, "Repetitions", EText::REPETITIONS, WHOLE,
            kOf<&It::Repetitions, &It::SetRepetitions>,
            Within<It::MinRepetitions, It::MaxRepetitions>),
    Choice(SCAN_MODE, Tab::MEASUREMENT, "ScanMode", EText::SCANNER_SEQUENCE_MODE,
           FillBy<&It::FillScannerScanModeList>, kOf<&It::ScannerScanMode, &It::SetScannerScanMode>,
           Group::NONE, true),
    Stepped(SEQ_CHANNELS, Tab::MEASUREMENT, "SeqChannels", EText::SEQ_CHANNELS, WHOLE,
            kOf<&It::ScanSeqChannels, &It::SetScanSeqChannels>, WithinScanner, true),
    Heading(USER_DEFINED_SEQ, Tab::MEASUREMENT, "UserDefinedSeq", EText::USER_DEFINED_SEQUENCE,
            Group::NONE, true),
    Stepped(STEPS, Tab::MEASUREMENT, "Steps", EText::STEPS, WHOLE,
            kOf<&It::ScanSeqSteps, &It::SetScanSeqSteps>, WithinSteps, true),
    List(SEQUENCE, Tab::MEASUREMENT, "Sequence", EText::SCANNER_SEQUENCE, "Sequence",
         FillBy<&It::FillScanSeqList>, true),
    Choice(SELECTED_CHANNEL, Tab::MEASUREMENT, "SelectedChannel", EText::STEP_CHANNEL,
           FillBy<&It::FillChannelNameList>, {}, Group::NONE, true),

    // The label of the field above the tabs bears the name that this one would have.
    List(CHANNELS, Tab::CHANNELS, "Channels", EText::CHANNELS_LIST, "ChannelsList",
         FillBy<&It::FillChannelList>, false),
    {.id = CHANNEL_SETTINGS,
     .tab = Tab::CHANNELS,
     .shape = BUTTON,
     .name = "ChannelSettings",
     .label = EText::CHANNEL_SETTINGS},

    // The resistor of the user's own goes with the conversions, though it is written with the rest.
    CalParam<Param::CP_EXTERNAL>(EXTERNAL_RESISTOR, "CalParam(0)", EText::EXTERNAL_RESISTOR,
                                 Group::CONVERSION),
    Heading(INTERNAL_RESISTORS, Tab::CALIBRATION, "Internal", EText::INTERNAL_RESISTORS,
            Group::CALIBRATION),
    CalParam<Param::CP_1_OHM>(RESISTOR_1_OHM, "CalParam(1)", EText::OHM_1, Group::CALIBRATION),
    CalParam<Param::CP_10_OHM>(RESISTOR_10_OHM, "CalParam(2)", EText::OHM_10, Group::CALIBRATION),
    CalParam<Param::CP_100_OHM>(RESISTOR_100_OHM, "CalParam(3)", EText::OHM_100,
                                Group::CALIBRATION),
    CalParam<Param::CP_10K_OHM>(RESISTOR_10K_OHM, "CalParam(4)", EText::OHM_10K,
                                Group::CALIBRATION),
    Real(
        ADC, Tab::CALIBRATION, "ADC", EText::ADC, kOf<&It::ADC, &It::SetADC>,
        Within<It::MinADC, It::MaxADC>, [](const It& it) { return it.ADCFormat(); }, FilterRealKey,
        Group::CALIBRATION),
    Choice(OVEN, Tab::CALIBRATION, "Oven", EText::OVEN, FillBy<&It::FillOvenList>,
           kOf<&It::Oven, &It::SetOven>, Group::CALIBRATION),
    Notice(CALIBRATION_WARNING, Tab::CALIBRATION, "CalWarning", EText::CHANGING_VOIDS_CALIBRATION),
    Notice(CALIBRATION_NOTICE, Tab::CALIBRATION, "PasscodeProtectedCal",
           EText::CALIBRATION_IS_PROTECTED),
};

constexpr bool StandInTheOrderOfTheirIds() {
  std::int32_t next = 0;
  for (const FieldRow& row : kFieldRows) {
    if (row.id != ESettingsField{next++}) return false;
  }
  return ESettingsField{next} == END;
}
static_assert(StandInTheOrderOfTheirIds());

constexpr ESettingsField kToLoad[] = {
    MODEL,           IDENTIFICATION,  NUM_CHANNELS,
    FILTER_TYPE,     RESPONSE_TIME,   THRESHOLD,
    UNITS,           SAMPLE_ACTION,   SAMPLE_N,
    INTERVAL,        CONVERSION_TIME, INTEGRATION_TIME,
    TEMP_RESOLUTION, RES_RESOLUTION,  RATIO_RESOLUTION,
    CHANNEL_MODE,    REPETITIONS,
};

// The mode of the channels is there already, on which the use of these hangs; the number of steps
// makes a sequence of that length, which the instrument's own then replaces.
constexpr ESettingsField kScannerToLoad[] = {SCAN_CHANNEL, SCAN_MODE, SEQ_CHANNELS, STEPS};

constexpr ESettingsField kCalibrationToLoad[] = {
    EXTERNAL_RESISTOR,
    RESISTOR_1_OHM,
    RESISTOR_10_OHM,
    RESISTOR_100_OHM,
    RESISTOR_10K_OHM,
    ADC,
    OVEN,
};

constexpr ESettingsField kToGather[] = {
    FILTER_TYPE,
    RESPONSE_TIME,
    THRESHOLD,
    UNITS,
    SAMPLE_ACTION,
    SAMPLE_N,
    INTERVAL,
    CONVERSION_TIME,
    INTEGRATION_TIME,
    TEMP_RESOLUTION,
    RES_RESOLUTION,
    RATIO_RESOLUTION,
    CHANNEL_MODE,
    SCAN_CHANNEL,
    REPETITIONS,
    SCAN_MODE,
    SEQ_CHANNELS,
    STEPS,
    SEQUENCE,
    EXTERNAL_RESISTOR,
    RESISTOR_1_OHM,
    RESISTOR_10_OHM,
    RESISTOR_100_OHM,
    RESISTOR_10K_OHM,
    ADC,
    OVEN,
};

}  // namespace

std::span<const FieldRow> SettingsRows() { return kFieldRows; }
std::span<const ESettingsField> FieldsToLoad() { return kToLoad; }
std::span<const ESettingsField> ScannerFieldsToLoad() { return kScannerToLoad; }
std::span<const ESettingsField> CalibrationFieldsToLoad() { return kCalibrationToLoad; }
std::span<const ESettingsField> FieldsToGather() { return kToGather; }

}  // namespace vane
