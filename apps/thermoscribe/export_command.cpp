// thermoscribe export: the readings or events of a recording as text, CSV or JSON.

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "apps/snapshots/json_text.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/recording_options.h"
#include "recorder/export_rows.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

using recorder::ERowForm;

constexpr std::size_t kPiece = 65'536;
constexpr std::size_t kTitleColumns = 12;

struct ExportOptions {
  RecordingOptions recording;
  bool csv = false;
  bool local = false;
  bool events = false;
  bool nohead = false;
};

class CExport {
 public:
  CExport(CHost& host, const ExportOptions& options, recorder::CRecordingReader& reader)
      : host_(host), options_(options), reader_(reader) {
    if (options.csv) form_ = ERowForm::CSV;
    if (host.Output().IsJson()) form_ = ERowForm::JSON;
  }

  EExitCode Print() {
    if (!options_.nohead) PutHead();
    if (options_.events) {
      PutEvents();
    } else {
      PutReadings();
    }
    host_.Output().Plain(rows_);
    return EExitCode::DONE;
  }

 private:
  void PutHead() {
    if (form_ == ERowForm::JSON) {
      rows_ += JsonLine("recording", RecordingMembers(reader_.About())) + "\n";
      return;
    }
    for (const auto& [title, text] : RecordingFacts(reader_.About(), options_.local)) {
      rows_ += "# " + Padded(title + ":", kTitleColumns) + " " + text +
               (form_ == ERowForm::CSV ? "\r\n" : "\n");
    }
  }

  // A piece at a time, whatever the file holds.
  void Send() {
    if (rows_.size() < kPiece) return;
    host_.Output().Plain(rows_);
    rows_.clear();
  }

  void PutReadings() {
    std::map<std::int16_t, std::string> names;
    for (const auto& channel : reader_.About().head.channels) {
      names[channel.channel] = channel.name;
    }
    if (form_ == ERowForm::CSV) rows_ += recorder::ExportColumns();
    reader_.ForEachReading(
        options_.recording.choice, [&](const recorder::Reading& reading, std::int64_t) {
          recorder::AddExportRow(rows_, form_, reading, names[reading.channel], options_.local);
          Send();
        });
  }

  void PutEvents() {
    if (form_ == ERowForm::CSV) rows_ += "time,event,channel,number,text,behind\r\n";
    reader_.ForEachEvent(
        options_.recording.choice, [&](const recorder::Event& event, std::int64_t behind) {
          const std::string time = recorder::TimeText(event.time.utc, options_.local);
          if (form_ == ERowForm::JSON) {
            Members members = EventMembers(event);
            members.front().value = time;
            rows_ += JsonLine("event", members) + "\n";
          } else if (form_ == ERowForm::CSV) {
            rows_ += CsvLine({time, event.kind, event.channel ? std::to_string(*event.channel) : "",
                              event.number ? JsonText(*event.number) : "", event.text,
                              std::to_string(behind)});
          } else {
            rows_ += time + "  " + Padded(event.kind, kTitleColumns) + "  " + event.text + "\n";
          }
          Send();
        });
  }

  CHost& host_;
  const ExportOptions& options_;
  recorder::CRecordingReader& reader_;
  ERowForm form_ = ERowForm::TEXT;
  std::string rows_;
};

}  // namespace

Command ExportCommand() {
  const auto options = std::make_shared<ExportOptions>();
  std::vector<Option> all = RecordingChoiceOptions(options->recording);
  Option csv = Flag("--csv", options->csv, "print comma-separated values with a line of names");
  csv.excludes = {"--json"};
  all.push_back(std::move(csv));
  all.push_back(Flag("--local-time", options->local,
                     "times of the user's zone, with their distance from\n"
                     "UTC, in place of UTC"));
  all.push_back(Flag("--events", options->events, "the events in place of the readings"));
  all.push_back(Flag("--no-head", options->nohead, "leave out what was measured with what"));
  return {
      .name = "export",
      .brief = "Print the readings of a recording",
      .footer =
          R"(Prints what FILE holds, of any length, also while it is recorded: lines for people, CSV, or
with --json one object per line. In front stands what was measured with what, as lines that
begin with "#" or as the object "recording". All settings that it was measured with are in
the file itself: sqlite3 FILE 'SELECT settings FROM recording'.

Examples:
  thermoscribe export bath.t312 --csv > bath.csv
  thermoscribe export bath.t312 --channels 3 --from 2026-03-01T08:00 --local-time
  thermoscribe export bath.t312 --events --json)",
      .options = std::move(all),
      .body = [options](CHost& host) {
        return WithRecording(host, options->recording, [&](recorder::CRecordingReader& reader) {
          return CExport(host, *options, reader).Print();
        });
      }};
}

}  // namespace vane::thermoscribe
