// thermoscribe report: what a recording comes to.

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/recording_options.h"
#include "apps/thermoscribe/report_page.h"
#include "recorder/recording_report.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kTitleColumns = 18;

struct ReportOptions {
  RecordingOptions recording;
  std::string html;
};

Value TimedMembers(const recorder::TimedValue& value) {
  return Members{{"reading", value.value}, {"time", recorder::TimeText(value.utc)}};
}

Members SeriesMembers(const recorder::SeriesReport& series) {
  List allan;
  for (const auto& point : series.allan) {
    allan.push_back(Members{
        {"tau", point.tau}, {"deviation", point.deviation}, {"differences", point.differences}});
  }
  List gaps;
  for (const auto& gap : series.longest) {
    gaps.push_back(Members{{"from", recorder::TimeText(gap.from)},
                           {"to", recorder::TimeText(gap.to)},
                           {"missing", gap.missing}});
  }
  const auto& drift = series.drift;
  return {{"channel", series.channel},
          {"name", series.name},
          {"probe", series.probe ? Value(*series.probe) : Value()},
          {"serial", series.serial.empty() ? Value() : Value(series.serial)},
          {"unit", series.unit},
          {"count", series.count},
          {"mean", series.mean},
          {"deviation", Known(series.deviation)},
          {"smallest", TimedMembers(series.smallest)},
          {"largest", TimedMembers(series.largest)},
          {"first", TimedMembers(series.first)},
          {"last", TimedMembers(series.last)},
          {"driftperhour", drift ? Value(drift->value) : Value()},
          {"driftuncertainty", drift ? Value(drift->uncertainty) : Value()},
          {"interval", Known(series.interval)},
          {"allan", std::move(allan)},
          {"gaps", series.gaps},
          {"missing", series.missing},
          {"longestgaps", std::move(gaps)}};
}

void PrintJson(CHost& host, const recorder::RecordingReport& report) {
  COutput& output = host.Output();
  output.Record("recording", RecordingMembers(report.about), {});
  List counts;
  for (const auto& [kind, count] : report.eventcounts) {
    counts.push_back(Members{{"event", kind}, {"count", count}});
  }
  const bool isempty = report.readings == 0;
  output.Record("report",
                {{"readings", report.readings},
                 {"from", isempty ? Value() : Value(recorder::TimeText(report.from))},
                 {"to", isempty ? Value() : Value(recorder::TimeText(report.to))},
                 {"seconds", report.seconds},
                 {"events", std::move(counts)}},
                {});
  for (const auto& series : report.series) output.Record("series", SeriesMembers(series), {});
  for (const auto& one : report.events) output.Record("event", EventMembers(one.event), {});
}

std::string SeriesText(const recorder::SeriesReport& series) {
  std::string title = "Channel " + std::to_string(series.channel) + ", " + series.name;
  if (!series.serial.empty()) title += ", probe " + PrintableText(series.serial);
  std::string text = title + ", " + series.unit;
  const auto line = [&](const std::string& name, const std::string& value) {
    AddLine(text, "  " + name, kTitleColumns, value);
  };
  const auto timed = [&](const recorder::TimedValue& value) {
    return ReportNumber(value.value, series.resolution) + "  " +
           recorder::TimeText(value.utc, true);
  };
  line("Readings", std::to_string(series.count));
  line("Mean", ReportNumber(series.mean, series.resolution + 2));
  if (series.deviation) line("Deviation", ReportFigure(*series.deviation));
  line("Smallest", timed(series.smallest));
  line("Largest", timed(series.largest));
  if (series.drift) {
    line("Drift per hour", ReportFigure(series.drift->value) + ", standard uncertainty " +
                               ReportFigure(series.drift->uncertainty));
  }
  if (series.interval) line("Interval", ReportFigure(*series.interval) + " s");
  line("Gaps", GapsText(series));
  if (!series.allan.empty()) {
    std::string points;
    for (const auto& point : series.allan) {
      Append(points, "; ", ReportFigure(point.tau) + " s " + ReportFigure(point.deviation));
    }
    line("Allan dev.", points);
  }
  return text;
}

void PrintText(CHost& host, const recorder::RecordingReport& report) {
  std::string text;
  for (const auto& [title, fact] : RecordingFacts(report.about, true)) {
    AddLine(text, title, kTitleColumns, fact);
  }
  AddLine(text, "Readings", kTitleColumns, ReadingsText(report));
  for (const auto& series : report.series) text += "\n\n" + SeriesText(series);
  text += "\n\nEvents";
  for (const auto& [event, behind] : report.events) {
    text += "\n  " + recorder::TimeText(event.time.utc, true) + "  " + Padded(event.kind, 11) +
            "  " + PrintableText(event.text);
  }
  if (report.moreevents > 0) {
    text += "\n  and " + std::to_string(report.moreevents) +
            " more, see \"thermoscribe export --events\"";
  }
  host.Output().Plain(text + "\n");
}

EExitCode RunReport(CHost& host, const ReportOptions& options, recorder::CRecordingReader& reader) {
  const recorder::RecordingReport report = MakeReport(reader, options.recording.choice);
  if (!options.html.empty()) {
    host.Output().File(options.html, ReportPage(report), 0644);
    return EExitCode::DONE;
  }
  if (host.Output().IsJson()) {
    PrintJson(host, report);
  } else {
    PrintText(host, report);
  }
  return EExitCode::DONE;
}

}  // namespace

Command ReportCommand() {
  const auto options = std::make_shared<ReportOptions>();
  std::vector<Option> all = RecordingChoiceOptions(options->recording);
  Option html = PathOption("--html", "FILE", options->html,
                           "write a page with plots for a browser or paper;\n"
                           "\"-\": standard output");
  html.excludes = {"--json"};
  all.push_back(std::move(html));
  return {
      .name = "report",
      .brief = "Tell what a recording comes to",
      .footer =
          R"(Tells for each channel how many readings there are, their mean and standard deviation, the
smallest and the largest, the drift per hour with its standard uncertainty (least squares,
which supposes independent readings), the overlapping Allan deviation at distances that
double, and the gaps; then the events. Times between readings are those of a clock that
nobody sets.

Examples:
  thermoscribe report bath.t312
  thermoscribe report bath.t312 --channels 3 --from 2026-03-01 --html bath.html)",
      .options = std::move(all),
      .body = [options](CHost& host) {
        return WithRecording(host, options->recording, [&](recorder::CRecordingReader& reader) {
          return RunReport(host, *options, reader);
        });
      }};
}

}  // namespace vane::thermoscribe
