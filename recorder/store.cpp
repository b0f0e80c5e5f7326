#include "recorder/store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <utility>

#include "recorder/schema.h"

namespace vane::recorder {
namespace {

constexpr mode_t kPermissions = 0644;

// A random one, as RFC 4122 has it (version 4).
std::string NewUuid() {
  std::random_device chance;
  std::string text;
  for (int group = 0; group < 8; ++group) {
    unsigned bits = chance() & 0xFFFFU;
    if (group == 3) bits = (bits & 0x0FFFU) | 0x4000U;
    if (group == 4) bits = (bits & 0x3FFFU) | 0x8000U;
    char four[8];
    std::snprintf(four, sizeof four, "%04x", bits);
    text += four;
    if (group >= 1 && group <= 4) text += '-';
  }
  return text;
}

}  // namespace

CStore::CLock::CLock(const std::filesystem::path& path) {
  const auto fail = [&path] {
    const int cause = errno;
    const std::string text = path.string() + ": ";
    if (cause == ENOSPC || cause == EDQUOT) throw CDiskFull(text + "there is no room on the disk.");
    if (cause == EWOULDBLOCK) throw CStoreError(text + "another recorder writes this file.");
    throw CStoreError(text + std::strerror(cause) + ".");
  };
  fd_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kPermissions);
  if (fd_ < 0) fail();
  if (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
    const int cause = errno;
    close(fd_);
    errno = cause;
    fail();
  }
}

CStore::CLock::~CLock() { close(fd_); }

CStore::CStore(const std::filesystem::path& path)
    : lock_(path), database_(path, CDatabase::EAccess::WRITE) {
  if (!IsEmpty(database_)) RequireRecording(database_);
  // A write is one piece of the log and one wait for the disk, and readers disturb nobody.
  database_.Run("PRAGMA journal_mode = WAL");
  database_.Run("PRAGMA synchronous = FULL");
  database_.Run("PRAGMA journal_size_limit = 16777216");
  if (IsEmpty(database_)) return;
  CTransaction transaction(database_);
  BringUpToDate(database_);
  transaction.Commit();
  Load();
}

CStore::~CStore() = default;

double SecondsAway(const LastSign& last, const CClock& clock) {
  const Moment now = clock.Now();
  const std::int64_t away =
      last.boot == clock.Boot() ? now.monotonic - last.time.monotonic : now.utc - last.time.utc;
  return static_cast<double>(away) / 1000;
}

std::string ContinuedText(double secondsaway) {
  char text[120];
  std::snprintf(text, sizeof text, "The recording goes on; the latest sign of it is %.1f s old.",
                secondsaway);
  return text;
}

RecordingHead ReadHead(CDatabase& database) {
  RecordingHead head;
  CStatement recording(database, "SELECT identification, settings FROM recording");
  if (recording.Next()) {
    head.identification = recording.Text(0);
    head.settings = recording.Text(1);
  }
  CStatement probes(database, "SELECT probe, serial FROM probe");
  while (probes.Next()) head.probes[static_cast<std::int16_t>(probes.Whole(0))] = probes.Text(1);
  CStatement channels(database, "SELECT channel, name, probe FROM channel ORDER BY channel");
  while (channels.Next()) {
    std::optional<std::int16_t> probe;
    if (!channels.IsNull(2)) probe = static_cast<std::int16_t>(channels.Whole(2));
    head.channels.push_back(
        {static_cast<std::int16_t>(channels.Whole(0)), channels.Text(1), probe});
  }
  return head;
}

void CStore::Load() {
  CStatement recording(database_, "SELECT uuid FROM recording");
  if (!recording.Next()) return;
  isnew_ = false;
  uuid_ = recording.Text(0);
  head_ = ReadHead(database_);
  CStatement watched(database_, "SELECT name, value FROM watched");
  while (watched.Next()) watched_[watched.Text(0)] = watched.Text(1);
  CStatement units(database_, "SELECT unit, name FROM unit");
  while (units.Next()) units_[units.Text(1)] = units.Whole(0);

  CStatement sessions(database_,
                      "SELECT session, started, boot FROM session ORDER BY session DESC LIMIT 1");
  if (sessions.Next()) {
    session_ = sessions.Whole(0);
    last_.time.utc = sessions.Whole(1);
    last_.boot = sessions.Text(2);
  }
  CStatement reading(database_,
                     "SELECT sequence, sample, utc, monotonic, session FROM reading "
                     "ORDER BY sequence DESC LIMIT 1");
  if (reading.Next()) {
    last_.sequence = reading.Whole(0);
    last_.sample = reading.Whole(1);
    if (reading.Whole(4) == session_) {
      last_.time.utc = reading.Whole(2);
      last_.time.monotonic = reading.Whole(3);
    }
  }
  CStatement event(database_,
                   "SELECT utc, monotonic, session FROM event ORDER BY event DESC LIMIT 1");
  if (event.Next() && event.Whole(2) == session_ && event.Whole(1) > last_.time.monotonic) {
    last_.time.utc = event.Whole(0);
    last_.time.monotonic = event.Whole(1);
  }
}

