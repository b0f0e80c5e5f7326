#include "vane/instrument/settings_table.h"

#include <span>

#include "vane/support/text_table.h"

namespace vane {
namespace {

template <class Enum>
struct WordRow {
  std::string_view word;
  Enum value;
};

// The value of the first word that occurs anywhere in `reply`.
template <class Enum>
Enum ValueOf(std::string_view reply, std::span<const WordRow<Enum>> rows, Enum fallback) {
  for (const auto& row : rows) {
    if (Contains(reply, row.word)) return row.value;
  }
  return fallback;
}

constexpr WordRow<ET312BFilterType> kFilterWords[] = {
    {"NONE", ET312BFilterType::FT_NONE},
    {"AVERAGE", ET312BFilterType::FT_AVERAGE},
    {"EXP", ET312BFilterType::FT_EXPONENTIAL},
};

constexpr WordRow<ET312BSampleAction> kSampleActionWords[] = {
    {"R", ET312BSampleAction::SA_RUN},
    {"ST", ET312BSampleAction::SA_STOP},
    {"SAMPLE N", ET312BSampleAction::SA_SAMPLE_N},
};

constexpr WordRow<ET312BOven> kOvenWords[] = {
    {"ON", ET312BOven::OVEN_ON},
    {"OFF", ET312BOven::OVEN_OFF},
};

// In this order: a reply that holds "C" anywhere is one of degrees Celsius.
constexpr WordRow<ET312BUnits> kUnitWords[] = {
    {"C", ET312BUnits::UNITS_DEGREESC}, {"F", ET312BUnits::UNITS_DEGREESF},
    {"K", ET312BUnits::UNITS_KELVIN},   {"OHM", ET312BUnits::UNITS_OHMS},
    {"R", ET312BUnits::UNITS_RATIO},    {"W", ET312BUnits::UNITS_W},
};

// The codes that the instrument takes in.

constexpr WordRow<ET312BFilterType> kFilterCodes[] = {
    {"n", ET312BFilterType::FT_NONE},
    {"a", ET312BFilterType::FT_AVERAGE},
    {"e", ET312BFilterType::FT_EXPONENTIAL},
};

constexpr WordRow<ET312BSampleAction> kSampleActionCodes[] = {
    {"R", ET312BSampleAction::SA_RUN},
    {"ST", ET312BSampleAction::SA_STOP},
    {"SN", ET312BSampleAction::SA_SAMPLE_N},
};

constexpr WordRow<ET312BUnits> kUnitCodes[] = {
    {"C", ET312BUnits::UNITS_DEGREESC}, {"F", ET312BUnits::UNITS_DEGREESF},
    {"K", ET312BUnits::UNITS_KELVIN},   {"O", ET312BUnits::UNITS_OHMS},
    {"R", ET312BUnits::UNITS_RATIO},    {"W", ET312BUnits::UNITS_W},
};

// Empty when no row has `value`.
template <class Enum>
std::string CodeOf(Enum value, std::span<const WordRow<Enum>> rows) {
  for (const auto& row : rows) {
    if (row.value == value) return std::string(row.word);
  }
  return {};
}

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
      ValueOf<ET312BSampleAction>(reply, kSampleActionWords, ET312BSampleAction::SA_STOP));
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
  return CodeOf<ET312BFilterType>(instrument.FilterType(), kFilterCodes);
}

std::string SampleActionCode(const CVaneT312B& instrument) {
  return CodeOf<ET312BSampleAction>(instrument.SampleAction(), kSampleActionCodes);
}

std::string OvenCode(const CVaneT312B& instrument) {
  return instrument.Oven() == ET312BOven::OVEN_ON ? "ON" : "OFF";
}

std::string UnitsCode(const CVaneT312B& instrument) {
  return CodeOf<ET312BUnits>(instrument.Units(), kUnitCodes);
}

}  // namespace vane
