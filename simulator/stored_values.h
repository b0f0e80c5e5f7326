// The settings of the readout and of its probes, as each is stored: a number within limits, or one
// of certain words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "simulator/reply.h"

namespace vane::simulator {

struct Limits {
  double lowest = std::numeric_limits<double>::lowest();
  double highest = std::numeric_limits<double>::max();
  bool whole = false;
};

/// The code that a write brings and the text that a read gives are not the same, so each choice
/// has both.
struct Word {
  std::string_view code;  ///< in either case; empty for what no write brings back
  std::string_view text;
};

/// A write of `text` into `stored`; an empty text acknowledges and changes nothing.
CReply WriteNumber(const Limits& limits, const std::string& text, double& stored);
CReply WriteNumber(const Limits& limits, const std::string& text, std::int32_t& stored);  ///< whole

/// The same for the place in `words` of the code that `text` is.
CReply WriteWord(std::span<const Word> words, const std::string& text, std::size_t& stored);

}  // namespace vane::simulator
