#include "apps/thermoscribe/report_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "apps/snapshots/value_text.h"
#include "apps/thermoscribe/html_page.h"
#include "apps/thermoscribe/recording_options.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

// In units of the drawing, which is scaled to the page.
constexpr double kWidth = 720;
constexpr double kHeight = 220;
constexpr double kLeft = 74;
constexpr double kRight = 24;
constexpr double kTop = 10;
constexpr double kBottom = 34;

constexpr const char* kPlotStyle = R"(<style>
section { break-inside: avoid; margin-top: 2em; }
h2 { font-size: 12pt; margin: 0 0 .3em; border-bottom: 1px solid #333; }
svg { width: 100%; height: auto; display: block; margin: .6em 0; }
svg text { font: 9px sans-serif; fill: #333; }
.grid { stroke: #ddd; stroke-width: .7; }
.frame { stroke: #555; stroke-width: .8; fill: none; }
.range { fill: #9db8d2; }
.line { stroke: #123f6d; stroke-width: 1.1; fill: none; }
.dot { fill: #123f6d; }
dl { margin: .4em 0; }
table.events td, table.events th { text-align: left; }
body { max-width: 60em; }
</style>
)";

std::string Coordinate(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string PowerText(int power) {
  if (power >= 0 && power < 6) return "1" + std::string(static_cast<std::size_t>(power), '0');
  if (power >= -3 && power < 0) return ReportNumber(std::pow(10, power), -power);
  constexpr std::array kRaised = {"\u2070", "\u00B9", "\u00B2", "\u00B3", "\u2074",
                                  "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
  std::string text = power < 0 ? "10\u207B" : "10";
  for (const char digit : std::to_string(std::abs(power))) {
    text += kRaised.at(static_cast<std::size_t>(digit - '0'));
  }
  return text;
}

// A drawing of its own axes, linear ones or logarithmic ones.
class CPlot {
 public:
  struct Axis {
    double low;
    double high;
    bool islog = false;
    std::string title = {};
  };

  CPlot(Axis x, Axis y) : x_(std::move(x)), y_(std::move(y)) {
    svg_ = "<svg viewBox=\"0 0 " + Coordinate(kWidth) + " " + Coordinate(kHeight) +
           "\" role=\"img\" aria-label=\"" + Escaped(y_.title + " by " + x_.title) + "\">\n";
    for (const double tick : TicksOf(x_, 8)) {
      const std::string at = Coordinate(X(tick));
      svg_ += "<line class=\"grid\" x1=\"" + at + "\" x2=\"" + at + "\" y1=\"" + Coordinate(kTop) +
              "\" y2=\"" + Coordinate(kHeight - kBottom) + "\"/>\n" +
              Label(X(tick), kHeight - kBottom + 12, "middle", TickText(x_, tick));
    }
    for (const double tick : TicksOf(y_, 5)) {
      const std::string at = Coordinate(Y(tick));
      svg_ += "<line class=\"grid\" y1=\"" + at + "\" y2=\"" + at + "\" x1=\"" + Coordinate(kLeft) +
              "\" x2=\"" + Coordinate(kWidth - kRight) + "\"/>\n" +
              Label(kLeft - 5, Y(tick) + 3, "end", TickText(y_, tick));
    }
    svg_ += "<rect class=\"frame\" x=\"" + Coordinate(kLeft) + "\" y=\"" + Coordinate(kTop) +
            "\" width=\"" + Coordinate(kWidth - kLeft - kRight) + "\" height=\"" +
            Coordinate(kHeight - kTop - kBottom) + "\"/>\n" +
            Label((kLeft + kWidth - kRight) / 2, kHeight - 6, "middle", x_.title) +
            "<text transform=\"translate(11 " + Coordinate((kTop + kHeight - kBottom) / 2) +
            ") rotate(-90)\" text-anchor=\"middle\">" + Escaped(y_.title) + "</text>\n";
  }

  double X(double value) const { return kLeft + (kWidth - kLeft - kRight) * Share(x_, value); }
  double Y(double value) const {
    return kHeight - kBottom - (kHeight - kTop - kBottom) * Share(y_, value);
  }
  std::string Point(double x, double y) const { return Coordinate(X(x)) + "," + Coordinate(Y(y)); }

  void Add(const std::string& shape) { svg_ += shape; }
  std::string Text() const { return svg_ + "</svg>\n"; }

 private:
  static double Share(const Axis& axis, double value) {
    if (axis.islog) return std::log(value / axis.low) / std::log(axis.high / axis.low);
    return (value - axis.low) / (axis.high - axis.low);
  }

  static double StepOf(const Axis& axis, int most) {
    const double least = (axis.high - axis.low) / most;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double step : {1.0, 2.0, 5.0}) {
      if (step * power >= least) return step * power;
    }
    return 10 * power;
  }

  static std::vector<double> TicksOf(const Axis& axis, int most) {
    std::vector<double> ticks;
    if (axis.islog) {
      for (int power = static_cast<int>(std::ceil(std::log10(axis.low) - 1e-9));
           std::pow(10, power) <= axis.high * (1 + 1e-9); ++power) {
        ticks.push_back(std::pow(10, power));
      }
      return ticks;
    }
    const double step = StepOf(axis, most);
    const auto first = static_cast<std::int64_t>(std::ceil(axis.low / step - 1e-9));
    const auto last = static_cast<std::int64_t>(std::floor(axis.high / step + 1e-9));
    for (std::int64_t i = first; i <= last; ++i) ticks.push_back(static_cast<double>(i) * step);
    return ticks;
  }

  static std::string TickText(const Axis& axis, double tick) {
    if (axis.islog) return PowerText(static_cast<int>(std::lround(std::log10(tick))));
    const double step = StepOf(axis, 8);
    const int digits = std::clamp(static_cast<int>(std::ceil(-std::log10(step))) + 1, 0, 9);
    std::string text = ReportNumber(tick, digits);
    // The zeros that all of them end in are in nobody's way; those of one alone stay.
    if (text.find_first_of(".,") != text.npos) {
      while (text.back() == '0') text.pop_back();
      if (text.back() == '.' || text.back() == ',') text.pop_back();
    }
    return text;
  }

  static std::string Label(double x, double y, const char* anchor, const std::string& text) {
    return "<text x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" text-anchor=\"" + anchor +
           "\">" + Escaped(text) + "</text>\n";
  }

  const Axis x_;
  const Axis y_;
  std::string svg_;
};

// In which unit a time of so many seconds is shown, and how many seconds that has.
std::pair<const char*, double> TimeUnit(double seconds) {
  constexpr std::array kUnits = {std::pair{"s", 1.0}, std::pair{"min", 60.0},
                                 std::pair{"h", 3600.0}, std::pair{"d", 86400.0}};
  std::pair<const char*, double> best = kUnits.front();
  for (const auto& unit : kUnits) {
    if (seconds > 3 * unit.second) best = unit;
  }
  return best;
}

CPlot::Axis ValueAxis(double low, double high, const std::string& title) {
  const double room = high > low ? (high - low) * 0.06 : std::max(std::fabs(high) * 1e-6, 1e-6);
  return {low - room, high + room, false, title};
}

std::string ReadingsPlot(const recorder::SeriesReport& series, double seconds) {
  const auto [name, unit] = TimeUnit(seconds);
  const double end = seconds > 0 ? seconds / unit : 1;
  CPlot plot({0, end, false, std::string("time since the first reading / ") + name},
             ValueAxis(series.smallest.value, series.largest.value, "reading / " + series.unit));
  const double width = end / static_cast<double>(series.bins.size());
  std::string ranges;
  std::string line;
  const auto endline = [&] {
    if (!line.empty()) plot.Add("<polyline class=\"line\" points=\"" + line + "\"/>\n");
    line.clear();
  };
  // Readings that lie wider apart than a bin leave some empty: a line goes on over those, and is
  // broken where more is missing than is usual.
  const double usual = series.interval.value_or(0) / unit / width;
  std::int64_t empty = 0;
  for (std::size_t i = 0; i < series.bins.size(); ++i) {
    const recorder::PlotBin& bin = series.bins[i];
    if (bin.count == 0) {
      ++empty;
      continue;
    }
    if (static_cast<double>(empty) > 2 * usual + 1) endline();
    empty = 0;
    const double x = (static_cast<double>(i) + 0.5) * width;
    if (bin.largest > bin.smallest) {
      ranges += "<rect class=\"range\" x=\"" + Coordinate(plot.X(x - width / 2)) + "\" y=\"" +
                Coordinate(plot.Y(bin.largest)) + "\" width=\"" +
                Coordinate(plot.X(x + width / 2) - plot.X(x - width / 2) + 0.1) + "\" height=\"" +
                Coordinate(std::max(plot.Y(bin.smallest) - plot.Y(bin.largest), 0.5)) + "\"/>\n";
    }
    Append(line, " ", plot.Point(x, bin.sum / static_cast<double>(bin.count)));
  }
  plot.Add(ranges);
  endline();
  return plot.Text();
}

std::string AllanPlot(const recorder::SeriesReport& series) {
  double low = 0;
  double high = 0;
  for (const auto& point : series.allan) {
    if (point.deviation <= 0) continue;
    low = low == 0 ? point.deviation : std::min(low, point.deviation);
    high = std::max(high, point.deviation);
  }
  if (series.allan.size() < 2 || low == 0) return {};
  const auto down = [](double value) { return std::pow(10, std::floor(std::log10(value) - 1e-9)); };
  const auto up = [](double value) { return std::pow(10, std::ceil(std::log10(value) + 1e-9)); };
  CPlot plot(
      {down(series.allan.front().tau), up(series.allan.back().tau), true, "averaging time / s"},
      {down(low), up(high), true, "Allan deviation / " + series.unit});
  std::string line;
  for (const auto& point : series.allan) {
    if (point.deviation <= 0) continue;
    Append(line, " ", plot.Point(point.tau, point.deviation));
    plot.Add("<circle class=\"dot\" r=\"2.2\" cx=\"" + Coordinate(plot.X(point.tau)) + "\" cy=\"" +
             Coordinate(plot.Y(point.deviation)) + "\"/>\n");
  }
  plot.Add("<polyline class=\"line\" points=\"" + line + "\"/>\n");
  return plot.Text();
}

std::string Fact(const std::string& title, const std::string& text) {
  return "<dt>" + Escaped(title) + "</dt><dd>" + Escaped(text) + "</dd>\n";
}

std::string Section(const recorder::SeriesReport& series, double seconds) {
  std::string title = "Channel " + std::to_string(series.channel) + ", " + series.name;
  if (!series.serial.empty()) title += ", probe " + PrintableText(series.serial);
  const auto timed = [&](const recorder::TimedValue& value) {
    return ReportNumber(value.value, series.resolution) + " " + series.unit + ", " +
           recorder::TimeText(value.utc, true);
  };
  std::string text =
      "<section>\n<h2>" + Escaped(title) + "</h2>\n<dl>\n" +
      Fact("Readings", std::to_string(series.count)) +
      Fact("Mean", ReportNumber(series.mean, series.resolution + 2) + " " + series.unit);
  if (series.deviation) {
    text += Fact("Standard deviation", ReportFigure(*series.deviation) + " " + series.unit);
  }
  text += Fact("Smallest", timed(series.smallest)) + Fact("Largest", timed(series.largest));
  if (series.drift) {
    text += Fact("Drift per hour", ReportFigure(series.drift->value) + " " + series.unit +
                                       ", standard uncertainty " +
                                       ReportFigure(series.drift->uncertainty) + " " + series.unit);
  }
  text += Fact("Gaps", GapsText(series)) + "</dl>\n" + ReadingsPlot(series, seconds) +
          AllanPlot(series);
  if (!series.longest.empty()) {
    text +=
        "<table class=\"events\">\n<thead><tr><th>Longest gaps, from</th><th>to</th>"
        "<th>Readings missing</th></tr></thead>\n<tbody>\n";
    for (const auto& gap : series.longest) {
      text += "<tr><td>" + recorder::TimeText(gap.from, true) + "</td><td>" +
              recorder::TimeText(gap.to, true) + "</td><td>" + std::to_string(gap.missing) +
              "</td></tr>\n";
    }
    text += "</tbody>\n</table>\n";
  }
  return text + "</section>\n";
}

}  // namespace

std::string ReportNumber(double value, int digits) {
  char text[80];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return WithUsersSeparator(text);
}

std::string ReportFigure(double value) {
  char text[80];
  std::snprintf(text, sizeof text, "%.3g", value);
  return WithUsersSeparator(text);
}

std::string GapsText(const recorder::SeriesReport& series) {
  if (series.gaps == 0) return "none";
  return std::to_string(series.gaps) + ", " + std::to_string(series.missing) +
         (series.missing == 1 ? " reading" : " readings") + " missing";
}

std::string ReadingsText(const recorder::RecordingReport& report) {
  if (report.readings == 0) return "none";
  const auto [name, unit] = TimeUnit(report.seconds);
  return std::to_string(report.readings) + " in " + ReportFigure(report.seconds / unit) + " " +
         name + ", from " + recorder::TimeText(report.from, true) + " to " +
         recorder::TimeText(report.to, true);
}

std::string ReportPage(const recorder::RecordingReport& report) {
  std::string page = PageHead("Recording of " + report.about.head.identification);
  page += kPlotStyle;
  page += "<h1>Recording of " + Escaped(PrintableText(report.about.head.identification)) +
          "</h1>\n<dl>\n";
  for (const auto& [title, text] : RecordingFacts(report.about, true)) page += Fact(title, text);
  page += Fact("Readings", ReadingsText(report)) + "</dl>\n";
  for (const auto& series : report.series) page += Section(series, report.seconds);
  page +=
      "<section>\n<h2>Events</h2>\n<table class=\"events\">\n<thead><tr><th>Time</th>"
      "<th>Event</th><th></th></tr></thead>\n<tbody>\n";
  for (const auto& [event, behind] : report.events) {
    page += "<tr><td>" + recorder::TimeText(event.time.utc, true) + "</td><td>" +
            Escaped(event.kind) + "</td><td>" + Escaped(PrintableText(event.text)) + "</td></tr>\n";
  }
  page += "</tbody>\n</table>\n";
  if (report.moreevents > 0) {
    page += "<p>And " + std::to_string(report.moreevents) + " more.</p>\n";
  }
  return page +
         "</section>\n<footer>\n<p>Drift by least squares; its uncertainty supposes that the "
         "readings are independent of each other. Overlapping Allan deviation. Made by "
         "thermoscribe " THERMOSCRIBE_VERSION ".</p>\n</footer>\n" +
         kPageEnd;
}

}  // namespace vane::thermoscribe
