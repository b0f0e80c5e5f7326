// Cuts what comes over the line, in pieces of any size, into lines. Both ends use it.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "protocol/framing.h"

namespace vane::protocol {

struct ReceivedLine {
  std::string_view text;  ///< refers into the buffer
  /// The line was longer than any line may be: `text` is its beginning, the rest is thrown away.
  bool overlong;
};

class CLineBuffer {
 public:
  /// The next line without its end; empty lines are passed over. Nothing when no line is complete.
  /// The result holds until `Free` or `Clear`.
  std::optional<ReceivedLine> NextLine();

  /// Where the next bytes go. Call it when `NextLine` gave nothing; there is always room then.
  std::span<char> Free();

  /// `count` bytes were put where `Free` said.
  void Filled(std::size_t count) { end_ += count; }

  void Clear();

 private:
  std::array<char, 2 * kMaxLineLength> bytes_;
  std::size_t begin_ = 0;  // of the line that isn't complete
  std::size_t scan_ = 0;   // no line end before this
  std::size_t end_ = 0;
  bool discarding_ = false;  // inside the rest of an overlong line
};

}  // namespace vane::protocol