void CStore::Begin(const RecordingHead& head, const SessionHead& session, const Moment& now) {
  CTransaction transaction(database_);
  BringUpToDate(database_);
  const std::string uuid = NewUuid();
  CStatement(database_, "INSERT INTO recording VALUES (1, ?, ?, NULL, ?, ?)")
      .Bind(1, uuid)
      .Bind(2, now.utc)
      .Bind(3, head.identification)
      .Bind(4, head.settings)
      .Run();
  for (const auto& [probe, serial] : head.probes) {
    CStatement(database_, "INSERT INTO probe VALUES (?, ?)")
        .Bind(1, std::int64_t{probe})
        .Bind(2, serial)
        .Run();
  }
  for (const RecordingHead::Channel& channel : head.channels) {
    CStatement insert(database_, "INSERT INTO channel VALUES (?, ?, ?)");
    insert.Bind(1, std::int64_t{channel.channel}).Bind(2, channel.name);
    if (channel.probe) insert.Bind(3, std::int64_t{*channel.probe});
    insert.Run();
  }
  AddSession(session, now);
  transaction.Commit();
  Load();
}

void CStore::Continue(const SessionHead& session, const Moment& now) {
  CTransaction transaction(database_);
  database_.Run("UPDATE recording SET ended = NULL");
  AddSession(session, now);
  transaction.Commit();
  session_ = database_.Number("SELECT max(session) FROM session");
}

void CStore::AddSession(const SessionHead& session, const Moment& now) {
  CStatement(database_,
             "INSERT INTO session (started, boot, program, host, port) VALUES (?, ?, ?, ?, ?)")
      .Bind(1, now.utc)
      .Bind(2, session.boot)
      .Bind(3, session.program)
      .Bind(4, session.host)
      .Bind(5, session.port)
      .Run();
}

void CStore::Append(std::vector<Reading>& readings, const std::vector<Event>& events,
                    const std::map<std::string, std::string>& watched) {
  if (readings.empty() && events.empty() && watched.empty()) return;
  const auto units = units_;
  const LastSign last = last_;
  try {
    CTransaction transaction(database_);
    Write(readings, events);
    for (const auto& [name, value] : watched) {
      CStatement(database_, "INSERT OR REPLACE INTO watched VALUES (?, ?)")
          .Bind(1, name)
          .Bind(2, value)
          .Run();
    }
    transaction.Commit();
  } catch (...) {
    units_ = units;
    last_ = last;
    throw;
  }
  for (const auto& [name, value] : watched) watched_[name] = value;
}

void CStore::Write(std::vector<Reading>& readings, const std::vector<Event>& events) {
  if (!insertevent_) {
    insertevent_.emplace(
        database_,
        "INSERT INTO event (behind, utc, monotonic, session, kind, channel, number, text) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    insertreading_.emplace(database_, "INSERT INTO reading VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  }
  auto event = events.begin();
  for (std::size_t i = 0; i < readings.size(); ++i) {
    for (; event != events.end() && event->place <= i; ++event) WriteEvent(*event);
    WriteReading(readings[i]);
  }
  for (; event != events.end(); ++event) WriteEvent(*event);
}

void CStore::WriteEvent(const Event& event) {
  insertevent_->Bind(1, last_.sequence)
      .Bind(2, event.time.utc)
      .Bind(3, event.time.monotonic)
      .Bind(4, session_)
      .Bind(5, event.kind)
      .BindNull(6)
      .Bind(7, event.number)
      .Bind(8, event.text);
  if (event.channel) insertevent_->Bind(6, std::int64_t{*event.channel});
  insertevent_->Run();
}

void CStore::WriteReading(Reading& reading) {
  reading.sequence = ++last_.sequence;
  last_.sample = std::max(last_.sample, reading.sample);
  insertreading_->Bind(1, reading.sequence)
      .Bind(2, reading.time.utc)
      .Bind(3, reading.time.monotonic)
      .Bind(4, session_)
      .Bind(5, reading.sample)
      .Bind(6, std::int64_t{reading.channel})
      .Bind(7, reading.text)
      .Bind(8, reading.value)
      .Bind(9, UnitNumber(reading.unit))
      .Bind(10, std::int64_t{reading.resolution})
      .Run();
}

std::int64_t CStore::UnitNumber(const std::string& name) {
  if (const auto found = units_.find(name); found != units_.end()) return found->second;
  CStatement(database_, "INSERT INTO unit (name) VALUES (?)").Bind(1, name).Run();
  const std::int64_t number = database_.Number("SELECT max(unit) FROM unit");
  units_[name] = number;
  return number;
}

void CStore::End(const Event& event) {
  CTransaction transaction(database_);
  std::vector<Reading> none;
  Write(none, {event});
  CStatement(database_, "UPDATE recording SET ended = ?").Bind(1, event.time.utc).Run();
  transaction.Commit();
}

}  // namespace vane::recorder
