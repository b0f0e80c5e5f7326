#include "recorder/schema.h"

#include <array>
#include <string>

namespace vane::recorder {
namespace {

constexpr std::int64_t kApplication = 0x54'33'31'32;  // "T312"

// What leads from each version to the next, from 0 on: a file is made by the same steps by which
// an older one is brought up.
constexpr std::array kSteps = {R"(
CREATE TABLE recording (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  uuid TEXT NOT NULL,
  started INTEGER NOT NULL,
  ended INTEGER,
  identification TEXT NOT NULL,
  settings TEXT NOT NULL);
CREATE TABLE probe (
  probe INTEGER PRIMARY KEY,
  serial TEXT NOT NULL);
CREATE TABLE channel (
  channel INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  probe INTEGER REFERENCES probe);
CREATE TABLE session (
  session INTEGER PRIMARY KEY,
  started INTEGER NOT NULL,
  boot TEXT NOT NULL,
  program TEXT NOT NULL,
  host TEXT NOT NULL,
  port TEXT NOT NULL);
CREATE TABLE unit (
  unit INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE);
CREATE TABLE reading (
  sequence INTEGER PRIMARY KEY,
  utc INTEGER NOT NULL,
  monotonic INTEGER NOT NULL,
  session INTEGER NOT NULL REFERENCES session,
  sample INTEGER NOT NULL,
  channel INTEGER NOT NULL,
  text TEXT NOT NULL,
  value REAL NOT NULL,
  unit INTEGER NOT NULL REFERENCES unit,
  resolution INTEGER NOT NULL);
CREATE TABLE event (
  event INTEGER PRIMARY KEY,
  behind INTEGER NOT NULL,
  utc INTEGER NOT NULL,
  monotonic INTEGER NOT NULL,
  session INTEGER NOT NULL REFERENCES session,
  kind TEXT NOT NULL,
  channel INTEGER,
  number REAL,
  text TEXT NOT NULL);
CREATE TABLE watched (
  name TEXT PRIMARY KEY,
  value TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE reader (
  name TEXT PRIMARY KEY,
  reading INTEGER NOT NULL DEFAULT 0,
  event INTEGER NOT NULL DEFAULT 0) WITHOUT ROWID;
CREATE VIEW readings AS
  SELECT sequence, strftime('%Y-%m-%dT%H:%M:%fZ', utc / 1000.0, 'unixepoch') AS time, utc,
         monotonic, session, sample, reading.channel, channel.name AS name, text, value,
         unit.name AS unit, resolution
  FROM reading JOIN unit USING (unit) LEFT JOIN channel ON channel.channel = reading.channel;
CREATE VIEW events AS
  SELECT event, behind, strftime('%Y-%m-%dT%H:%M:%fZ', utc / 1000.0, 'unixepoch') AS time, utc,
         kind, channel, number, text
  FROM event;
)"};
static_assert(kSteps.size() == kSchemaVersion);

std::int64_t Version(CDatabase& database) { return database.Number("PRAGMA user_version"); }

}  // namespace

bool IsEmpty(CDatabase& database) {
  return database.Number("SELECT count(*) FROM sqlite_schema") == 0 &&
         database.Number("PRAGMA application_id") == 0;
}

void RequireRecording(CDatabase& database) {
  if (database.Number("PRAGMA application_id") != kApplication) {
    throw CStoreError("The file is no recording.");
  }
  if (const std::int64_t version = Version(database); version > kSchemaVersion) {
    throw CStoreError("The recording is of version " + std::to_string(version) +
                      ". This program knows versions up to " + std::to_string(kSchemaVersion) +
                      "; a newer one is needed.");
  }
}

void BringUpToDate(CDatabase& database) {
  if (IsEmpty(database)) {
    database.Run("PRAGMA application_id = " + std::to_string(kApplication));
  } else {
    RequireRecording(database);
  }
  for (std::int64_t version = Version(database); version < kSchemaVersion; ++version) {
    database.Run(kSteps[static_cast<std::size_t>(version)]);
  }
  if (Version(database) != kSchemaVersion) {
    database.Run("PRAGMA user_version = " + std::to_string(kSchemaVersion));
  }
}

void RequireReadable(CDatabase& database) {
  if (IsEmpty(database)) throw CStoreError("The file holds no recording yet.");
  RequireRecording(database);
  if (Version(database) < kSchemaVersion) {
    throw CStoreError("The recording is of the older version " + std::to_string(Version(database)) +
                      ". \"record\" brings it up to date when it goes on.");
  }
}

}  // namespace vane::recorder
