// How a command and its answer travel: one line each, with a tag and a check value.
//
//   #1A2B SAMPLE:INTERVAL?*F14D     the command
//   #1A2B =10*B722                  its answer: a value, empty for a write
//   #1A2B !3 out of range*8FF5      or a refusal: a number, a blank, a text
//
// The tag is four hexadecimal digits, chosen anew for every sending, and comes back with the
// answer. The check value is the CRC-16 of all characters before the last "*": polynomial
// x^16 + x^12 + x^5 + 1, starting value 0xFFFF, no reflection, as in ITU-T X.25's polynomial; it
// finds every burst of up to 16 bits. A line ends in CR, LF or both, and an empty line means
// nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vane::protocol {

/// No line is longer than this, its end not counted.
inline constexpr std::size_t kMaxLineLength = 512;

inline constexpr std::string_view kLineEnd = "\r\n";

std::uint16_t CheckValue(std::string_view text);

/// The tagged line of `body`, without the line end.
std::string FrameLine(std::uint16_t tag, std::string_view body);

struct FramedLine {
  std::uint16_t tag;
  std::string_view body;  ///< refers into the line
};

/// Takes a line apart; nothing when its form or its check value is wrong.
std::optional<FramedLine> ParseLine(std::string_view line);

/// An answer's body, taken apart.
struct Answer {
  bool refused = false;
  std::int32_t number = 0;  ///< of a refusal
  std::string_view text;    ///< the value, or the refusal's text; refers into the body
};

std::string ValueBody(std::string_view value);
std::string RefusalBody(std::int32_t number, std::string_view text);

/// Nothing when the body is neither a value nor a refusal.
std::optional<Answer> ParseAnswer(std::string_view body);

}  // namespace vane::protocol
