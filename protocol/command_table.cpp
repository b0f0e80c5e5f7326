#include "protocol/command_table.h"

#include <algorithm>
#include <array>

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
constexpr CommandRow kCommands[] = {
    {0, "WRITE_INITIALIZE", "INIT"},
    {5, "READ_PROTECT_CONVERSION", "PROTECT:CONVERSION?", kProtection},
    {6, "READ_PROTECT_CALIBRATION", "PROTECT:CALIBRATION?", kProtection},
    {7, "READ_PROTECT_SAMPLING", "PROTECT:SAMPLING?", kProtection},
    {8, "READ_PROTECT_UNITS_TIME", "PROTECT:UNITS?", kProtection},
    {10, "WRITE_START_MEASURE", "MEASURE:START"},
    {11, "WRITE_STOP_MEASURE", "MEASURE:STOP"},
    {12, "READ_MEASUREMENT", "MEASURE {Channel}?", kNumber},
    {15, "READ_NEW_DATA", "MEASURE:NEW?", Words("0|1")},
    {18, "READ_IDENTIFICATION", "ID?", kText},
    {24, "READ_FILTER_TYPE", "FILTER:TYPE?", Words("NONE|AVERAGE|EXP|EXPONENTIAL")},
    {25, "WRITE_FILTER_TYPE", "FILTER:TYPE {FilterCode}"},
    {26, "READ_FILTER_RESPONSE_TIME", "FILTER:RESPONSE?", kNumber},
    {27, "WRITE_FILTER_RESPONSE_TIME", "FILTER:RESPONSE {value}"},
    {28, "READ_FILTER_THRESHOLD", "FILTER:THRESHOLD?", kNumber},
    {29, "WRITE_FILTER_THRESHOLD", "FILTER:THRESHOLD {value}"},
    {32, "READ_INTERVAL", "SAMPLE:INTERVAL?", kLong},
    {33, "WRITE_INTERVAL", "SAMPLE:INTERVAL {value}"},
    {34, "READ_CONVERSION_TIME", "SAMPLE:CONVERSION?", kInteger},
    {35, "WRITE_CONVERSION_TIME", "SAMPLE:CONVERSION {value}"},
    {36, "READ_INTEGRATION_TIME", "SAMPLE:INTEGRATION?", kInteger},
    {37, "WRITE_INTEGRATION_TIME", "SAMPLE:INTEGRATION {value}"},
    {41, "READ_SCANNER_MODULES", "SCANNER:MODULES?", Whole(0, kMaxInteger - 1)},
    {43, "READ_CHANNEL_COUNT", "CHANNEL:COUNT?", Whole(2, kMaxInteger)},
    {54, "READ_REPETITIONS", "SAMPLE:REPETITIONS?", kInteger},
    {55, "WRITE_REPETITIONS", "SAMPLE:REPETITIONS {value}"},
    {56, "READ_CHANNEL_MODE", "CHANNEL:MODE?", kNumber},
    {57, "WRITE_CHANNEL_MODE", "CHANNEL:MODE {value}"},
    {58, "READ_SAMPLE_N", "SAMPLE:COUNT?", kInteger},
    {59, "WRITE_SAMPLE_N", "SAMPLE:COUNT {value}"},
    {60, "READ_SAMPLE_ACTION", "SAMPLE:ACTION?", Words("R|RUN|ST|STOP|SAMPLE N")},
    {61, "WRITE_SAMPLE_ACTION", "SAMPLE:ACTION {value}"},
    {66, "READ_RESOLUTION", "RESOLUTION:TEMPERATURE?", kInteger},
    {67, "WRITE_RESOLUTION", "RESOLUTION:TEMPERATURE {value}"},
    {68, "READ_RESISTANCE_RESOLUTION", "RESOLUTION:RESISTANCE?", kInteger},
    {69, "WRITE_RESISTANCE_RESOLUTION", "RESOLUTION:RESISTANCE {value}"},
    {70, "READ_RATIO_RESOLUTION", "RESOLUTION:RATIO?", kInteger},
    {71, "WRITE_RATIO_RESOLUTION", "RESOLUTION:RATIO {value}"},
    {76, "READ_CAL_PARAM", "CAL:PARAM {Index}?", kNumber},
    {77, "WRITE_CAL_PARAM", "CAL:PARAM {Index} {value}"},
    {84, "READ_ADC", "CAL:ADC?", kNumber},
    {85, "WRITE_ADC", "CAL:ADC {value}"},
    {86, "READ_OVEN", "CAL:OVEN?", WordsInEitherCase("ON|OFF")},
    {87, "WRITE_OVEN", "CAL:OVEN {value}"},
    {103, "READ_SCANNER_MEASUREMENT", "SCANNER:MEASURE {Channel}?", kNumber},
    {104, "READ_SCANNER_SCAN_MODE", "SCANNER:MODE?", kNumber},
    {105, "WRITE_SCANNER_SCAN_MODE", "SCANNER:MODE {value}"},
    {106, "READ_SCAN_SEQ_CHANNELS", "SCANNER:SEQUENCE:CHANNELS?", Whole(0, kMaxInteger)},
    {107, "WRITE_SCAN_SEQ_CHANNELS", "SCANNER:SEQUENCE:CHANNELS {value}"},
    {108, "READ_SCAN_SEQ_STEPS", "SCANNER:SEQUENCE:STEPS?", Whole(1, kMaxInteger)},
    {109, "WRITE_SCAN_SEQ_STEPS", "SCANNER:SEQUENCE:STEPS {value}"},
    {110, "READ_SCAN_STEP", "SCANNER:STEP {Index}?", kScanStep},
    {111, "WRITE_SCAN_STEP", "SCANNER:STEP {Index} {Channel}"},
    {112, "READ_SCANNER_PROBE_INDEX", "SCANNER:PROBE {Channel}?", Whole(0, kMaxInteger)},
    {113, "WRITE_SCANNER_PROBE_INDEX", "SCANNER:PROBE {Channel} {Probe}"},
    {116, "READ_SCAN_CHANNEL", "SCANNER:CHANNEL?", Whole(0, kMaxInteger)},
    {117, "WRITE_SCAN_CHANNEL", "SCANNER:CHANNEL {Channel}"},
    {122, "READ_PROBE_SERIAL", "PROBE {Probe}:SERIAL?", kName},
    {123, "WRITE_PROBE_SERIAL", "PROBE {Probe}:SERIAL {value}"},
    {130, "READ_CONVERSION_TYPE", "PROBE {Probe}:CONVERSION?", kConversion},
    {131, "WRITE_CONVERSION_TYPE", "PROBE {Probe}:CONVERSION {value}"},
    {136, "READ_PROBE_INDEX", "CHANNEL {Channel}:PROBE?", Whole(0, kMaxInteger)},
    {137, "WRITE_PROBE_INDEX", "CHANNEL {Channel}:PROBE {Probe}"},
    {138, "READ_REF_RESISTOR", "PROBE {Probe}:REFERENCE?", kReference},
    {139, "WRITE_REF_RESISTOR", "PROBE {Probe}:REFERENCE {value}"},
    {140, "READ_PROBE_CURRENT", "PROBE {Probe}:CURRENT?", kNumber},
    {141, "WRITE_PROBE_CURRENT", "PROBE {Probe}:CURRENT {value}"},
    {142, "READ_PROBE_3WIRE_OFFSET", "PROBE {Probe}:OFFSET?", kNumber},
    {143, "WRITE_PROBE_3WIRE_OFFSET", "PROBE {Probe}:OFFSET {value}"},
    {168, "READ_UNITS", "UNITS?", Words("C|F|K|OHM|R|RATIO|W")},
    {169, "WRITE_UNITS", "UNITS {value}"},
    {205, "READ_ITS90_LOW_RANGE", "PROBE {Probe}:ITS90:LOW:RANGE?", Subrange(1, 5)},
    {206, "WRITE_ITS90_LOW_RANGE", "PROBE {Probe}:ITS90:LOW:RANGE {value}"},
    {207, "READ_ITS90_HIGH_RANGE", "PROBE {Probe}:ITS90:HIGH:RANGE?", Subrange(6, 11)},
    {208, "WRITE_ITS90_HIGH_RANGE", "PROBE {Probe}:ITS90:HIGH:RANGE {value}"},
    {209, "READ_ITS90_RTPW", "PROBE {Probe}:ITS90:RTPW?", kNumber},
    {210, "WRITE_ITS90_RTPW", "PROBE {Probe}:ITS90:RTPW {value}"},
    {211, "READ_ITS90_LOW_A", "PROBE {Probe}:ITS90:LOW {Range}:A?", kNumber},
    {212, "WRITE_ITS90_LOW_A", "PROBE {Probe}:ITS90:LOW {Range}:A {value}"},
    {213, "READ_ITS90_LOW_B", "PROBE {Probe}:ITS90:LOW {Range}:B?", kNumber},
    {214, "WRITE_ITS90_LOW_B", "PROBE {Probe}:ITS90:LOW {Range}:B {value}"},
    {215, "READ_ITS90_LOW_C", "PROBE {Probe}:ITS90:LOW {Range}:C {Index}?", kNumber},
    {216, "WRITE_ITS90_LOW_C", "PROBE {Probe}:ITS90:LOW {Range}:C {Index} {value}"},
    {217, "READ_ITS90_HIGH_A", "PROBE {Probe}:ITS90:HIGH {Range}:A?", kNumber},
    {218, "WRITE_ITS90_HIGH_A", "PROBE {Probe}:ITS90:HIGH {Range}:A {value}"},
    {219, "READ_ITS90_HIGH_B", "PROBE {Probe}:ITS90:HIGH {Range}:B?", kNumber},
    {220, "WRITE_ITS90_HIGH_B", "PROBE {Probe}:ITS90:HIGH {Range}:B {value}"},
    {221, "READ_ITS90_HIGH_C", "PROBE {Probe}:ITS90:HIGH {Range}:C?", kNumber},
    {222, "WRITE_ITS90_HIGH_C", "PROBE {Probe}:ITS90:HIGH {Range}:C {value}"},
    {223, "READ_ITS90_HIGH_D", "PROBE {Probe}:ITS90:HIGH:D?", kNumber},
    {224, "WRITE_ITS90_HIGH_D", "PROBE {Probe}:ITS90:HIGH:D {value}"},
    {225, "READ_IPTS68_SCALE", "PROBE {Probe}:IPTS68:SCALE?", WordsInEitherCase("90|68|NONE")},
    {226, "WRITE_IPTS68_SCALE", "PROBE {Probe}:IPTS68:SCALE {value}"},
    {229, "READ_IPTS68_R0", "PROBE {Probe}:IPTS68:R0?", kNumber},
    {230, "WRITE_IPTS68_R0", "PROBE {Probe}:IPTS68:R0 {value}"},
    {231, "READ_IPTS68_ALPHA", "PROBE {Probe}:IPTS68:ALPHA?", kNumber},
    {232, "WRITE_IPTS68_ALPHA", "PROBE {Probe}:IPTS68:ALPHA {value}"},
    {233, "READ_IPTS68_DELTA", "PROBE {Probe}:IPTS68:DELTA?", kNumber},
    {234, "WRITE_IPTS68_DELTA", "PROBE {Probe}:IPTS68:DELTA {value}"},
    {239, "READ_IPTS68_A", "PROBE {Probe}:IPTS68:RANGE {Range}:A?", kNumber},
    {240, "WRITE_IPTS68_A", "PROBE {Probe}:IPTS68:RANGE {Range}:A {value}"},
    {241, "READ_IPTS68_C", "PROBE {Probe}:IPTS68:RANGE {Range}:C?", kNumber},
    {242, "WRITE_IPTS68_C", "PROBE {Probe}:IPTS68:RANGE {Range}:C {value}"},
    {243, "READ_CVD_R0", "PROBE {Probe}:CVD:R0?", kNumber},
    {244, "WRITE_CVD_R0", "PROBE {Probe}:CVD:R0 {value}"},
    {245, "READ_CVD_ALPHA", "PROBE {Probe}:CVD:ALPHA?", kNumber},
    {246, "WRITE_CVD_ALPHA", "PROBE {Probe}:CVD:ALPHA {value}"},
    {247, "READ_CVD_DELTA", "PROBE {Probe}:CVD:DELTA?", kNumber},
    {248, "WRITE_CVD_DELTA", "PROBE {Probe}:CVD:DELTA {value}"},
    {249, "READ_CVD_BETA", "PROBE {Probe}:CVD:BETA?", kNumber},
    {250, "WRITE_CVD_BETA", "PROBE {Probe}:CVD:BETA {value}"},
    {257, "READ_THERMISTOR_RT", "PROBE {Probe}:RT:C {Index}?", kNumber},
    {258, "WRITE_THERMISTOR_RT", "PROBE {Probe}:RT:C {Index} {value}"},
    {259, "READ_THERMISTOR_TR", "PROBE {Probe}:TR:C {Index}?", kNumber},
    {260, "WRITE_THERMISTOR_TR", "PROBE {Probe}:TR:C {Index} {value}"},
    {261, "READ_POLYNOMIAL", "PROBE {Probe}:POLY:C {Index}?", kNumber},
    {262, "WRITE_POLYNOMIAL", "PROBE {Probe}:POLY:C {Index} {value}"},
    {275, "READ_HISTORY_LOG", "LOG:HISTORY {Index}?", kAny},
    {276, "READ_MEMORY_LOG", "LOG:MEMORY {Index}?", kAny},
    {288, "WRITE_DATE", "CLOCK:DATE {value}"},
    {290, "WRITE_TIME", "CLOCK:TIME {value}"},
};

