// Figures of a series of readings, taken in one after another, in memory that doesn't grow.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace vane::recorder {

/// Count, mean and deviation, and the straight line through the values by least squares.
///
/// The means and sums of squares are those of the values seen so far (Welford 1962), so that a
/// small deviation of a large value keeps its digits.
class CTrend {
 public:
  /// `time` in any unit; the slope is per that.
  void Add(double time, double value);

  std::int64_t Count() const { return count_; }
  double Mean() const { return mean_; }
  /// Of the sample, with n - 1; nothing of one value.
  std::optional<double> Deviation() const;

  struct Slope {
    double value;
    /// Standard uncertainty, from the residuals about the line with n - 2 degrees of freedom. It
    /// supposes that these are independent of each other; where the Allan deviation doesn't fall
    /// with the square root of time they are not, and this is too small.
    double uncertainty;
  };
  /// Nothing of fewer than three values, and of values at one time.
  std::optional<Slope> Drift() const;

 private:
  std::int64_t count_ = 0;
  double meantime_ = 0;
  double mean_ = 0;
  double timesquares_ = 0;
  double squares_ = 0;
  double products_ = 0;
};

/// The overlapping Allan deviation of values at equal distances, at the factors 1, 2, 4, ... (NIST
/// Special Publication 1065, equation 11, in its form for phase data).
///
/// Up to a factor of 1024 every second difference of the sums counts. Beyond, one in factor / 1024
/// does: the sums in between are left out, which keeps the memory bounded and costs next to
/// nothing, since neighbours among them say nearly the same.
class CAllanDeviation {
 public:
  void Add(double value);

  /// The next value doesn't follow the one before at the usual distance.
  void Break();

  struct Point {
    std::int64_t factor;  ///< of the averages, in values
    double deviation;
    std::int64_t differences;  ///< how many it comes from
  };
  /// Factors with at least `kFewest` differences.
  std::vector<Point> Points() const;

  static constexpr std::int64_t kFewest = 8;

 private:
  struct Level {
    std::vector<double> sums = {};  // of the latest 2 * factor / stride + 1, a ring
    std::size_t next = 0;
    std::int64_t held = 0;
    double squares = 0;
    std::int64_t differences = 0;
  };

  void Take(Level& level, std::int64_t factor) const;

  std::vector<Level> levels_;
  std::optional<double> origin_;
  double sum_ = 0;
  std::int64_t taken_ = 0;  // since the latest break
};

}  // namespace vane::recorder
