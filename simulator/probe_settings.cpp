#include "simulator/probe_settings.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "simulator/readout_numbers.h"
#include "simulator/stored_values.h"

namespace vane::simulator {
namespace {

using enum ECommand;

constexpr std::size_t kMaxSerialLength = 8;

// In the order of EReference, EConversion and EScale. The ohm sign of the display's own character
// set is a byte above 127.
constexpr Word kReferences[] = {
    {"EXT", "EXT"}, {"1", "1 OHM"}, {"10", "10 OHM"}, {"100", "100 OHM"}, {"10K", "10 KOHM"}};
constexpr Word kConversions[] = {{"90", "ITS-90"},       {"68", "IPTS-68"},   {"CVD", "CVD"},
                                 {"POLY", "POLYNOMIAL"}, {"TR", "THRM-T(R)"}, {"TT", "THRM-R(T)"},
                                 {"O", "R(\xF4)"},       {"W", "W(T90)"},     {"R", "RATIO"}};
constexpr Word kScales[] = {{"90", "90"}, {"68", "68"}, {"", "NONE"}};

struct ProbeWord {
  ECommand read;
  std::size_t Probe::*member;
  std::span<const Word> words;
};

constexpr ProbeWord kProbeWords[] = {
    {READ_CONVERSION_TYPE, &Probe::conversion, kConversions},
    {READ_REF_RESISTOR, &Probe::reference, kReferences},
    {READ_IPTS68_SCALE, &Probe::scale, kScales},
};

struct ProbeRange {
  ECommand read;
  std::int32_t Probe::*member;
  Limits limits;
};

constexpr ProbeRange kLowRange = {READ_ITS90_LOW_RANGE, &Probe::lowrange, {kNoLowRange, 5, true}};
constexpr ProbeRange kHighRange = {
    READ_ITS90_HIGH_RANGE, &Probe::highrange, {6, kNoHighRange, true}};

// The subranges of ITS-90, from 1.
constexpr std::string_view kRangeTexts[] = {
    "1 (13.8033 K to 273.16 K)", "2 (24.5561 K to 273.16 K)",    "3 (54.3584 K to 273.16 K)",
    "4 (83.8058 K to 273.16 K)", "5 (234.3156 K to 302.9146 K)", "6 (0 C to 961.78 C)",
    "7 (0 C to 660.323 C)",      "8 (0 C to 419.527 C)",         "9 (0 C to 231.928 C)",
    "10 (0 C to 156.5985 C)",    "11 (0 C to 29.7646 C)",
};

// Which subrange a command about a coefficient has to name.
enum class ERangeRule { NONE, LOW, HIGH, FOUR };

struct ProbeNumber {
  ECommand read;
  std::size_t first;  // place in the record
  ERangeRule range = ERangeRule::NONE;
  std::int32_t count = 1;  // more than one: picked by Index
  std::int32_t start = 0;
  Limits limits = {};
};

constexpr ProbeNumber kProbeNumbers[] = {
    {.read = READ_PROBE_CURRENT, .first = NUMBER_CURRENT, .limits = {0.0001, 21}},
    {.read = READ_PROBE_3WIRE_OFFSET, .first = NUMBER_OFFSET, .limits = {0, 1e6}},
    {.read = READ_ITS90_RTPW, .first = NUMBER_RTPW},
    {.read = READ_ITS90_LOW_A, .first = NUMBER_LOW, .range = ERangeRule::LOW},
    {.read = READ_ITS90_LOW_B, .first = NUMBER_LOW + 1, .range = ERangeRule::LOW},
    {.read = READ_ITS90_LOW_C,
     .first = NUMBER_LOW + 2,
     .range = ERangeRule::LOW,
     .count = 5,
     .start = 1},
    {.read = READ_ITS90_HIGH_A, .first = NUMBER_HIGH, .range = ERangeRule::HIGH},
    {.read = READ_ITS90_HIGH_B, .first = NUMBER_HIGH + 1, .range = ERangeRule::HIGH},
    {.read = READ_ITS90_HIGH_C, .first = NUMBER_HIGH + 2, .range = ERangeRule::HIGH},
    {.read = READ_ITS90_HIGH_D, .first = NUMBER_HIGH + 3},
    {.read = READ_IPTS68_R0, .first = NUMBER_IPTS68},
    {.read = READ_IPTS68_ALPHA, .first = NUMBER_IPTS68 + 1},
    {.read = READ_IPTS68_DELTA, .first = NUMBER_IPTS68 + 2},
    {.read = READ_IPTS68_A, .first = NUMBER_IPTS68 + 3, .range = ERangeRule::FOUR},
    {.read = READ_IPTS68_C, .first = NUMBER_IPTS68 + 4, .range = ERangeRule::FOUR},
    {.read = READ_CVD_R0, .first = NUMBER_CVD},
    {.read = READ_CVD_ALPHA, .first = NUMBER_CVD + 1},
    {.read = READ_CVD_DELTA, .first = NUMBER_CVD + 2},
    {.read = READ_CVD_BETA, .first = NUMBER_CVD + 3},
    {.read = READ_THERMISTOR_RT, .first = NUMBER_RT, .count = 4},
    {.read = READ_THERMISTOR_TR, .first = NUMBER_TR, .count = 4},
    {.read = READ_POLYNOMIAL, .first = NUMBER_POLYNOMIAL, .count = 11},
};

template <typename Row>
const Row* FindRow(std::span<const Row> rows, ECommand command) {
  const auto row =
      std::ranges::find_if(rows, [command](const Row& r) { return IsAbout(command, r.read); });
  return row == rows.end() ? nullptr : &*row;
}

CReply AnswerSerial(const protocol::ParsedCommand& command, Probe& probe) {
  const std::string& text = command.fields.value;
  if (command.row->IsRead()) return probe.serial;
  if (text.size() > kMaxSerialLength) return ERefusal::TEXT_TOO_LONG;
  if (text.empty()) return CReply::Done();
  // What is taken in has to be an answer later.
  if (!protocol::FitsForm(protocol::FindCommand(READ_PROBE_SERIAL)->form, text)) {
    return ERefusal::NOT_A_SERIAL_NUMBER;
  }
  probe.serial = text;
  return CReply::Done();
}

CReply AnswerWord(const ProbeWord& setting, const protocol::ParsedCommand& command, Probe& probe) {
  std::size_t& stored = probe.*setting.member;
  if (command.row->IsRead()) return std::string(setting.words[stored].text);
  return WriteWord(setting.words, command.fields.value, stored);
}

// The number one below the first subrange, or one above the last, stands for none.
CReply AnswerRange(const ProbeRange& setting, const protocol::ParsedCommand& command,
                   Probe& probe) {
  std::int32_t& stored = probe.*setting.member;
  if (command.row->IsRead()) {
    const bool none = stored == kNoLowRange || stored == kNoHighRange;
    return std::string(none ? "NONE" : kRangeTexts[stored - 1]);
  }
  return WriteNumber(setting.limits, command.fields.value, stored);
}

std::optional<ERefusal> CheckRange(ERangeRule rule, const std::string& text, const Probe& probe) {
  if (rule == ERangeRule::NONE) return std::nullopt;
  const auto range = ParseWhole(text);
  if (!range) return ERefusal::NOT_A_NUMBER;
  if (rule == ERangeRule::FOUR) {
    return *range == 4 ? std::nullopt : std::optional(ERefusal::OUT_OF_RANGE);
  }
  const bool low = rule == ERangeRule::LOW;
  if (*range < 1 || *range > 11 || (*range <= kLowRange.limits.highest) != low) {
    return ERefusal::OUT_OF_RANGE;
  }
  if (*range != (low ? probe.lowrange : probe.highrange)) return ERefusal::NOT_A_RANGE_OF_PROBE;
  return std::nullopt;
}

CReply AnswerNumber(const ProbeNumber& setting, const protocol::ParsedCommand& command,
                    Probe& probe) {
  if (const auto refusal = CheckRange(setting.range, command.fields.Range, probe)) return *refusal;
  std::int32_t place = 0;
  if (setting.count > 1) {
    const auto index = ParseWhole(command.fields.Index);
    if (!index) return ERefusal::NOT_A_NUMBER;
    if (*index < setting.start || *index >= setting.start + setting.count) {
      return ERefusal::OUT_OF_RANGE;
    }
    place = *index - setting.start;
  }
  double& stored = probe.numbers.at(setting.first + static_cast<std::size_t>(place));
  if (command.row->IsRead()) return RealText(stored);
  return WriteNumber(setting.limits, command.fields.value, stored);
}

}  // namespace

std::optional<std::int32_t> ParseProbeNumber(std::string_view text) {
  const auto number = ParseWhole(text);
  return number && *number >= 1 && *number <= kProbeCount ? number : std::nullopt;
}

std::optional<CReply> AnswerProbeCommand(const protocol::ParsedCommand& command,
                                         std::array<Probe, kProbeCount>& probes) {
  if (!command.row->text.starts_with("PROBE ")) return std::nullopt;
  const auto number = ParseProbeNumber(command.fields.Probe);
  if (!number) return ERefusal::OUT_OF_RANGE;
  Probe& probe = probes[static_cast<std::size_t>(*number - 1)];

  const ECommand id = command.row->id;
  if (IsAbout(id, READ_PROBE_SERIAL)) return AnswerSerial(command, probe);
  for (const ProbeRange& setting : {kLowRange, kHighRange}) {
    if (IsAbout(id, setting.read)) return AnswerRange(setting, command, probe);
  }
  if (const auto* word = FindRow<ProbeWord>(kProbeWords, id))
    return AnswerWord(*word, command, probe);
  if (const auto* row = FindRow<ProbeNumber>(kProbeNumbers, id))
    return AnswerNumber(*row, command, probe);
  return std::nullopt;
}

}  // namespace vane::simulator
