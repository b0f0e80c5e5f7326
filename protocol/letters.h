// Letters on the line: ASCII, whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace vane::protocol {

constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

/// Whether both are the same letters of either case.
constexpr bool IsSameWord(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, Upper, Upper);
}

}  // namespace vane::protocol
