#include "vane/support/display_texts.h"

#include <span>
#include <string_view>

#include "vane/support/text_table.h"

namespace vane {
namespace {

// A text of its own, or one of the text table.
struct CodeText {
  std::string_view text;
  EText id = EText::NO_TEXT;
};

// `rows` hold the texts of `first`, `first` + 1 and so on.
std::string TextOf(std::span<const CodeText> rows, std::int32_t first, std::int32_t code) {
  const auto place = static_cast<std::int64_t>(code) - first;
  if (place < 0 || place >= static_cast<std::int64_t>(rows.size()))
    return ResourceText(EText::UNKNOWN);
  const CodeText& row = rows[static_cast<std::size_t>(place)];
  return row.id != EText::NO_TEXT ? ResourceText(row.id) : std::string(row.text);
}

constexpr CodeText kUnitTexts[] = {
    {"", EText::KEEP_EXISTING},
    {"°C"},
    {"°F"},
    {"K"},
    {"R"},
    {"", EText::OHMS},
    {"", EText::KOHMS},
    {"", EText::RATIO},
    {"", EText::VOLTS},
    {"mV"},
    {"µV"},
    {"W"},
};

constexpr CodeText kConversionTypeTexts[] = {
    {"", EText::KEEP_EXISTING},
    {"ITS-90"},
    {"IPTS-68"},
    {"Callendar-Van Dusen"},
    {"High-Temp. PRT"},
    {"Polynomial"},
    {"T(R)"},
    {"R(T)"},
    {"Polynomial"},
    {"Table"},
    {"Thermocouple Type"},
    {"Ohms"},
    {"Volts"},
    {"IEC-751"},
    {"YSI-400"},
    {"W(T90)"},
    {"Ratio"},
    {"PT100"},
    {"ITS-90 Subrange 5"},
    {"Ohms"},
    {"PT100"},
    {"Thermocouple Type"},
};

// The texts of the other enumerations follow each other in the text table, from that of `first`.
template <class Enum>
std::string TextInRow(Enum code, Enum first, Enum last, EText firsttext) {
  if (code < first || code > last) return ResourceText(EText::UNKNOWN);
  const auto place = static_cast<std::int32_t>(code) - static_cast<std::int32_t>(first);
  return ResourceText(static_cast<EText>(static_cast<std::int32_t>(firsttext) + place));
}

}  // namespace

std::string UnitsText(std::int16_t code) { return TextOf(kUnitTexts, -1, code); }

std::string ConversionTypeText(std::int32_t code) { return TextOf(kConversionTypeTexts, -1, code); }

std::string FilterTypeText(ET312BFilterType code) {
  using enum ET312BFilterType;
  return TextInRow(code, FT_NONE, FT_EXPONENTIAL, EText::NONE);
}

std::string SampleActionText(ET312BSampleAction code) {
  using enum ET312BSampleAction;
  return TextInRow(code, SA_RUN, SA_SAMPLE_N, EText::RUN);
}

std::string OvenText(ET312BOven code) {
  using enum ET312BOven;
  return TextInRow(code, OVEN_ON, OVEN_OFF, EText::ON);
}

std::string ChannelModeText(ET312BChannelMode code) {
  using enum ET312BChannelMode;
  return TextInRow(code, CM_ALTERNATE, CM_SCANNER_SEQUENCE, EText::ALTERNATE_INPUTS);
}

std::string ScannerScanModeText(ET312BScannerScanMode code) {
  using enum ET312BScannerScanMode;
  return TextInRow(code, SSM_SCAN, SSM_USER_DEFINED, EText::SCANNER_CHANNELS_ONLY);
}

std::string RefResistorText(ET312BProbeRefResistor code) {
  using enum ET312BProbeRefResistor;
  if (code == PRR_EXTERNAL) return ResourceText(EText::EXTERNAL_RESISTOR);
  return TextInRow(code, PRR_1_OHM, PRR_10K_OHM, EText::OHM_1);
}

}  // namespace vane
