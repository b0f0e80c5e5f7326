#include "vane/instrument/settings_table.h"

#include "vane/support/text_table.h"
#include "vane/support/words.h"

namespace vane {
namespace {

constexpr WordRow<ET312BFilterType> kFilterWords[] = {
    {"NONE", "n", ET312BFilterType::FT_NONE},
    {"AVERAGE", "a", ET312BFilterType::FT_AVERAGE},
    {"EXP", "e", ET312BFilterType::FT_EXPONENTIAL},
};

constexpr WordRow<ET312BSampleAction> kActionWords[] = {
    {"R", "R", ET312BSampleAction::SA_RUN},
    {"ST", "ST", ET312BSampleAction::SA_STOP},
    {"SAMPLE N", "SN", ET312BSampleAction::SA_SAMPLE_N},
};

constexpr WordRow<ET312BOven> kOvenWords[] = {
    {"ON", "ON", ET312BOven::OVEN_ON},
    {"OFF", "OFF", ET312BOven::OVEN_OFF},
};

// In this order: a reply that holds "C" anywhere is one of degrees Celsius.
constexpr WordRow<ET312BUnits> kUnitWords[] = {
    {"C", "C", ET312BUnits::UNITS_DEGREESC}, {"F", "F", ET312BUnits::UNITS_DEGREESF},
    {"K", "K", ET312BUnits::UNITS_KELVIN},   {"OHM", "O", ET312BUnits::UNITS_OHMS},
    {"R", "R", ET312BUnits::UNITS_RATIO},    {"W", "W", ET312BUnits::UNITS_W},
};

// The member of the reply's number, when that is one of `first` to `last`.
template <class Enum>
Enum MemberOf(const std::string& reply, Enum first, Enum last, Enum fallback) {
  const double number = NumberFromText(reply);
  for (auto code = static_cast<std::int32_t>(first); code <= static_cast<std::int32_t>(last);
       ++code) {
    if (number == code) return static_cast<Enum>(code);
  }
  return fallback;
}

}  // namespace

std::string TitleOf(const SettingRow& row) {
  const std::string title = ResourceText(row.title);
  return row.index < 0 ? title : title + " " + std::to_string(row.index + 1);
}

bool StoreFilterType(CVaneT312B& instrument, const std::string& reply) {
  instrument.SetFilterType(
      ValueOf<ET312BFilterType>(reply, kFilterWords, ET312BFilterType::FT_NONE));
  return true;
}

bool StoreChannelMode(CVaneT312B& instrument, const std::string& reply) {
  using enum ET312BChannelMode;
  instrument.SetChannelMode(MemberOf(reply, CM_ALTERNATE, CM_SCANNER_SEQUENCE, CM_INPUT_1));
  return true;
}

bool StoreScannerScanMode(CVaneT312B& instrument, const std::string& reply) {
  using enum ET312BScannerScanMode;
  instrument.SetScannerScanMode(MemberOf(reply, SSM_SCAN, SSM_USER_DEFINED, SSM_SCAN));
  return true;
}

bool StoreSampleAction(CVaneT312B& instrument, const std::string& reply) {
  instrument.SetSampleAction(
      ValueOf<ET312BSampleAction>(reply, kActionWords, ET312BSampleAction::SA_STOP));
  return true;
}

bool StoreOven(CVaneT312B& instrument, const std::string& reply) {
  instrument.SetOven(ValueOf<ET312BOven>(UpperCase(reply), kOvenWords, ET312BOven::OVEN_OFF));
  return true;
}

bool StoreUnits(CVaneT312B& instrument, const std::string& reply) {
  instrument.SetUnits(ValueOf<ET312BUnits>(reply, kUnitWords, ET312BUnits::UNITS_NONE));
  return instrument.Units() != ET312BUnits::UNITS_NONE;
}

std::string FilterTypeCode(const CVaneT312B& instrument) {
  return CodeOf<ET312BFilterType>(instrument.FilterType(), kFilterWords);
}

std::string SampleActionCode(const CVaneT312B& instrument) {
  return CodeOf<ET312BSampleAction>(instrument.SampleAction(), kActionWords);
}

std::string OvenCode(const CVaneT312B& instrument) {
  return instrument.Oven() == ET312BOven::OVEN_ON ? "ON" : "OFF";
}

std::string UnitsCode(const CVaneT312B& instrument) {
  return CodeOf<ET312BUnits>(instrument.Units(), kUnitWords);
}

}  // namespace vane
