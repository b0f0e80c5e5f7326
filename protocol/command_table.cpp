#include "protocol/command_table.h"

#include <algorithm>
#include <array>

#include "protocol/letters.h"

namespace vane::protocol {
namespace {

// What a reply's number goes into.
constexpr double kMaxInteger = 32767;
constexpr double kMaxLong = 2147483647;

constexpr ReplyForm Number(double lowest, double highest) {
  return {.kind = EReply::NUMBER, .lowest = lowest, .highest = highest};
}
constexpr ReplyForm Whole(double lowest, double highest) {
  return {.kind = EReply::WHOLE, .lowest = lowest, .highest = highest};
}
constexpr ReplyForm Subrange(double lowest, double highest) {
  return {.kind = EReply::SUBRANGE, .lowest = lowest, .highest = highest};
}
constexpr ReplyForm Words(std::string_view words) { return {.kind = EReply::WORD, .words = words}; }
constexpr ReplyForm WordsInEitherCase(std::string_view words) {
  return {.kind = EReply::WORD, .words = words, .eithercase = true};
}

constexpr ReplyForm kNumber{.kind = EReply::NUMBER};
// A setting is rounded to a whole number, and may lie outside the limits of the dialogs.
constexpr ReplyForm kInteger = Number(-kMaxInteger - 1, kMaxInteger);
constexpr ReplyForm kLong = Number(-kMaxLong - 1, kMaxLong);
constexpr ReplyForm kName{.kind = EReply::NAME};
constexpr ReplyForm kText{.kind = EReply::TEXT};
constexpr ReplyForm kAny{.kind = EReply::ANY};
// In capital letters only: to the rule that reads them "on" isn't "ON", and would open the group.
constexpr ReplyForm kProtection = Words("ON|OFF");
// A step that was never set answers nothing. The channel's number is the step's plus 2.
constexpr ReplyForm kScanStep{
    .kind = EReply::WHOLE, .lowest = 0, .highest = kMaxInteger - 2, .maybenothing = true};
// Between the brackets of the resistance stands the display's sign for ohms.
constexpr ReplyForm kConversion =
    WordsInEitherCase("ITS-90|IPTS-68|CVD|POLYNOMIAL|THRM-T(R)|THRM-R(T)|R(*)|W(T90)|RATIO");
constexpr ReplyForm kReference = WordsInEitherCase("EXT|EXTERNAL|1 OHM|10 OHM|100 OHM|10 KOHM");

// A command without a form changes something. Both inputs are always there, so no readout has fewer
// than two channels. A log's reading is any text: who downloads a log knows a bad one himself.
// A command's symbol is its name, spelled out.
#define COMMAND(name, ...) \
  { ECommand::name, #name, __VA_ARGS__ }
constexpr CommandRow kCommands[] = {
    COMMAND(WRITE_INITIALIZE, "INIT"),
    COMMAND(READ_PROTECT_CONVERSION, "PROTECT:CONVERSION?", kProtection),
    COMMAND(READ_PROTECT_CALIBRATION, "PROTECT:CALIBRATION?", kProtection),
    COMMAND(READ_PROTECT_SAMPLING, "PROTECT:SAMPLING?", kProtection),
    COMMAND(READ_PROTECT_UNITS_TIME, "PROTECT:UNITS?", kProtection),
    COMMAND(WRITE_START_MEASURE, "MEASURE:START"),
    COMMAND(WRITE_STOP_MEASURE, "MEASURE:STOP"),
    COMMAND(READ_MEASUREMENT, "MEASURE {Channel}?", kNumber),
    COMMAND(READ_NEW_DATA, "MEASURE:NEW?", Words("0|1")),
    COMMAND(READ_IDENTIFICATION, "ID?", kText),
    COMMAND(READ_FILTER_TYPE, "FILTER:TYPE?", Words("NONE|AVERAGE|EXP|EXPONENTIAL")),
    COMMAND(WRITE_FILTER_TYPE, "FILTER:TYPE {FilterCode}"),
    COMMAND(READ_FILTER_RESPONSE_TIME, "FILTER:RESPONSE?", kNumber),
    COMMAND(WRITE_FILTER_RESPONSE_TIME, "FILTER:RESPONSE {value}"),
    COMMAND(READ_FILTER_THRESHOLD, "FILTER:THRESHOLD?", kNumber),
    COMMAND(WRITE_FILTER_THRESHOLD, "FILTER:THRESHOLD {value}"),
    COMMAND(READ_INTERVAL, "SAMPLE:INTERVAL?", kLong),
    COMMAND(WRITE_INTERVAL, "SAMPLE:INTERVAL {value}"),
    COMMAND(READ_CONVERSION_TIME, "SAMPLE:CONVERSION?", kInteger),
    COMMAND(WRITE_CONVERSION_TIME, "SAMPLE:CONVERSION {value}"),
    COMMAND(READ_INTEGRATION_TIME, "SAMPLE:INTEGRATION?", kInteger),
    COMMAND(WRITE_INTEGRATION_TIME, "SAMPLE:INTEGRATION {value}"),
    COMMAND(READ_SCANNER_MODULES, "SCANNER:MODULES?", Whole(0, kMaxInteger - 1)),
    COMMAND(READ_CHANNEL_COUNT, "CHANNEL:COUNT?", Whole(2, kMaxInteger)),
    COMMAND(READ_REPETITIONS, "SAMPLE:REPETITIONS?", kInteger),
    COMMAND(WRITE_REPETITIONS, "SAMPLE:REPETITIONS {value}"),
    COMMAND(READ_CHANNEL_MODE, "CHANNEL:MODE?", kNumber),
    COMMAND(WRITE_CHANNEL_MODE, "CHANNEL:MODE {value}"),
    COMMAND(READ_SAMPLE_N, "SAMPLE:COUNT?", kInteger),
    COMMAND(WRITE_SAMPLE_N, "SAMPLE:COUNT {value}"),
    COMMAND(READ_SAMPLE_ACTION, "SAMPLE:ACTION?", Words("R|RUN|ST|STOP|SAMPLE N")),
    COMMAND(WRITE_SAMPLE_ACTION, "SAMPLE:ACTION {value}"),
    COMMAND(READ_RESOLUTION, "RESOLUTION:TEMPERATURE?", kInteger),
    COMMAND(WRITE_RESOLUTION, "RESOLUTION:TEMPERATURE {value}"),
    COMMAND(READ_RESISTANCE_RESOLUTION, "RESOLUTION:RESISTANCE?", kInteger),
    COMMAND(WRITE_RESISTANCE_RESOLUTION, "RESOLUTION:RESISTANCE {value}"),
    COMMAND(READ_RATIO_RESOLUTION, "RESOLUTION:RATIO?", kInteger),
    COMMAND(WRITE_RATIO_RESOLUTION, "RESOLUTION:RATIO {value}"),
    COMMAND(READ_CAL_PARAM, "CAL:PARAM {Index}?", kNumber),
    COMMAND(WRITE_CAL_PARAM, "CAL:PARAM {Index} {value}"),
    COMMAND(READ_ADC, "CAL:ADC?", kNumber),
    COMMAND(WRITE_ADC, "CAL:ADC {value}"),
    COMMAND(READ_OVEN, "CAL:OVEN?", WordsInEitherCase("ON|OFF")),
    COMMAND(WRITE_OVEN, "CAL:OVEN {value}"),
    COMMAND(READ_SCANNER_MEASUREMENT, "SCANNER:MEASURE {Channel}?", kNumber),
    COMMAND(READ_SCANNER_SCAN_MODE, "SCANNER:MODE?", kNumber),
    COMMAND(WRITE_SCANNER_SCAN_MODE, "SCANNER:MODE {value}"),
    COMMAND(READ_SCAN_SEQ_CHANNELS, "SCANNER:SEQUENCE:CHANNELS?", Whole(0, kMaxInteger)),
    COMMAND(WRITE_SCAN_SEQ_CHANNELS, "SCANNER:SEQUENCE:CHANNELS {value}"),
    COMMAND(READ_SCAN_SEQ_STEPS, "SCANNER:SEQUENCE:STEPS?", Whole(1, kMaxInteger)),
    COMMAND(WRITE_SCAN_SEQ_STEPS, "SCANNER:SEQUENCE:STEPS {value}"),
    COMMAND(READ_SCAN_STEP, "SCANNER:STEP {Index}?", kScanStep),
    COMMAND(WRITE_SCAN_STEP, "SCANNER:STEP {Index} {Channel}"),
    COMMAND(READ_SCANNER_PROBE_INDEX, "SCANNER:PROBE {Channel}?", Whole(0, kMaxInteger)),
    COMMAND(WRITE_SCANNER_PROBE_INDEX, "SCANNER:PROBE {Channel} {Probe}"),
    COMMAND(READ_SCAN_CHANNEL, "SCANNER:CHANNEL?", Whole(0, kMaxInteger)),
    COMMAND(WRITE_SCAN_CHANNEL, "SCANNER:CHANNEL {Channel}"),
    COMMAND(READ_PROBE_SERIAL, "PROBE {Probe}:SERIAL?", kName),
    COMMAND(WRITE_PROBE_SERIAL, "PROBE {Probe}:SERIAL {value}"),
    COMMAND(READ_CONVERSION_TYPE, "PROBE {Probe}:CONVERSION?", kConversion),
    COMMAND(WRITE_CONVERSION_TYPE, "PROBE {Probe}:CONVERSION {value}"),
    COMMAND(READ_PROBE_INDEX, "CHANNEL {Channel}:PROBE?", Whole(0, kMaxInteger)),
    COMMAND(WRITE_PROBE_INDEX, "CHANNEL {Channel}:PROBE {Probe}"),
    COMMAND(READ_REF_RESISTOR, "PROBE {Probe}:REFERENCE?", kReference),
    COMMAND(WRITE_REF_RESISTOR, "PROBE {Probe}:REFERENCE {value}"),
    COMMAND(READ_PROBE_CURRENT, "PROBE {Probe}:CURRENT?", kNumber),
    COMMAND(WRITE_PROBE_CURRENT, "PROBE {Probe}:CURRENT {value}"),
    COMMAND(READ_PROBE_3WIRE_OFFSET, "PROBE {Probe}:OFFSET?", kNumber),
    COMMAND(WRITE_PROBE_3WIRE_OFFSET, "PROBE {Probe}:OFFSET {value}"),
    COMMAND(READ_UNITS, "UNITS?", Words("C|F|K|OHM|R|RATIO|W")),
    COMMAND(WRITE_UNITS, "UNITS {value}"),
    COMMAND(READ_ITS90_LOW_RANGE, "PROBE {Probe}:ITS90:LOW:RANGE?", Subrange(1, 5)),
    COMMAND(WRITE_ITS90_LOW_RANGE, "PROBE {Probe}:ITS90:LOW:RANGE {value}"),
    COMMAND(READ_ITS90_HIGH_RANGE, "PROBE {Probe}:ITS90:HIGH:RANGE?", Subrange(6, 11)),
    COMMAND(WRITE_ITS90_HIGH_RANGE, "PROBE {Probe}:ITS90:HIGH:RANGE {value}"),
    COMMAND(READ_ITS90_RTPW, "PROBE {Probe}:ITS90:RTPW?", kNumber),
    COMMAND(WRITE_ITS90_RTPW, "PROBE {Probe}:ITS90:RTPW {value}"),
    COMMAND(READ_ITS90_LOW_A, "PROBE {Probe}:ITS90:LOW {Range}:A?", kNumber),
    COMMAND(WRITE_ITS90_LOW_A, "PROBE {Probe}:ITS90:LOW {Range}:A {value}"),
    COMMAND(READ_ITS90_LOW_B, "PROBE {Probe}:ITS90:LOW {Range}:B?", kNumber),
    COMMAND(WRITE_ITS90_LOW_B, "PROBE {Probe}:ITS90:LOW {Range}:B {value}"),
    COMMAND(READ_ITS90_LOW_C, "PROBE {Probe}:ITS90:LOW {Range}:C {Index}?", kNumber),
    COMMAND(WRITE_ITS90_LOW_C, "PROBE {Probe}:ITS90:LOW {Range}:C {Index} {value}"),
    COMMAND(READ_ITS90_HIGH_A, "PROBE {Probe}:ITS90:HIGH {Range}:A?", kNumber),
    COMMAND(WRITE_ITS90_HIGH_A, "PROBE {Probe}:ITS90:HIGH {Range}:A {value}"),
    COMMAND(READ_ITS90_HIGH_B, "PROBE {Probe}:ITS90:HIGH {Range}:B?", kNumber),
    COMMAND(WRITE_ITS90_HIGH_B, "PROBE {Probe}:ITS90:HIGH {Range}:B {value}"),
    COMMAND(READ_ITS90_HIGH_C, "PROBE {Probe}:ITS90:HIGH {Range}:C?", kNumber),
    COMMAND(WRITE_ITS90_HIGH_C, "PROBE {Probe}:ITS90:HIGH {Range}:C {value}"),
    COMMAND(READ_ITS90_HIGH_D, "PROBE {Probe}:ITS90:HIGH:D?", kNumber),
    COMMAND(WRITE_ITS90_HIGH_D, "PROBE {Probe}:ITS90:HIGH:D {value}"),
    COMMAND(READ_IPTS68_SCALE, "PROBE {Probe}:IPTS68:SCALE?", WordsInEitherCase("90|68|NONE")),
    COMMAND(WRITE_IPTS68_SCALE, "PROBE {Probe}:IPTS68:SCALE {value}"),
    COMMAND(READ_IPTS68_R0, "PROBE {Probe}:IPTS68:R0?", kNumber),
    COMMAND(WRITE_IPTS68_R0, "PROBE {Probe}:IPTS68:R0 {value}"),
    COMMAND(READ_IPTS68_ALPHA, "PROBE {Probe}:IPTS68:ALPHA?", kNumber),
    COMMAND(WRITE_IPTS68_ALPHA, "PROBE {Probe}:IPTS68:ALPHA {value}"),
    COMMAND(READ_IPTS68_DELTA, "PROBE {Probe}:IPTS68:DELTA?", kNumber),
    COMMAND(WRITE_IPTS68_DELTA, "PROBE {Probe}:IPTS68:DELTA {value}"),
    COMMAND(READ_IPTS68_A, "PROBE {Probe}:IPTS68:RANGE {Range}:A?", kNumber),
    COMMAND(WRITE_IPTS68_A, "PROBE {Probe}:IPTS68:RANGE {Range}:A {value}"),
    COMMAND(READ_IPTS68_C, "PROBE {Probe}:IPTS68:RANGE {Range}:C?", kNumber),
    COMMAND(WRITE_IPTS68_C, "PROBE {Probe}:IPTS68:RANGE {Range}:C {value}"),
    COMMAND(READ_CVD_R0, "PROBE {Probe}:CVD:R0?", kNumber),
    COMMAND(WRITE_CVD_R0, "PROBE {Probe}:CVD:R0 {value}"),
    COMMAND(READ_CVD_ALPHA, "PROBE {Probe}:CVD:ALPHA?", kNumber),
    COMMAND(WRITE_CVD_ALPHA, "PROBE {Probe}:CVD:ALPHA {value}"),
    COMMAND(READ_CVD_DELTA, "PROBE {Probe}:CVD:DELTA?", kNumber),
    COMMAND(WRITE_CVD_DELTA, "PROBE {Probe}:CVD:DELTA {value}"),
    COMMAND(READ_CVD_BETA, "PROBE {Probe}:CVD:BETA?", kNumber),
    COMMAND(WRITE_CVD_BETA, "PROBE {Probe}:CVD:BETA {value}"),
    COMMAND(READ_THERMISTOR_RT, "PROBE {Probe}:RT:C {Index}?", kNumber),
    COMMAND(WRITE_THERMISTOR_RT, "PROBE {Probe}:RT:C {Index} {value}"),
    COMMAND(READ_THERMISTOR_TR, "PROBE {Probe}:TR:C {Index}?", kNumber),
    COMMAND(WRITE_THERMISTOR_TR, "PROBE {Probe}:TR:C {Index} {value}"),
    COMMAND(READ_POLYNOMIAL, "PROBE {Probe}:POLY:C {Index}?", kNumber),
    COMMAND(WRITE_POLYNOMIAL, "PROBE {Probe}:POLY:C {Index} {value}"),
    COMMAND(READ_HISTORY_LOG, "LOG:HISTORY {Index}?", kAny),
    COMMAND(READ_MEMORY_LOG, "LOG:MEMORY {Index}?", kAny),
    COMMAND(WRITE_DATE, "CLOCK:DATE {value}"),
    COMMAND(WRITE_TIME, "CLOCK:TIME {value}"),
};
#undef COMMAND

struct FieldName {
  std::string_view name;
  std::string CommandParams::*member;
  bool endstext;  // may be empty, and nothing follows it
};

constexpr FieldName kFieldNames[] = {
    {"value", &CommandParams::value, true},  {"Channel", &CommandParams::Channel, false},
    {"Probe", &CommandParams::Probe, false}, {"Range", &CommandParams::Range, false},
    {"Index", &CommandParams::Index, false}, {"FilterCode", &CommandParams::FilterCode, true},
};

// The text between the braces that open at `text[at]`.
constexpr std::string_view NameAt(std::string_view text, std::size_t at) {
  return text.substr(at + 1, text.find('}', at) - at - 1);
}

constexpr const FieldName* FindField(std::string_view name) {
  for (const FieldName& field : kFieldNames) {
    if (field.name == name) return &field;
  }
  return nullptr;
}

constexpr std::string_view kRead = "READ_";
constexpr std::string_view kWrite = "WRITE_";

// Every word of the list stands between two others or an end, and is at least one character.
constexpr bool AreSoundWords(std::string_view words) {
  return !words.empty() && words.front() != '|' && words.back() != '|' &&
         words.find("||") == words.npos;
}

// A write answers nothing, a read something that can be told from nothing; what a form doesn't use
// is left out of it.
constexpr bool IsSoundForm(const ReplyForm& form, bool isread) {
  if (isread == (form.kind == EReply::NOTHING)) return false;
  const bool hasnumber =
      form.kind == EReply::NUMBER || form.kind == EReply::WHOLE || form.kind == EReply::SUBRANGE;
  const bool hasbounds = form.lowest != kNumber.lowest || form.highest != kNumber.highest;
  if (hasbounds ? !hasnumber || form.lowest > form.highest
                : form.kind == EReply::WHOLE || form.kind == EReply::SUBRANGE) {
    return false;
  }
  if (form.kind == EReply::WORD) return AreSoundWords(form.words) && !form.maybenothing;
  return form.words.empty() && !form.eithercase &&
         (!form.maybenothing || form.kind == EReply::WHOLE);
}

// A write stands behind the read of its setting and has the number that belongs to it; one that
// stands elsewhere has no read.
constexpr bool IsInPlace(std::span<const CommandRow> rows, std::size_t place) {
  const CommandRow& row = rows[place];
  if (row.IsRead()) return true;
  const auto reads = [&](const CommandRow& other) {
    return other.IsRead() && other.symbol.substr(kRead.size()) == row.symbol.substr(kWrite.size());
  };
  if (place > 0 && reads(rows[place - 1])) return WriteOf(rows[place - 1].id) == row.id;
  return std::ranges::none_of(rows, reads);
}

// Ids rise, symbols and texts are unique, every place names a field, and a field that takes the
// rest of the line is the last thing in it. Every form goes with its command.
constexpr bool IsSound(std::span<const CommandRow> rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view text = rows[i].text;
    if (i > 0 && rows[i].id <= rows[i - 1].id) return false;
    for (std::size_t j = 0; j < i; ++j) {
      if (rows[j].symbol == rows[i].symbol || rows[j].text == text) return false;
    }
    if (!rows[i].symbol.starts_with(rows[i].IsRead() ? kRead : kWrite)) return false;
    if (!IsInPlace(rows, i)) return false;
    if (!IsSoundForm(rows[i].form, rows[i].IsRead())) return false;
    for (std::size_t at = text.find('{'); at != text.npos; at = text.find('{', at + 1)) {
      const FieldName* field = FindField(NameAt(text, at));
      if (field == nullptr) return false;
      if (field->endstext && at + field->name.size() + 2 != text.size()) return false;
    }
  }
  return true;
}
static_assert(IsSound(kCommands));

constexpr bool IsTokenCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
         c == '+' || c == '.';
}

constexpr bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

// Fits `command` to one row's text from left to right.
bool Fits(std::string_view text, std::string_view command, CommandParams& fields) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '{') {
      if (at >= command.size() || Upper(command[at]) != text[i]) return false;
      ++at;
      continue;
    }
    const FieldName& field = *FindField(NameAt(text, i));
    std::size_t end = command.size();
    if (!field.endstext) {
      end = at;
      while (end < command.size() && IsTokenCharacter(command[end])) ++end;
      if (end == at) return false;
    }
    fields.*field.member = command.substr(at, end - at);
    at = end;
    i += field.name.size() + 1;
  }
  return at == command.size();
}

}  // namespace

