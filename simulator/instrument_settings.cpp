#include "simulator/instrument_settings.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "simulator/numbers.h"
#include "simulator/words.h"

namespace vane::simulator {
namespace {

using protocol::Fields;

// The ids that other code of this file asks for by name.
constexpr std::int32_t kInterval = 32;
constexpr std::int32_t kTemperatureResolution = 66;
constexpr std::int32_t kResistanceResolution = 68;
constexpr std::int32_t kRatioResolution = 70;
constexpr std::int32_t kCalParam = 76;
constexpr std::int32_t kUnits = 168;

struct NumberSetting {
  std::int32_t read_id;  // the write has the next one
  bool whole;
  double lowest;
  double highest;
  double at_start;
  std::string_view index = {};                   // of a setting that has several
  std::string Fields::*source = &Fields::value;  // where a write carries the number
};

constexpr NumberSetting kNumbers[] = {
    {26, false, 2, 200, 4},
    {28, false, 0.0001, 1e6, 0.01},
    {kInterval, true, 2, 99999, 2},
    {34, true, 2, 10, 2},
    {36, true, 2, 9999, 2},
    {54, true, 1, 32000, 1},
    {56, true, 0, 4, 2},
    {58, true, 1, 32000, 10},
    {kTemperatureResolution, true, 0, 8, 4},
    {kResistanceResolution, true, 0, 8, 5},
    {kRatioResolution, true, 0, 8, 7},
    {kCalParam, false, 0.1, 990000, 25.00014, "0"},
    {kCalParam, false, 0.1, 5, 0.9999812, "1"},
    {kCalParam, false, 5, 50, 10.000123, "2"},
    {kCalParam, false, 50, 500, 99.99871, "3"},
    {kCalParam, false, 5000, 1e6, 10000.37, "4"},
    {84, false, -3, 3, 0.12},
    {104, true, 1, 5, 1},
    {106, true, 1, 10, 10},
    {108, true, 1, 100, 5},
    {116, true, 1, 10, 1, {}, &Fields::Channel},
};

constexpr Word kFilters[] = {{"n", "NONE"}, {"a", "AVERAGE"}, {"e", "EXPONENTIAL"}};
constexpr Word kActions[] = {{"R", "RUN"}, {"ST", "STOP"}, {"SN", "SAMPLE N"}};
constexpr Word kOven[] = {{"ON", "ON"}, {"OFF", "OFF"}};
// In the order of EUnits.
constexpr Word kUnitWords[] = {{"C", "C"},   {"F", "F"},     {"K", "K"},
                               {"O", "OHM"}, {"R", "RATIO"}, {"W", "W"}};

struct WordSetting {
  std::int32_t read_id;
  std::span<const Word> words;
  std::size_t at_start;
  std::string Fields::*source = &Fields::value;
};

constexpr WordSetting kWords[] = {
    {24, kFilters, 1, &Fields::FilterCode},
    {60, kActions, 0},
    {86, kOven, 0},
    {kUnits, kUnitWords, 0},
};

constexpr std::size_t NumberPlace(std::int32_t read_id, std::string_view index = {}) {
  std::size_t place = 0;
  while (kNumbers[place].read_id != read_id || kNumbers[place].index != index) ++place;
  return place;
}

constexpr std::size_t kUnitsPlace = std::size(kWords) - 1;
static_assert(kWords[kUnitsPlace].read_id == kUnits);

Reply AnswerNumber(const NumberSetting& setting, const protocol::ParsedCommand& command,
                   double& stored) {
  if (command.row->IsRead()) return RealText(stored);
  const std::string& text = command.fields.*setting.source;
  if (text.empty()) return Reply::Done();
  const std::optional<double> value =
      setting.whole ? std::optional<double>(ParseWhole(text)) : ParseReal(text);
  if (!value) return ERefusal::kNotANumber;
  if (*value < setting.lowest || *value > setting.highest) return ERefusal::kOutOfRange;
  stored = *value;
  return Reply::Done();
}

Reply AnswerWord(const WordSetting& setting, const protocol::ParsedCommand& command,
                 std::size_t& stored) {
  if (command.row->IsRead()) return std::string(setting.words[stored].text);
  const std::string& code = command.fields.*setting.source;
  if (code.empty()) return Reply::Done();
  const auto place = FindCode(setting.words, code);
  if (!place) return ERefusal::kUnknownCode;
  stored = *place;
  return Reply::Done();
}

}  // namespace

CInstrumentSettings::CInstrumentSettings() {
  for (const NumberSetting& setting : kNumbers) numbers_.push_back(setting.at_start);
  for (const WordSetting& setting : kWords) words_.push_back(setting.at_start);
}

std::optional<Reply> CInstrumentSettings::Answer(const protocol::ParsedCommand& command) {
  const std::int32_t read_id = command.row->IsRead() ? command.row->id : command.row->id - 1;
  bool other_index = false;
  for (std::size_t i = 0; i < std::size(kNumbers); ++i) {
    if (kNumbers[i].read_id != read_id) continue;
    if (kNumbers[i].index.empty() || kNumbers[i].index == command.fields.Index) {
      return AnswerNumber(kNumbers[i], command, numbers_[i]);
    }
    other_index = true;
  }
  if (other_index) return ERefusal::kOutOfRange;
  for (std::size_t i = 0; i < std::size(kWords); ++i) {
    if (kWords[i].read_id == read_id) return AnswerWord(kWords[i], command, words_[i]);
  }
  return std::nullopt;
}

EUnits CInstrumentSettings::Units() const { return static_cast<EUnits>(words_[kUnitsPlace]); }

std::int32_t CInstrumentSettings::Interval() const {
  return static_cast<std::int32_t>(numbers_[NumberPlace(kInterval)]);
}

std::int32_t CInstrumentSettings::ReadingDigits() const {
  constexpr std::size_t kTemperature = NumberPlace(kTemperatureResolution);
  constexpr std::size_t kResistance = NumberPlace(kResistanceResolution);
  constexpr std::size_t kRatio = NumberPlace(kRatioResolution);
  std::size_t place = kTemperature;
  if (Units() == EUnits::kOhms) place = kResistance;
  if (Units() == EUnits::kRatio || Units() == EUnits::kW) place = kRatio;
  return static_cast<std::int32_t>(numbers_[place]);
}

double CInstrumentSettings::ReferenceOhms(std::size_t reference) const {
  return numbers_.at(NumberPlace(kCalParam, "0") + reference);
}

}  // namespace vane::simulator
