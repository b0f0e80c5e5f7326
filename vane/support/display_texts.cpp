#include "vane/support/display_texts.h"

#include <span>
#include <string_view>

#include "vane/support/text_table.h"

namespace vane {
namespace {

constexpr std::int16_t kUnknown = 158;

// A text of its own, or the number of one in the text table.
struct CodeText {
  std::string_view text;
  std::int16_t id = 0;
};

// `rows` hold the texts of `first`, `first` + 1 and so on.
std::string TextOf(std::span<const CodeText> rows, std::int32_t first, std::int32_t code) {
  const auto place = static_cast<std::int64_t>(code) - first;
  if (place < 0 || place >= static_cast<std::int64_t>(rows.size())) return ResourceText(kUnknown);
  const CodeText& row = rows[static_cast<std::size_t>(place)];
  return row.id != 0 ? ResourceText(row.id) : std::string(row.text);
}

constexpr CodeText kUnits[] = {
    {"", 157}, {"°C"},    {"°F"},    {"K"},  {"R"},  {"", 160},
    {"", 161}, {"", 163}, {"", 162}, {"mV"}, {"µV"}, {"W"},
};

constexpr CodeText kConversionTypes[] = {
    {"", 157},
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

// The texts of the other enumerations follow each other in the text table.
template <class Enum>
std::string TextInRow(Enum code, Enum first, Enum last, std::int16_t firstid) {
  if (code < first || code > last) return ResourceText(kUnknown);
  const auto place = static_cast<std::int32_t>(code) - static_cast<std::int32_t>(first);
  return ResourceText(static_cast<std::int16_t>(firstid + place));
}

}  // namespace

std::string UnitsText(std::int16_t code) { return TextOf(kUnits, -1, code); }

std::string ConversionTypeText(std::int32_t code) { return TextOf(kConversionTypes, -1, code); }

std::string FilterTypeText(ET312BFilterType code) {
  using enum ET312BFilterType;
  return TextInRow(code, FT_NONE, FT_EXPONENTIAL, 250);
}

std::string SampleActionText(ET312BSampleAction code) {
  using enum ET312BSampleAction;
  return TextInRow(code, SA_RUN, SA_SAMPLE_N, 254);
}

std::string OvenText(ET312BOven code) {
  using enum ET312BOven;
  return TextInRow(code, OVEN_ON, OVEN_OFF, 282);
}

std::string ChannelModeText(ET312BChannelMode code) {
  using enum ET312BChannelMode;
  return TextInRow(code, CM_ALTERNATE, CM_SCANNER_SEQUENCE, 266);
}

std::string ScannerScanModeText(ET312BScannerScanMode code) {
  using enum ET312BScannerScanMode;
  return TextInRow(code, SSM_SCAN, SSM_USER_DEFINED, 271);
}

std::string RefResistorText(ET312BProbeRefResistor code) {
  using enum ET312BProbeRefResistor;
  if (code == PRR_EXTERNAL) return ResourceText(159);
  return TextInRow(code, PRR_1_OHM, PRR_10K_OHM, 240);
}

}  // namespace vane
