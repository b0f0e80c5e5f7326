// What a recording comes to: the figures of each channel in each unit, what is missing, and what
// happened. Two passes over the file, in memory that doesn't grow with it.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "recorder/recording_reader.h"
#include "recorder/statistics.h"

namespace vane::recorder {

/// A value and when it was.
struct TimedValue {
  double value = 0;
  std::int64_t utc = 0;
};

/// Samples of the readout that a channel has no reading of.
struct RecordingGap {
  std::int64_t from = 0;  ///< utc of the reading before
  std::int64_t to = 0;    ///< and of the one behind
  std::int64_t missing = 0;
};

/// The readings of a short time, for a plot.
struct PlotBin {
  std::int64_t count = 0;
  double smallest = 0;
  double largest = 0;
  double sum = 0;
};

struct SeriesReport {
  std::int16_t channel = 0;
  std::string name = {};
  std::optional<std::int16_t> probe = {};
  std::string serial = {};  ///< of the probe at the start; empty: none
  std::string unit = {};
  std::int16_t resolution = 0;
  std::int64_t count = 0;
  TimedValue first = {};
  TimedValue last = {};
  TimedValue smallest = {};
  TimedValue largest = {};
  double mean = 0;
  std::optional<double> deviation = {};
  std::optional<CTrend::Slope> drift = {};  ///< per hour
  std::optional<double> interval = {};      ///< from one reading to the next, s
  struct AllanPoint {
    double tau;  ///< s
    double deviation;
    std::int64_t differences;
  };
  std::vector<AllanPoint> allan = {};
  std::int64_t gaps = 0;
  std::int64_t missing = 0;
  std::vector<RecordingGap> longest = {};  ///< of the gaps; the first is the longest
  std::vector<PlotBin> bins = {};          ///< over the whole time of the recording
};

struct ReportedEvent {
  Event event;
  std::int64_t behind = 0;
};

struct RecordingReport {
  AboutRecording about = {};
  std::int64_t readings = 0;
  std::int64_t from = 0;  ///< utc of the first reading
  std::int64_t to = 0;    ///< and of the last
  double seconds = 0;     ///< between them, by a clock that nobody sets
  std::vector<SeriesReport> series = {};
  std::map<std::string, std::int64_t> eventcounts = {};
  std::vector<ReportedEvent> events = {};  ///< the first ones
  std::int64_t moreevents = 0;             ///< that aren't among them
};

RecordingReport MakeReport(CRecordingReader& reader, const RecordingChoice& choice);

}  // namespace vane::recorder