std::span<const CommandRow> CommandTable() { return kCommands; }

const CommandRow* FindCommand(ECommand id) {
  const auto row = std::ranges::lower_bound(kCommands, id, {}, &CommandRow::id);
  return row != std::end(kCommands) && row->id == id ? &*row : nullptr;
}

std::optional<std::string> BuildCommand(const CommandRow& row, const CommandParams& fields,
                                        std::string& problem) {
  std::string command;
  command.reserve(row.text.size() + 24);
  for (std::size_t i = 0; i < row.text.size(); ++i) {
    if (row.text[i] != '{') {
      command += row.text[i];
      continue;
    }
    const FieldName& field = *FindField(NameAt(row.text, i));
    const std::string& text = fields.*field.member;
    if (text.empty() && !field.endstext) {
      problem =
          "The field " + std::string(field.name) + " of " + std::string(row.symbol) + " is empty.";
      return std::nullopt;
    }
    if (!std::ranges::all_of(text, field.endstext ? IsPrintable : IsTokenCharacter)) {
      problem = "The field " + std::string(field.name) + " of " + std::string(row.symbol) +
                " holds a character that can't be sent.";
      return std::nullopt;
    }
    command += text;
    i += field.name.size() + 1;
  }
  return command;
}

std::optional<ParsedCommand> ParseCommand(std::string_view command) {
  for (const CommandRow& row : kCommands) {
    ParsedCommand parsed{&row, {}};
    if (Fits(row.text, command, parsed.fields)) return parsed;
  }
  return std::nullopt;
}

}  // namespace vane::protocol
