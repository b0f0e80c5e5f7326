#include "simulator/answer_queue.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vane::simulator {
namespace {

// Start bit, eight data bits, stop bit.
constexpr std::int64_t kBitsPerByte = 10;

// A piece is what the line carries in this time: short enough for a reader to see bytes trickle in.
constexpr std::int32_t kPiecesPerSecond = 100;

}  // namespace

CAnswerQueue::Moment CAnswerQueue::CommandArrives(std::size_t bytes, Moment now) {
  inputfree_ = std::max(inputfree_, now) + TimeOf(bytes);
  return inputfree_;
}

void CAnswerQueue::Add(std::string line, Moment start, Duration pause) {
  waiting_.emplace(start, Waiting{std::move(line), pause});
}

std::optional<CAnswerQueue::Moment> CAnswerQueue::NextDue() const {
  std::optional<Moment> due;
  if (!sending_.empty()) due = sending_.front().due;
  if (!waiting_.empty()) due = std::min(due.value_or(Moment::max()), waiting_.begin()->first);
  return due;
}

std::string CAnswerQueue::TakeDue(Moment now) {
  while (!waiting_.empty() && waiting_.begin()->first <= now) {
    const auto [start, answer] = std::move(*waiting_.begin());
    waiting_.erase(waiting_.begin());
    const std::string_view line = answer.line;
    const std::size_t first = answer.pause > Duration::zero() ? line.size() / 2 : line.size();
    outputfree_ = Send(line.substr(0, first), std::max(outputfree_, start));
    if (first < line.size()) outputfree_ = Send(line.substr(first), outputfree_ + answer.pause);
  }
  std::string bytes;
  while (!sending_.empty() && sending_.front().due <= now) {
    bytes += sending_.front().bytes;
    sending_.pop_front();
  }
  return bytes;
}

void CAnswerQueue::Clear() {
  waiting_.clear();
  sending_.clear();
}

CAnswerQueue::Duration CAnswerQueue::TimeOf(std::size_t bytes) const {
  if (baud_ == 0) return Duration::zero();
  return std::chrono::nanoseconds(static_cast<std::int64_t>(bytes) * kBitsPerByte * 1'000'000'000 /
                                  baud_);
}

// Gives the moment at which the last byte is out.
CAnswerQueue::Moment CAnswerQueue::Send(std::string_view bytes, Moment start) {
  const std::size_t piece = baud_ == 0 ? bytes.size()
                                       : static_cast<std::size_t>(std::max<std::int64_t>(
                                             1, baud_ / kBitsPerByte / kPiecesPerSecond));
  Moment due = start;
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    const std::size_t end = std::min(at + piece, bytes.size());
    due = start + TimeOf(end);
    sending_.push_back({due, std::string(bytes.substr(at, end - at))});
  }
  return due;
}

}  // namespace vane::simulator
