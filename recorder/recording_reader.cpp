#include "recorder/recording_reader.h"

#include <algorithm>
#include <utility>

#include "recorder/schema.h"
#include "recorder/store.h"

namespace vane::recorder {
namespace {

// The utc of a row within the choice.
std::string Within(const RecordingChoice& choice) {
  std::string sql = " WHERE 1";
  if (choice.from) sql += " AND utc >= " + std::to_string(*choice.from);
  if (choice.to) sql += " AND utc < " + std::to_string(*choice.to);
  if (choice.channels.empty()) return sql;
  std::string list;
  for (const std::int16_t channel : choice.channels) {
    list += (list.empty() ? "" : ",") + std::to_string(channel);
  }
  return sql + " AND (channel IS NULL OR channel IN (" + list + "))";
}

}  // namespace

CRecordingReader::CRecordingReader(const std::filesystem::path& path)
    : database_(path, CDatabase::EAccess::READ), transaction_(database_, false) {
  RequireReadable(database_);
  CStatement recording(database_, "SELECT uuid, started, ended FROM recording");
  if (!recording.Next()) throw CStoreError(path.string() + ": the file holds no recording yet.");
  about_.uuid = recording.Text(0);
  about_.started = recording.Whole(1);
  if (!recording.IsNull(2)) about_.ended = recording.Whole(2);
  about_.head = ReadHead(database_);
  CStatement sessions(database_,
                      "SELECT session, started, program, host, port, boot FROM session "
                      "ORDER BY session");
  while (sessions.Next()) {
    about_.sessions.push_back(
        {sessions.Whole(0),
         sessions.Whole(1),
         {sessions.Text(2), sessions.Text(3), sessions.Text(4), sessions.Text(5)}});
  }
}

void CRecordingReader::ForEachReading(
    const RecordingChoice& choice, const std::function<void(const Reading&, std::int64_t)>& take) {
  std::map<std::int64_t, std::string> units;
  CStatement allunits(database_, "SELECT unit, name FROM unit");
  while (allunits.Next()) units[allunits.Whole(0)] = allunits.Text(1);
  CStatement rows(database_,
                  "SELECT sequence, utc, monotonic, session, sample, channel, text, value, unit, "
                  "resolution FROM reading" +
                      Within(choice) + " ORDER BY sequence");
  Reading reading;
  while (rows.Next()) {
    reading.sequence = rows.Whole(0);
    reading.time.utc = rows.Whole(1);
    reading.time.monotonic = rows.Whole(2);
    reading.sample = rows.Whole(4);
    reading.channel = static_cast<std::int16_t>(rows.Whole(5));
    reading.text = rows.Text(6);
    reading.value = rows.Real(7);
    reading.unit = units[rows.Whole(8)];
    reading.resolution = static_cast<std::int16_t>(rows.Whole(9));
    take(reading, rows.Whole(3));
  }
}

void CRecordingReader::ForEachEvent(const RecordingChoice& choice,
                                    const std::function<void(const Event&, std::int64_t)>& take) {
  CStatement rows(database_,
                  "SELECT utc, monotonic, kind, channel, number, text, behind FROM event" +
                      Within(choice) + " ORDER BY event");
  while (rows.Next()) {
    Event event{.time = {.utc = rows.Whole(0), .monotonic = rows.Whole(1)},
                .kind = rows.Text(2),
                .text = rows.Text(5)};
    if (!rows.IsNull(3)) event.channel = static_cast<std::int16_t>(rows.Whole(3));
    if (!rows.IsNull(4)) event.number = rows.Real(4);
    take(event, rows.Whole(6));
  }
}

CTimeline::CTimeline(const AboutRecording& about) {
  for (const AboutRecording::Session& session : about.sessions) {
    boots_[session.session] = session.head.boot;
  }
}

std::int64_t CTimeline::At(const Reading& reading, std::int64_t session) {
  const std::string& boot = boots_[session];
  if (last_) {
    const std::int64_t passed = boot == boot_ ? reading.time.monotonic - last_->time.monotonic
                                              : reading.time.utc - last_->time.utc;
    time_ += std::max<std::int64_t>(passed, 0);
  }
  last_ = reading;
  boot_ = boot;
  return time_;
}

}  // namespace vane::recorder
