// Settings that are words: the code that a write brings and the text that a read gives are not the
// same, so each choice has both.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace vane::simulator {

struct Word {
  std::string_view code;  ///< what a write brings
  std::string_view text;  ///< what a read gives
};

/// The place in `words` of `code`, matched without regard to case; nothing when it isn't there.
inline std::optional<std::size_t> FindCode(std::span<const Word> words, std::string_view code) {
  const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : int{c}; };
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view known = words[i].code;
    if (known.size() != code.size()) continue;
    std::size_t same = 0;
    while (same < code.size() && upper(known[same]) == upper(code[same])) ++same;
    if (same == code.size()) return i;
  }
  return std::nullopt;
}

}  // namespace vane::simulator
