// The readings of a live view: all of them for a week of twelve channels, and what sums them up.
//
// A reading takes 16 bytes. A channel that has more than its share gives up detail, never a
// reading's effect: the oldest half is thinned out to the smallest and the largest of each few
// readings in a row, in the order in which they came, so that no peak is lost. The sums go on over
// all readings. Not a record: what has to last is written elsewhere.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vane::desktop {

using TimePoint = std::chrono::system_clock::time_point;

/// The readings of one channel in one unit: numbers of two units are never joined.
struct SeriesId {
  std::int16_t channel = 0;
  std::int16_t unit = 0;  ///< a code of `ET312BUnits`

  friend bool operator==(const SeriesId&, const SeriesId&) = default;
  friend bool operator<(const SeriesId& one, const SeriesId& other) {
    return one.channel != other.channel ? one.channel < other.channel : one.unit < other.unit;
  }
};

/// Since the last reset. All but `count` are NaN where nothing came.
struct ChannelStatistics {
  std::int64_t count = 0;
  double last;
  double smallest;
  double largest;
  double mean;
  double deviation;  ///< of the sample, with n - 1; NaN below two readings
  TimePoint lasttime{};
};

/// Of a plot: seconds since 1970 in UTC, and a value; NaN ends a line.
struct PlotPoint {
  double time;
  double value;
};

/// Of a number that is written with no more digits than it needs.
inline constexpr int kAnyDecimals = -1;

/// The digits behind the point of a reading as the readout has sent it: how finely it resolves.
/// `kAnyDecimals` for one with an exponent.
int DecimalsOf(const std::string& reading);

std::string NumberText(double value, int decimals);

class CReadingStore {
 public:
  /// What a channel keeps: a week at one reading a second, and some.
  static constexpr std::size_t kMostPoints = 640'000;

  explicit CReadingStore(std::size_t mostpoints = kMostPoints) : mostpoints_(mostpoints) {}

  /// Times of a channel never go back: where the clock was set back, readings stand at the latest
  /// time until it has caught up. `decimals` as of `DecimalsOf`.
  void Add(SeriesId id, TimePoint time, double value, int decimals = kAnyDecimals);

  /// What comes next is not joined to what was there: the line was lost, or measuring was off.
  void Gap(SeriesId id);

  ChannelStatistics StatisticsOf(SeriesId id) const;
  void ResetStatistics();
  void Clear();

  /// Of which there are readings.
  std::vector<SeriesId> All() const;
  bool IsEmpty() const { return All().empty(); }
  /// Of all channels; 0 and 0 when there is none.
  std::pair<double, double> TimeRange() const;

  /// The points from `from` to `to` and the nearest on either side, for `columns` places side by
  /// side: of each place no more than its first, smallest, largest and last point, and each gap.
  std::vector<PlotPoint> PointsOf(SeriesId id, double from, double to, std::size_t columns) const;

  /// The value nearest to `time`, within `reach` seconds; NaN for none.
  double ValueAt(SeriesId id, double time, double reach) const;

  /// "time,channel,name,reading,unit", as it is kept; times in UTC with milliseconds, all readings
  /// of a series with as many digits as the finest.
  void WriteCsv(std::ostream& stream, const std::map<std::int16_t, std::string>& names,
                const std::function<std::string(std::int16_t unit)>& unittext) const;

  std::size_t Bytes() const;

 private:
  // By the method of Welford (Technometrics 4, 1962), which loses no digits to large sums.
  struct Sums {
    std::int64_t count = 0;
    double smallest = 0;
    double largest = 0;
    double mean = 0;
    double squares = 0;  // of the differences to the mean
  };
  struct Series {
    std::vector<PlotPoint> points;  // NaN is a gap
    Sums sums;
    int decimals = kAnyDecimals;
    double last = 0;
    TimePoint lasttime{};
  };

  static void Thin(Series& series);
  const Series* Find(SeriesId id) const;

  const std::size_t mostpoints_;
  std::map<SeriesId, Series> series_;
};

}  // namespace vane::desktop
