// The reading side of a recording's file: what was measured with what, and the readings and events
// one after another, of any number. It sees the file as it was when it was opened, also while a
// recorder goes on with it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "recorder/database.h"
#include "recorder/record_types.h"

namespace vane::recorder {

struct AboutRecording {
  struct Session {
    std::int64_t session;
    std::int64_t started;  ///< utc
    SessionHead head;
  };

  std::string uuid;
  std::int64_t started = 0;           ///< utc
  std::optional<std::int64_t> ended;  ///< utc; nothing while it goes on, or when nobody ended it
  RecordingHead head;
  std::vector<Session> sessions;
};

/// Which readings and events are meant.
struct RecordingChoice {
  std::optional<std::int64_t> from = {};  ///< utc, the first moment
  std::optional<std::int64_t> to = {};    ///< utc, the first moment that isn't
  std::set<std::int16_t> channels = {};   ///< empty: all
};

class CRecordingReader {
 public:
  /// Raises `CStoreError` for what is no recording, or a newer one.
  explicit CRecordingReader(const std::filesystem::path& path);

  const AboutRecording& About() const { return about_; }

  /// In their order; `session` is that of the reading.
  void ForEachReading(
      const RecordingChoice& choice,
      const std::function<void(const Reading& reading, std::int64_t session)>& take);

  /// In their order; events of no channel are of all. `behind` is the sequence number of the
  /// reading before it.
  void ForEachEvent(const RecordingChoice& choice,
                    const std::function<void(const Event& event, std::int64_t behind)>& take);

 private:
  CDatabase database_;
  CTransaction transaction_;
  AboutRecording about_;
};

/// Puts the readings of all sessions on one clock that nobody sets: that of the machine while it
/// runs, and the wall clock between two starts of it.
class CTimeline {
 public:
  explicit CTimeline(const AboutRecording& about);

  /// Milliseconds since the first reading that it was asked for. Asked in the order of the
  /// readings.
  std::int64_t At(const Reading& reading, std::int64_t session);

 private:
  std::map<std::int64_t, std::string> boots_;
  std::optional<Reading> last_;
  std::string boot_;
  std::int64_t time_ = 0;
};

}  // namespace vane::recorder