struct FieldName {
  std::string_view name;
  std::string Fields::*member;
  bool endstext;  // may be empty, and nothing follows it
};

constexpr FieldName kFieldNames[] = {
    {"value", &Fields::value, true},  {"Channel", &Fields::Channel, false},
    {"Probe", &Fields::Probe, false}, {"Range", &Fields::Range, false},
    {"Index", &Fields::Index, false}, {"FilterCode", &Fields::FilterCode, true},
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

// Ids rise, symbols and texts are unique, every place names a field, and a field that takes the
// rest of the line is the last thing in it. Every form goes with its command.
constexpr bool IsSound(std::span<const CommandRow> rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view text = rows[i].text;
    if (i > 0 && rows[i].id <= rows[i - 1].id) return false;
    for (std::size_t j = 0; j < i; ++j) {
      if (rows[j].symbol == rows[i].symbol || rows[j].text == text) return false;
    }
    if (rows[i].symbol.starts_with("READ_") != rows[i].IsRead()) return false;
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

constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Fits `command` to one row's text from left to right.
bool Fits(std::string_view text, std::string_view command, Fields& fields) {
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

const CommandRow* FindCommand(std::int32_t id) {
  const auto row = std::ranges::lower_bound(kCommands, id, {}, &CommandRow::id);
  return row != std::end(kCommands) && row->id == id ? &*row : nullptr;
}

std::optional<std::string> BuildCommand(const CommandRow& row, const Fields& fields,
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
