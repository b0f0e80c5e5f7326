// When the bytes of the answers go out.
//
// A line of a given speed carries one byte after the other: an answer starts when its command has
// come in whole and the line is free, and goes out in pieces. A held-back answer waits beside the
// line, so that later answers pass it. Knows no clock and no file: moments are handed in.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace vane::simulator {

class CAnswerQueue {
 public:
  using Moment = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;

  /// `baud` 0: a line that takes no time.
  explicit CAnswerQueue(std::int32_t baud) : baud_(baud) {}

  /// `bytes` of a command were found at `now`. The moment at which a line of this speed has carried
  /// them.
  Moment CommandArrives(std::size_t bytes, Moment now);

  /// Puts `line` (with its end) up for `start` or later. With a `pause` it goes in two pieces.
  void Add(std::string line, Moment start, Duration pause = {});

  /// When `TakeDue` has something to give; nothing when the queue is empty.
  std::optional<Moment> NextDue() const;

  /// The bytes that go out now.
  std::string TakeDue(Moment now);

  void Clear();

 private:
  struct Waiting {
    std::string line;
    Duration pause;
  };
  struct Piece {
    Moment due;
    std::string bytes;
  };

  Duration TimeOf(std::size_t bytes) const;
  Moment Send(std::string_view bytes, Moment start);

  std::int32_t baud_;
  std::multimap<Moment, Waiting> waiting_;
  std::deque<Piece> sending_;
  Moment inputfree_ = Moment::min();
  Moment outputfree_ = Moment::min();
};

}  // namespace vane::simulator
