#include "apps/thermoscribe-desktop/reading_store.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>

namespace vane::desktop {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kThinned = 16;  // readings that become two

double Seconds(TimePoint time) {
  return std::chrono::duration<double>(time.time_since_epoch()).count();
}

bool IsGap(const PlotPoint& point) { return std::isnan(point.value); }

std::string UtcText(double seconds) {
  using namespace std::chrono;
  const sys_time<milliseconds> time{round<milliseconds>(duration<double>(seconds))};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", int{date.year()},
                unsigned{date.month()}, unsigned{date.day()},
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text;
}

std::string Quoted(const std::string& text) {
  if (text.find_first_of(",\"\n") == text.npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

// Of points in a row: the first, the smallest, the largest and the last, and each gap once.
class CReducer {
 public:
  explicit CReducer(std::vector<PlotPoint>& target) : target_(target) {}
  ~CReducer() { Flush(); }
  CReducer(const CReducer&) = delete;
  CReducer& operator=(const CReducer&) = delete;

  void Add(const PlotPoint& point) {
    if (IsGap(point)) {
      Flush();
      if (!target_.empty() && !IsGap(target_.back())) target_.push_back(point);
      return;
    }
    if (!any_) {
      first_ = smallest_ = largest_ = point;
      any_ = true;
    }
    if (point.value < smallest_.value) smallest_ = point;
    if (point.value > largest_.value) largest_ = point;
    last_ = point;
  }

  void Flush() {
    if (!any_) return;
    any_ = false;
    PlotPoint kept[] = {first_, smallest_, largest_, last_};
    std::ranges::stable_sort(kept, {}, &PlotPoint::time);
    for (const PlotPoint& point : kept) {
      const bool istwice = !target_.empty() && target_.back().time == point.time &&
                           target_.back().value == point.value;
      if (!istwice) target_.push_back(point);
    }
  }

 private:
  std::vector<PlotPoint>& target_;
  bool any_ = false;
  PlotPoint first_{};
  PlotPoint smallest_{};
  PlotPoint largest_{};
  PlotPoint last_{};
};

}  // namespace

int DecimalsOf(const std::string& reading) {
  if (reading.find_first_of("eE") != reading.npos) return kAnyDecimals;
  const std::size_t point = reading.find('.');
  if (point == reading.npos) return 0;
  const std::size_t end =
      std::min(reading.find_first_not_of("0123456789", point + 1), reading.size());
  return static_cast<int>(end - point - 1);
}

std::string NumberText(double value, int decimals) {
  char text[400];
  char* const end = text + sizeof text;
  const auto written = decimals == kAnyDecimals
                           ? std::to_chars(text, end, value)
                           : std::to_chars(text, end, value, std::chars_format::fixed, decimals);
  return {text, written.ptr};
}

void CReadingStore::Add(SeriesId id, TimePoint time, double value, int decimals) {
  if (std::isnan(value)) return Gap(id);
  Series& series = series_[id];
  double seconds = Seconds(time);
  if (!series.points.empty()) seconds = std::max(seconds, series.points.back().time);
  series.points.push_back({seconds, value});
  series.decimals = std::max(series.decimals, decimals);
  series.last = value;
  series.lasttime = time;
  Sums& sums = series.sums;
  ++sums.count;
  sums.smallest = sums.count == 1 ? value : std::min(sums.smallest, value);
  sums.largest = sums.count == 1 ? value : std::max(sums.largest, value);
  const double before = value - sums.mean;
  sums.mean += before / static_cast<double>(sums.count);
  sums.squares += before * (value - sums.mean);
  if (series.points.size() > mostpoints_) Thin(series);
}

void CReadingStore::Gap(SeriesId id) {
  Series& series = series_[id];
  if (series.points.empty() || IsGap(series.points.back())) return;
  series.points.push_back({series.points.back().time, kNone});
}

void CReadingStore::Thin(Series& series) {
  std::vector<PlotPoint> kept;
  kept.reserve(series.points.capacity());
  const std::size_t half = series.points.size() / 2;
  std::size_t place = 0;
  while (place < half) {
    const std::size_t end = std::min(place + kThinned, half);
    std::size_t smallest = end;
    std::size_t largest = end;
    std::size_t at = place;
    for (; at < end && !IsGap(series.points[at]); ++at) {
      if (smallest == end || series.points[at].value < series.points[smallest].value) smallest = at;
      if (largest == end || series.points[at].value > series.points[largest].value) largest = at;
    }
    if (smallest != end) {
      kept.push_back(series.points[std::min(smallest, largest)]);
      if (smallest != largest) kept.push_back(series.points[std::max(smallest, largest)]);
    }
    if (at < end) kept.push_back(series.points[at++]);  // the gap
    place = at;
  }
  kept.insert(kept.end(), series.points.begin() + static_cast<std::ptrdiff_t>(half),
              series.points.end());
  series.points = std::move(kept);
}

const CReadingStore::Series* CReadingStore::Find(SeriesId id) const {
  const auto found = series_.find(id);
  return found == series_.end() ? nullptr : &found->second;
}

ChannelStatistics CReadingStore::StatisticsOf(SeriesId id) const {
  ChannelStatistics statistics{0, kNone, kNone, kNone, kNone, kNone, {}};
  const Series* const series = Find(id);
  if (series == nullptr) return statistics;
  if (!series->points.empty()) {
    statistics.last = series->last;
    statistics.lasttime = series->lasttime;
  }
  const Sums& sums = series->sums;
  statistics.count = sums.count;
  if (sums.count == 0) return statistics;
  statistics.smallest = sums.smallest;
  statistics.largest = sums.largest;
  statistics.mean = sums.mean;
  if (sums.count > 1) {
    statistics.deviation = std::sqrt(sums.squares / static_cast<double>(sums.count - 1));
  }
  return statistics;
}

void CReadingStore::ResetStatistics() {
  for (auto& [id, series] : series_) series.sums = {};
}

void CReadingStore::Clear() { series_.clear(); }

std::vector<SeriesId> CReadingStore::All() const {
  std::vector<SeriesId> all;
  for (const auto& [id, series] : series_) {
    if (!series.points.empty()) all.push_back(id);
  }
  return all;
}

std::pair<double, double> CReadingStore::TimeRange() const {
  std::pair<double, double> range{0, 0};
  bool any = false;
  for (const auto& [id, series] : series_) {
    if (series.points.empty()) continue;
    const double first = series.points.front().time;
    const double last = series.points.back().time;
    range = any ? std::pair(std::min(range.first, first), std::max(range.second, last))
                : std::pair(first, last);
    any = true;
  }
  return range;
}

std::vector<PlotPoint> CReadingStore::PointsOf(SeriesId id, double from, double to,
                                               std::size_t columns) const {
  std::vector<PlotPoint> reduced;
  const Series* const series = Find(id);
  if (series == nullptr || columns == 0 || !(to > from)) return reduced;
  const auto& points = series->points;
  auto first = std::ranges::lower_bound(points, from, {}, &PlotPoint::time);
  auto last = std::ranges::upper_bound(points, to, {}, &PlotPoint::time);
  if (first != points.begin()) --first;
  if (last != points.end()) ++last;
  CReducer reducer(reduced);
  const double width = (to - from) / static_cast<double>(columns);
  double end = from;
  for (; first != last; ++first) {
    if (first->time >= end) {
      reducer.Flush();
      end = from + (std::floor((first->time - from) / width) + 1) * width;
    }
    reducer.Add(*first);
  }
  reducer.Flush();
  return reduced;
}

double CReadingStore::ValueAt(SeriesId id, double time, double reach) const {
  const Series* const series = Find(id);
  if (series == nullptr) return kNone;
  const auto& points = series->points;
  const auto next = std::ranges::lower_bound(points, time, {}, &PlotPoint::time);
  double nearest = reach;
  double value = kNone;
  const auto look = [&](const PlotPoint& point) {
    const double distance = std::abs(point.time - time);
    if (IsGap(point) || distance > nearest) return;
    nearest = distance;
    value = point.value;
  };
  if (next != points.end()) look(*next);
  for (auto before = next; before != points.begin() && std::isnan(value);) {
    look(*--before);
    if (time - before->time > reach) break;
  }
  if (next != points.begin()) look(*std::prev(next));
  return value;
}

void CReadingStore::WriteCsv(std::ostream& stream, const std::map<std::int16_t, std::string>& names,
                             const std::function<std::string(std::int16_t unit)>& unittext) const {
  stream << "time,channel,name,reading,unit\n";
  // In the order of the time over all series: each is in order by itself.
  std::map<SeriesId, std::size_t> places;
  for (const auto& [id, series] : series_) places[id] = 0;
  while (true) {
    SeriesId earliest;
    const PlotPoint* point = nullptr;
    for (auto& [id, place] : places) {
      const auto& points = series_.at(id).points;
      while (place < points.size() && IsGap(points[place])) ++place;
      if (place == points.size()) continue;
      if (point != nullptr && points[place].time >= point->time) continue;
      point = &points[place];
      earliest = id;
    }
    if (point == nullptr) return;
    ++places[earliest];
    const auto name = names.find(earliest.channel);
    stream << UtcText(point->time) << ',' << earliest.channel << ','
           << Quoted(name == names.end() ? std::string() : name->second) << ','
           << NumberText(point->value, series_.at(earliest).decimals) << ','
           << Quoted(unittext(earliest.unit)) << '\n';
  }
}

std::size_t CReadingStore::Bytes() const {
  std::size_t bytes = 0;
  for (const auto& [id, series] : series_) bytes += series.points.capacity() * sizeof(PlotPoint);
  return bytes;
}

}  // namespace vane::desktop
