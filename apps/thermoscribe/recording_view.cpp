#include "apps/thermoscribe/recording_view.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "apps/thermoscribe/alarm_command.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/recording_options.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr double kMsPerMinute = 60'000;
constexpr std::size_t kNameColumns = 10;  // "Scanner 10"
constexpr std::size_t kUnitColumns = 5;   // "Ratio"
// 79 columns: what a terminal of the usual width holds.
constexpr const char* kHeadLine =
    " Ch  Name             Reading  Unit           Mean  Deviation     Age  A minute";

std::string Fixed(double value, int digits) {
  char text[80];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return WithUsersSeparator(text);
}

std::string RightBound(const std::string& text, std::size_t columns) {
  const std::size_t width = Columns(text);
  return std::string(columns - std::min(columns, width), ' ') + text;
}

std::string AgeText(std::int64_t ms) {
  const std::int64_t seconds = ms / 1000;
  if (seconds < 120) return std::to_string(seconds) + " s";
  if (seconds < 7200) return std::to_string(seconds / 60) + " min";
  return std::to_string(seconds / 3600) + " h";
}

// The last column stays free: a character there may move the cursor to the next line.
std::size_t UsableColumns() {
  winsize size{};
  const bool isknown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return isknown ? size.ws_col - 1U : 79U;
}

}  // namespace

void CRunningFigures::Add(const recorder::Reading& reading) {
  if (count_ > 0 && reading.unit != last_.unit) *this = {};
  if (count_ == 0) first_ = reading.time.monotonic;
  last_ = reading;
  ++count_;
  const double off = reading.value - mean_;
  mean_ += off / static_cast<double>(count_);
  squares_ += off * (reading.value - mean_);
}

double CRunningFigures::Deviation() const {
  return count_ < 2 ? 0 : std::sqrt(squares_ / static_cast<double>(count_ - 1));
}

std::optional<double> CRunningFigures::Rate() const {
  const std::int64_t passed = last_.time.monotonic - first_;
  if (passed <= 0) return std::nullopt;
  return static_cast<double>(count_ - 1) * kMsPerMinute / static_cast<double>(passed);
}

CRecordingView::CRecordingView(CHost& host, const recorder::CClock& clock,
                               std::vector<recorder::RecordingHead::Channel> channels,
                               std::string title, bool hasfile)
    : host_(host),
      clock_(clock),
      channels_(std::move(channels)),
      title_(std::move(title)),
      hasfile_(hasfile),
      istable_(!host.Output().IsJson() && !host.IsQuiet() && isatty(STDOUT_FILENO) != 0) {}

std::string CRecordingView::NameOf(std::int16_t channel) const {
  const auto found =
      std::ranges::find(channels_, channel, &recorder::RecordingHead::Channel::channel);
  return found == channels_.end() ? std::string() : found->name;
}

// What can't be shown is in the file all the same, and a recording goes on without its terminal.
void CRecordingView::Put(const std::function<void()>& output) {
  if (isgone_) return;
  try {
    output();
  } catch (const std::runtime_error&) {
    isgone_ = true;
  }
}

void CRecordingView::Show(const std::vector<recorder::Reading>& readings) {
  for (const recorder::Reading& reading : readings) {
    if (istable_) {
      figures_[reading.channel].Add(reading);
      continue;
    }
    if (host_.IsQuiet()) continue;
    const Value name = NameOf(reading.channel);
    const Members members = {{"sequence", hasfile_ ? Value(reading.sequence) : Value()},
                             {"time", recorder::TimeText(reading.time.utc)},
                             {"channel", reading.channel},
                             {"name", name},
                             {"text", reading.text},
                             {"reading", reading.value},
                             {"unit", reading.unit},
                             {"sample", reading.sample}};
    const std::string line = recorder::TimeText(reading.time.utc, true) + "  " +
                             RightBound(std::to_string(reading.channel), 2) + "  " +
                             Padded(TextOf(name), kNameColumns) + "  " +
                             Padded(reading.unit, kUnitColumns) + "  " +
                             WithUsersSeparator(PrintableText(reading.text));
    Put([&] { host_.Output().Record("recordedreading", members, line); });
  }
}

void CRecordingView::Show(const recorder::Event& event) {
  const std::string line = recorder::TimeText(event.time.utc, true) + "  " + event.text;
  if (istable_) {
    lastevent_ = line;
  } else if (host_.Output().IsJson()) {
    Put([&] { host_.Output().Record("event", EventMembers(event), {}); });
  } else if (ConcernsPeople(event.kind)) {
    host_.Say(line);
  } else {
    host_.Note(line);
  }
}

std::vector<std::string> CRecordingView::TableLines(const std::string& state) const {
  std::vector<std::string> lines = {title_, "", kHeadLine};
  const std::int64_t now = clock_.Now().monotonic;
  for (const auto& [channel, name, probe] : channels_) {
    std::string line = RightBound(std::to_string(channel), 3) + "  " + Padded(name, kNameColumns);
    if (const auto found = figures_.find(channel); found != figures_.end()) {
      const CRunningFigures& figures = found->second;
      const recorder::Reading& last = figures.Last();
      // A mean has a digit more than its readings.
      const int digits = last.resolution + 1;
      line += "  " + RightBound(WithUsersSeparator(PrintableText(last.text)), 12) + "  " +
              Padded(last.unit, kUnitColumns) + "  " +
              RightBound(Fixed(figures.Mean(), digits), 12) + "  " +
              RightBound(figures.Count() < 2 ? "-" : Fixed(figures.Deviation(), digits), 9) + "  " +
              RightBound(AgeText(now - last.time.monotonic), 6) + "  " +
              RightBound(figures.Rate() ? Fixed(*figures.Rate(), 1) : "-", 8);
    }
    lines.push_back(line);
  }
  lines.insert(lines.end(), {"", state, lastevent_});
  return lines;
}

void CRecordingView::Refresh(const std::string& state) {
  if (!istable_) return;
  const std::size_t columns = UsableColumns();
  std::string text;
  // Up to the first line of the table that stands there; each line is then written over.
  if (lines_ > 0) text = "\x1b[" + std::to_string(lines_) + "F";
  const std::vector<std::string> lines = TableLines(state);
  for (const std::string& line : lines) {
    std::size_t end = 0;
    std::size_t left = columns;
    while (end < line.size()) {
      const bool isstart = (static_cast<unsigned char>(line[end]) & 0xC0) != 0x80;
      if (isstart && left-- == 0) break;
      ++end;
    }
    text += line.substr(0, end) + "\x1b[K\n";
  }
  lines_ = lines.size();
  Put([&] { host_.Output().Plain(text); });
}

}  // namespace vane::thermoscribe
