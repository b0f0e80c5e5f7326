// Settings that are words: what a reply looks for and what a write brings are not the same, so each
// value has both.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "vane/support/texts.h"

namespace vane {

template <class Value>
struct WordRow {
  std::string_view word;  ///< a part of the reply
  std::string_view code;  ///< what a write brings
  Value value;
};

/// The value of the first row whose word occurs anywhere in `reply`: a word that stands within
/// another one comes behind that.
template <class Value>
Value ValueOf(std::string_view reply, std::span<const WordRow<Value>> rows, Value fallback) {
  for (const auto& row : rows) {
    if (Contains(reply, row.word)) return row.value;
  }
  return fallback;
}

/// Empty when no row has `value`: the command goes out without a code, and the instrument
/// acknowledges that and changes nothing.
template <class Value>
std::string CodeOf(Value value, std::span<const WordRow<Value>> rows) {
  for (const auto& row : rows) {
    if (row.value == value) return std::string(row.code);
  }
  return {};
}

}  // namespace vane
