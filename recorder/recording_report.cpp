#include "recorder/recording_report.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace vane::recorder {
namespace {

constexpr std::size_t kBins = 720;
constexpr std::size_t kMostEvents = 500;
constexpr std::size_t kMostGaps = 10;
constexpr std::size_t kMostSteps = 64;  // kinds of distances that are told apart
constexpr std::int64_t kMostTimes = 1001;
constexpr double kMsPerSecond = 1000;
constexpr double kMsPerHour = 3'600'000;

using SeriesKey = std::pair<std::int16_t, std::string>;

// What the first pass learns of a series: how far apart its readings are as a rule.
struct Spacing {
  struct Step {
    // In the middle of these lies what is usual, whatever happened between some of them.
    double MiddleTime() const {
      std::vector<std::int64_t> sorted = times;
      const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
      std::ranges::nth_element(sorted, middle);
      return static_cast<double>(*middle);
    }

    std::int64_t count = 0;
    std::vector<std::int64_t> times = {};  // the first ones
  };

  // The step of most readings; 0: there is none.
  std::int64_t Usual() const {
    const auto most =
        std::ranges::max_element(steps, {}, [](const auto& one) { return one.second.count; });
    return most == steps.end() ? 0 : most->first;
  }

  std::int64_t sample = 0;
  std::int64_t time = 0;
  std::int64_t count = 0;
  std::map<std::int64_t, Step> steps = {};  // by how many samples apart
};

struct Figures {
  SeriesReport report = {};
  CTrend trend = {};
  CAllanDeviation allan = {};
  std::int64_t step = 0;
  std::int64_t sample = 0;
  std::int64_t utc = 0;
};

void AddGap(SeriesReport& report, const RecordingGap& gap) {
  ++report.gaps;
  report.missing += gap.missing;
  const auto place = std::ranges::find_if(
      report.longest, [&](const RecordingGap& one) { return one.missing < gap.missing; });
  report.longest.insert(place, gap);
  if (report.longest.size() > kMostGaps) report.longest.pop_back();
}

void AddReading(Figures& figures, const Reading& reading, std::int64_t time, std::int64_t whole) {
  SeriesReport& report = figures.report;
  const TimedValue value{reading.value, reading.time.utc};
  if (report.count == 0) {
    report.first = report.smallest = report.largest = value;
    report.bins.resize(kBins);
  } else {
    const std::int64_t step = reading.sample - figures.sample;
    if (step != figures.step) figures.allan.Break();
    if (figures.step > 0 && step > figures.step) {
      AddGap(report, {figures.utc, reading.time.utc, step / figures.step - 1});
    }
  }
  ++report.count;
  report.last = value;
  if (value.value < report.smallest.value) report.smallest = value;
  if (value.value > report.largest.value) report.largest = value;
  report.resolution = std::max(report.resolution, reading.resolution);
  figures.sample = reading.sample;
  figures.utc = reading.time.utc;
  figures.trend.Add(static_cast<double>(time) / kMsPerHour, reading.value);
  figures.allan.Add(reading.value);
  const std::size_t place =
      whole == 0 ? 0
                 : std::min(kBins - 1, static_cast<std::size_t>(static_cast<double>(time) * kBins /
                                                                static_cast<double>(whole)));
  PlotBin& bin = report.bins[place];
  bin.smallest = bin.count == 0 ? reading.value : std::min(bin.smallest, reading.value);
  bin.largest = bin.count == 0 ? reading.value : std::max(bin.largest, reading.value);
  bin.sum += reading.value;
  ++bin.count;
}

SeriesReport Finished(const Figures& figures, const Spacing& spacing, const RecordingHead& head) {
  SeriesReport report = figures.report;
  const auto found =
      std::ranges::find(head.channels, report.channel, &RecordingHead::Channel::channel);
  if (found != head.channels.end()) {
    report.name = found->name;
    report.probe = found->probe;
    if (report.probe && head.probes.contains(*report.probe)) {
      report.serial = head.probes.at(*report.probe);
    }
  }
  report.mean = figures.trend.Mean();
  report.deviation = figures.trend.Deviation();
  report.drift = figures.trend.Drift();
  if (figures.step == 0) return report;
  const Spacing::Step& usual = spacing.steps.at(figures.step);
  report.interval = usual.MiddleTime() / kMsPerSecond;
  for (const CAllanDeviation::Point& point : figures.allan.Points()) {
    report.allan.push_back(
        {static_cast<double>(point.factor) * *report.interval, point.deviation, point.differences});
  }
  return report;
}

}  // namespace

RecordingReport MakeReport(CRecordingReader& reader, const RecordingChoice& choice) {
  RecordingReport report{.about = reader.About()};
  std::map<SeriesKey, Spacing> spacings;
  std::int64_t whole = 0;
  CTimeline first(report.about);
  reader.ForEachReading(choice, [&](const Reading& reading, std::int64_t session) {
    whole = first.At(reading, session);
    if (report.readings++ == 0) report.from = reading.time.utc;
    report.to = reading.time.utc;
    Spacing& spacing = spacings[{reading.channel, reading.unit}];
    if (spacing.count++ > 0) {
      const std::int64_t step = reading.sample - spacing.sample;
      if (spacing.steps.contains(step) || spacing.steps.size() < kMostSteps) {
        Spacing::Step& one = spacing.steps[step];
        if (one.count++ < kMostTimes) one.times.push_back(whole - spacing.time);
      }
    }
    spacing.sample = reading.sample;
    spacing.time = whole;
  });
  report.seconds = static_cast<double>(whole) / kMsPerSecond;

  std::map<SeriesKey, Figures> all;
  CTimeline second(report.about);
  reader.ForEachReading(choice, [&](const Reading& reading, std::int64_t session) {
    Figures& figures = all[{reading.channel, reading.unit}];
    if (figures.report.count == 0) {
      figures.report.channel = reading.channel;
      figures.report.unit = reading.unit;
      figures.step = spacings[{reading.channel, reading.unit}].Usual();
    }
    AddReading(figures, reading, second.At(reading, session), whole);
  });
  for (const auto& [key, figures] : all) {
    report.series.push_back(Finished(figures, spacings.at(key), report.about.head));
  }

  reader.ForEachEvent(choice, [&](const Event& event, std::int64_t behind) {
    ++report.eventcounts[event.kind];
    if (report.events.size() < kMostEvents) {
      report.events.push_back({event, behind});
    } else {
      ++report.moreevents;
    }
  });
  return report;
}

}  // namespace vane::recorder
