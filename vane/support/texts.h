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

}  // namespace vane
