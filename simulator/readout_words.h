// Settings that are words: the code that a write brings and the text that a read gives are not the
// same, so each choice has both.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace vane::simulator {

struct Word {
  std::string_view code;  ///< what a write brings
  std::string_view text;  ///< what a read gives
};

/// Whether both are the same letters of either case.
inline bool IsSameWord(std::string_view one, std::string_view other) {
  const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : int{c}; };
  return std::ranges::equal(one, other, {}, upper, upper);
}

/// The place in `words` of `code`, matched without regard to case; nothing when it isn't there.
inline std::optional<std::size_t> FindCode(std::span<const Word> words, std::string_view code) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (IsSameWord(words[i].code, code)) return i;
  }
  return std::nullopt;
}

}  // namespace vane::simulator
