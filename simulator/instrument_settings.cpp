#include "simulator/instrument_settings.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "simulator/readout_numbers.h"
#include "simulator/stored_values.h"

namespace vane::simulator {
namespace {

using enum ECommand;

struct NumberSetting {
  ECommand read;
  Limits limits;
  double atstart;
  std::string_view index = {};                                 // of a setting that has several
  std::string CommandParams::*source = &CommandParams::value;  // where a write carries the number
};

constexpr NumberSetting kNumbers[] = {
    {READ_FILTER_RESPONSE_TIME, {2, 200}, 4},
    {READ_FILTER_THRESHOLD, {0.0001, 1e6}, 0.01},
    {READ_INTERVAL, {2, 99999, true}, 2},
    {READ_CONVERSION_TIME, {2, 10, true}, 2},
    {READ_INTEGRATION_TIME, {2, 9999, true}, 2},
    {READ_REPETITIONS, {1, 32000, true}, 1},
    {READ_CHANNEL_MODE, {0, 4, true}, 2},
    {READ_SAMPLE_N, {1, 32000, true}, 10},
    {READ_RESOLUTION, {0, 8, true}, 4},
    {READ_RESISTANCE_RESOLUTION, {0, 8, true}, 5},
    {READ_RATIO_RESOLUTION, {0, 8, true}, 7},
    {READ_CAL_PARAM, {0.1, 990000}, 25.00014, "0"},
    {READ_CAL_PARAM, {0.1, 5}, 0.9999812, "1"},
    {READ_CAL_PARAM, {5, 50}, 10.000123, "2"},
    {READ_CAL_PARAM, {50, 500}, 99.99871, "3"},
    {READ_CAL_PARAM, {5000, 1e6}, 10000.37, "4"},
    {READ_ADC, {-3, 3}, 0.12},
    {READ_SCANNER_SCAN_MODE, {1, 5, true}, 1},
    {READ_SCAN_SEQ_CHANNELS, {1, 10, true}, 10},
    {READ_SCAN_SEQ_STEPS, {1, 100, true}, 5},
    {READ_SCAN_CHANNEL, {1, 10, true}, 1, {}, &CommandParams::Channel},
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
  std::size_t atstart;
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

CReply AnswerNumber(const NumberSetting& setting, const protocol::ParsedCommand& command,
                    double& stored) {
  if (command.row->IsRead()) return RealText(stored);
  return WriteNumber(setting.limits, command.fields.*setting.source, stored);
}

CReply AnswerWord(const WordSetting& setting, const protocol::ParsedCommand& command,
                  std::size_t& stored) {
  if (command.row->IsRead()) return std::string(setting.words[stored].text);
  return WriteWord(setting.words, command.fields.*setting.source, stored);
}

}  // namespace

CInstrumentSettings::CInstrumentSettings() {
  for (const NumberSetting& setting : kNumbers) numbers_.push_back(setting.atstart);
  for (const WordSetting& setting : kWords) words_.push_back(setting.atstart);
}

std::optional<CReply> CInstrumentSettings::Answer(const protocol::ParsedCommand& command) {
  bool otherindex = false;
  for (std::size_t i = 0; i < std::size(kNumbers); ++i) {
    if (!IsAbout(command.row->id, kNumbers[i].read)) continue;
    if (kNumbers[i].index.empty() || kNumbers[i].index == command.fields.Index) {
      return AnswerNumber(kNumbers[i], command, numbers_[i]);
    }
    otherindex = true;
  }
  if (otherindex) return ERefusal::OUT_OF_RANGE;
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
