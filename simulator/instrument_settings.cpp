#include "simulator/instrument_settings.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "simulator/readout_numbers.h"
#include "simulator/readout_words.h"

namespace vane::simulator {
namespace {

using enum ECommand;

struct NumberSetting {
  ECommand read;
  bool whole;
  double lowest;
  double highest;
  double at_start;
  std::string_view index = {};                                 // of a setting that has several
  std::string CommandParams::*source = &CommandParams::value;  // where a write carries the number
};

constexpr NumberSetting kNumbers[] = {
    {READ_FILTER_RESPONSE_TIME, false, 2, 200, 4},
    {READ_FILTER_THRESHOLD, false, 0.0001, 1e6, 0.01},
    {READ_INTERVAL, true, 2, 99999, 2},
    {READ_CONVERSION_TIME, true, 2, 10, 2},
    {READ_INTEGRATION_TIME, true, 2, 9999, 2},
    {READ_REPETITIONS, true, 1, 32000, 1},
    {READ_CHANNEL_MODE, true, 0, 4, 2},
    {READ_SAMPLE_N, true, 1, 32000, 10},
    {READ_RESOLUTION, true, 0, 8, 4},
    {READ_RESISTANCE_RESOLUTION, true, 0, 8, 5},
    {READ_RATIO_RESOLUTION, true, 0, 8, 7},
    {READ_CAL_PARAM, false, 0.1, 990000, 25.00014, "0"},
    {READ_CAL_PARAM, false, 0.1, 5, 0.9999812, "1"},
    {READ_CAL_PARAM, false, 5, 50, 10.000123, "2"},
    {READ_CAL_PARAM, false, 50, 500, 99.99871, "3"},
    {READ_CAL_PARAM, false, 5000, 1e6, 10000.37, "4"},
    {READ_ADC, false, -3, 3, 0.12},
    {READ_SCANNER_SCAN_MODE, true, 1, 5, 1},
    {READ_SCAN_SEQ_CHANNELS, true, 1, 10, 10},
    {READ_SCAN_SEQ_STEPS, true, 1, 100, 5},
    {READ_SCAN_CHANNEL, true, 1, 10, 1, {}, &CommandParams::Channel},
};

constexpr Word kFilters[] = {{"n", "NONE"}, {"a", "AVERAGE"}, {"e", "EXPONENTIAL"}};
constexpr Word kActions[] = {{"R", "RUN"}, {"ST", "STOP"}, {"SN", "SAMPLE N"}};
constexpr Word kOven[] = {{"ON", "ON"}, {"OFF", "OFF"}};
// In the order of EUnits.
constexpr Word kUnitWords[] = {{"C", "C"},   {"F", "F"},     {"K", "K"},
                               {"O", "OHM"}, {"R", "RATIO"}, {"W", "W"}};

struct WordSetting {
  ECommand read;
  std::span<const Word> words;
  std::size_t at_start;
  std::string CommandParams::*source = &CommandParams::value;
};

constexpr WordSetting kWords[] = {
    {READ_FILTER_TYPE, kFilters, 1, &CommandParams::FilterCode},
    {READ_SAMPLE_ACTION, kActions, 0},
    {READ_OVEN, kOven, 0},
    {READ_UNITS, kUnitWords, 0},
};

constexpr std::size_t NumberPlace(ECommand read, std::string_view index = {}) {
  std::size_t place = 0;
  while (kNumbers[place].read != read || kNumbers[place].index != index) ++place;
  return place;
}

constexpr std::size_t kUnitsPlace = std::size(kWords) - 1;
static_assert(kWords[kUnitsPlace].read == READ_UNITS);

Reply AnswerNumber(const NumberSetting& setting, const protocol::ParsedCommand& command,
                   double& stored) {
  if (command.row->IsRead()) return RealText(stored);
  const std::string& text = command.fields.*setting.source;
  if (text.empty()) return Reply::Done();
  const std::optional<double> value =
      setting.whole ? std::optional<double>(ParseWhole(text)) : ParseReal(text);
  if (!value) return ERefusal::NOT_A_NUMBER;
  if (*value < setting.lowest || *value > setting.highest) return ERefusal::OUT_OF_RANGE;
  stored = *value;
  return Reply::Done();
}

Reply AnswerWord(const WordSetting& setting, const protocol::ParsedCommand& command,
                 std::size_t& stored) {
  if (command.row->IsRead()) return std::string(setting.words[stored].text);
  const std::string& code = command.fields.*setting.source;
  if (code.empty()) return Reply::Done();
  const auto place = FindCode(setting.words, code);
  if (!place) return ERefusal::UNKNOWN_CODE;
  stored = *place;
  return Reply::Done();
}

}  // namespace

CInstrumentSettings::CInstrumentSettings() {
  for (const NumberSetting& setting : kNumbers) numbers_.push_back(setting.at_start);
  for (const WordSetting& setting : kWords) words_.push_back(setting.at_start);
}

std::optional<Reply> CInstrumentSettings::Answer(const protocol::ParsedCommand& command) {
  bool other_index = false;
  for (std::size_t i = 0; i < std::size(kNumbers); ++i) {
    if (!IsAbout(command.row->id, kNumbers[i].read)) continue;
    if (kNumbers[i].index.empty() || kNumbers[i].index == command.fields.Index) {
      return AnswerNumber(kNumbers[i], command, numbers_[i]);
    }
    other_index = true;
  }
  if (other_index) return ERefusal::OUT_OF_RANGE;
  for (std::size_t i = 0; i < std::size(kWords); ++i) {
    if (IsAbout(command.row->id, kWords[i].read)) return AnswerWord(kWords[i], command, words_[i]);
  }
  return std::nullopt;
}

EUnits CInstrumentSettings::Units() const { return static_cast<EUnits>(words_[kUnitsPlace]); }

std::int32_t CInstrumentSettings::Interval() const {
  return static_cast<std::int32_t>(numbers_[NumberPlace(READ_INTERVAL)]);
}

std::int32_t CInstrumentSettings::ReadingDigits() const {
  constexpr std::size_t kTemperature = NumberPlace(READ_RESOLUTION);
  constexpr std::size_t kResistance = NumberPlace(READ_RESISTANCE_RESOLUTION);
  constexpr std::size_t kRatio = NumberPlace(READ_RATIO_RESOLUTION);
  std::size_t place = kTemperature;
  if (Units() == EUnits::OHMS) place = kResistance;
  if (Units() == EUnits::RATIO || Units() == EUnits::W) place = kRatio;
  return static_cast<std::int32_t>(numbers_[place]);
}

double CInstrumentSettings::ReferenceOhms(std::size_t reference) const {
  return numbers_.at(NumberPlace(READ_CAL_PARAM, "0") + reference);
}

}  // namespace vane::simulator
