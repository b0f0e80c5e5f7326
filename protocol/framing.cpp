#include "protocol/framing.h"

#include <array>
#include <charconv>

namespace vane::protocol {
namespace {

constexpr std::size_t kTagDigits = 4;
constexpr std::size_t kCheckDigits = 4;
constexpr std::size_t kHeadLength = 1 + kTagDigits + 1;  // "#", tag, blank
constexpr std::size_t kTailLength = 1 + kCheckDigits;    // "*", check value

constexpr std::array<std::uint16_t, 256> MakeCheckTable() {
  std::array<std::uint16_t, 256> table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t value = byte << 8;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 0x8000u) != 0 ? (value << 1) ^ 0x1021u : value << 1;
    }
    table[byte] = static_cast<std::uint16_t>(value);
  }
  return table;
}
constexpr std::array<std::uint16_t, 256> kCheckTable = MakeCheckTable();

void AppendHex(std::string& line, std::uint16_t value) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (int shift = 12; shift >= 0; shift -= 4) line += kDigits[(value >> shift) & 0xF];
}

std::optional<std::uint16_t> ReadHex(std::string_view digits) {
  std::uint16_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

}  // namespace

std::uint16_t CheckValue(std::string_view text) {
  std::uint16_t value = 0xFFFF;
  for (const char c : text) {
    const auto index = static_cast<std::uint8_t>((value >> 8) ^ static_cast<std::uint8_t>(c));
    value = static_cast<std::uint16_t>((value << 8) ^ kCheckTable[index]);
  }
  return value;
}

std::string FrameLine(std::uint16_t tag, std::string_view body) {
  std::string line;
  line.reserve(kHeadLength + body.size() + kTailLength + kLineEnd.size());
  line += '#';
  AppendHex(line, tag);
  line += ' ';
  line += body;
  const std::uint16_t check = CheckValue(line);
  line += '*';
  AppendHex(line, check);
  return line;
}

std::optional<FramedLine> ParseLine(std::string_view line) {
  if (line.size() < kHeadLength + kTailLength || line.front() != '#') return std::nullopt;
  const std::size_t star = line.size() - kTailLength;
  if (line[kHeadLength - 1] != ' ' || line[star] != '*') return std::nullopt;
  const auto tag = ReadHex(line.substr(1, kTagDigits));
  const auto check = ReadHex(line.substr(star + 1));
  if (!tag || !check || *check != CheckValue(line.substr(0, star))) return std::nullopt;
  return FramedLine{*tag, line.substr(kHeadLength, star - kHeadLength)};
}

std::string ValueBody(std::string_view value) { return "=" + std::string(value); }

std::string RefusalBody(std::int32_t number, std::string_view text) {
  return "!" + std::to_string(number) + " " + std::string(text);
}

std::optional<Answer> ParseAnswer(std::string_view body) {
  if (body.starts_with('=')) return Answer{false, 0, body.substr(1)};
  if (!body.starts_with('!')) return std::nullopt;
  Answer answer{true, 0, {}};
  const char* const last = body.data() + body.size();
  const auto [end, error] = std::from_chars(body.data() + 1, last, answer.number);
  if (error != std::errc{} || end == last || *end != ' ') return std::nullopt;
  answer.text = body.substr(static_cast<std::size_t>(end + 1 - body.data()));
  return answer;
}

}  // namespace vane::protocol
