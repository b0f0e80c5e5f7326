// Small text routines. Cases are changed for ASCII letters only: the instrument sends no others.
#pragma once

#include <string>
#include <string_view>

namespace vane {

/// Without leading and trailing blanks; a blank is the space character only.
constexpr std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

constexpr bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != text.npos;
}

inline std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

/// `text` with its line ends (CR, CR LF or LF) as LF, and "?" for every other control character: an
/// instrument's words must not steer a terminal.
inline std::string PrintableText(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == '\r') {
      if (text.substr(i + 1, 1) != "\n") result += '\n';
    } else if (c == '\n' || c == '\t' || (c >= ' ' && c != 0x7F)) {
      result += text[i];
    } else {
      result += '?';
    }
  }
  return result;
}

}  // namespace vane
