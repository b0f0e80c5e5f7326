#include "protocol/line_buffer.h"

#include <cstring>

namespace vane::protocol {

std::optional<ReceivedLine> CLineBuffer::NextLine() {
  while (scan_ < end_) {
    const char c = bytes_[scan_++];
    const bool isend = c == '\r' || c == '\n';
    if (discarding_) {
      discarding_ = !isend;
      begin_ = scan_;
      continue;
    }
    const std::string_view text(bytes_.data() + begin_, scan_ - begin_ - (isend ? 1 : 0));
    if (!isend && text.size() <= kMaxLineLength) continue;
    begin_ = scan_;
    discarding_ = !isend;
    if (!text.empty()) return ReceivedLine{text, !isend};
  }
  return std::nullopt;
}

std::span<char> CLineBuffer::Free() {
  std::memmove(bytes_.data(), bytes_.data() + begin_, end_ - begin_);
  scan_ -= begin_;
  end_ -= begin_;
  begin_ = 0;
  return std::span(bytes_).subspan(end_);
}

void CLineBuffer::Clear() {
  begin_ = scan_ = end_ = 0;
  discarding_ = false;
}

}  // namespace vane::protocol
