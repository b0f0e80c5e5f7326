// The writing side of a recording's file.
//
// One recorder has a file at a time; readers may have it open meanwhile. What `Append` was given is
// on the disk when it returns, whatever happens to the program, the machine or its power then. What
// can't be written raises `CDiskFull` where there is no room, else `CStoreError`; then nothing of
// it is in the file, and the same call may be tried again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "recorder/database.h"
#include "recorder/record_types.h"

namespace vane::recorder {

struct LastSign {
  std::int64_t sequence = 0;
  std::int64_t sample = 0;
  Moment time = {};
  std::string boot = {};
};

/// How old the latest sign of life of a recording is, in seconds, by the machine's clock since its
/// start, and across one by the wall clock.
double SecondsAway(const LastSign& last, const CClock& clock);

/// What the event of a recording that goes on says of it.
std::string ContinuedText(double secondsaway);

/// Of the recording in `database`, which has one.
RecordingHead ReadHead(CDatabase& database);

class CStore {
 public:
  /// Opens the recording at `path`, or a file that there was none of yet. Raises `CStoreError` for
  /// what is no recording, a newer one, and one that another recorder has.
  explicit CStore(const std::filesystem::path& path);
  ~CStore();
  CStore(const CStore&) = delete;
  CStore& operator=(const CStore&) = delete;

  /// True until `Begin`: there is nothing to go on with.
  bool IsNew() const { return isnew_; }

  /// Makes the recording and its first session.
  void Begin(const RecordingHead& head, const SessionHead& session, const Moment& now);
  /// Another session of a recording that is there. One that was ended goes on.
  void Continue(const SessionHead& session, const Moment& now);

  /// Of the recording that is there.
  const RecordingHead& Head() const { return head_; }
  const std::string& Uuid() const { return uuid_; }

  /// The latest sign of life in the file, of any session.
  const LastSign& Latest() const { return last_; }

  /// What the readout has answered when it was looked at for changes, by name.
  const std::map<std::string, std::string>& Watched() const { return watched_; }

  /// Readings, which get their sequence numbers, events, each at its place among them, and what is
  /// new of `Watched`, in one piece: all or nothing.
  void Append(std::vector<Reading>& readings, const std::vector<Event>& events,
              const std::map<std::string, std::string>& watched = {});

  /// The recording is over; an event says so.
  void End(const Event& event);

 private:
  class CLock {
   public:
    explicit CLock(const std::filesystem::path& path);
    ~CLock();
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

   private:
    int fd_ = -1;
  };

  void Load();
  void AddSession(const SessionHead& session, const Moment& now);
  std::int64_t UnitNumber(const std::string& name);
  void Write(std::vector<Reading>& readings, const std::vector<Event>& events);
  void WriteEvent(const Event& event);
  void WriteReading(Reading& reading);

  // Before the database and gone behind it: closing any descriptor of the file takes the database's
  // own locks away.
  CLock lock_;
  CDatabase database_;
  bool isnew_ = true;
  RecordingHead head_;
  std::string uuid_;
  LastSign last_;
  std::map<std::string, std::string> watched_;
  std::int64_t session_ = 0;
  std::map<std::string, std::int64_t> units_;
  std::optional<CStatement> insertreading_;
  std::optional<CStatement> insertevent_;
};

}  // namespace vane::recorder
