// When the readout takes its samples, on the recorder's clock.
//
// The readout says that there is a new sample, and neither which nor since when. But it takes one
// at each interval, so that a moment at which one was seen tells when the next ones come, within
// the time that the seeing took. Hence which sample a reading is of: a channel is asked long behind
// a sample, or just at one, and only in between is the answer sure.
//
// All times are milliseconds of a clock that never goes back.
#pragma once

#include <cstdint>
#include <optional>

namespace vane::recorder {

class CSampleClock {
 public:
  struct Window {
    std::int64_t earliest = 0;
    std::int64_t latest = 0;
  };

  /// `interval` is the readout's. Nothing is known of its samples from here on but that the next
  /// one that is seen has a number above that of the latest.
  void Restart(std::int64_t interval);

  /// Whether a sample was seen since `Restart`.
  bool IsKnown() const { return isknown_; }
  std::int64_t Interval() const { return interval_; }

  /// The number of the latest sample that was seen.
  std::int64_t Sample() const { return sample_; }
  /// From another run: the sample was there at `time`.
  void TakeOver(std::int64_t sample, std::optional<std::int64_t> time);

  /// The number of a sample at about `time`, where nobody has followed them: that of the latest one
  /// that was seen and how many intervals have passed since, one at least.
  std::int64_t Reckon(std::int64_t time) const;

  /// Sample `sample` came at some moment from `earliest` to `latest`.
  void See(std::int64_t sample, std::int64_t earliest, std::int64_t latest);

  /// When sample `sample` comes or came.
  Window WindowOf(std::int64_t sample) const;

  /// The sample that the readout's readings are of at `time`; nothing where that isn't sure.
  std::optional<std::int64_t> At(std::int64_t time) const;

 private:
  std::int64_t interval_ = 1000;
  bool isknown_ = false;
  std::int64_t sample_ = 0;
  std::optional<Window> seen_;  // of `sample_`, or about, of another run
  std::int64_t jitter_ = 0;
};

}  // namespace vane::recorder
