// What goes over the broker, as docs/publishing.md has it: topics and payloads.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recorder/recording_reader.h"

namespace vane::recorder {

// Behind the prefix and the recording.
namespace topics {
inline constexpr const char* kRecording = "recording";
inline constexpr const char* kReadings = "readings";
inline constexpr const char* kEvents = "events";
inline constexpr const char* kState = "state";
inline constexpr const char* kStored = "stored";
inline constexpr const char* kAgain = "again";
}  // namespace topics

/// A reading on its way.
struct SentReading {
  Reading reading;
  std::string name;  ///< of its channel
};

struct SentEvent {
  std::int64_t number = 0;
  std::int64_t behind = 0;
  Event event;
};

/// How far a recording goes.
struct Extent {
  std::int64_t reading = 0;
  std::int64_t event = 0;

  friend bool operator==(const Extent&, const Extent&) = default;
};

/// Numbers from the first to the last.
struct Span {
  std::int64_t first = 1;
  std::int64_t last = 0;

  bool IsEmpty() const { return last < first; }
};

/// What a collector misses.
struct Missing {
  Span readings;
  Span events;
};

std::string RecordingMessage(const AboutRecording& about);
std::string ReadingsMessage(const std::string& recording, const std::vector<SentReading>& readings);
std::string EventsMessage(const std::string& recording, const std::vector<SentEvent>& events);
/// `state` is "recording", "stopped", "ended" or "gone".
std::string StateMessage(const std::string& recording, const std::string& state,
                         const std::optional<Extent>& extent);
std::string StoredMessage(const Extent& extent);
std::string AgainMessage(const Missing& missing);

// The other way. Each gives nothing for what is none: a broker takes messages of anybody.

std::optional<std::vector<SentReading>> ReadingsIn(const std::string& message);
std::optional<std::vector<SentEvent>> EventsIn(const std::string& message);
struct StateSaid {
  std::string state;
  std::optional<Extent> extent;
};
std::optional<StateSaid> StateIn(const std::string& message);
std::optional<Extent> StoredIn(const std::string& message);
std::optional<Missing> AgainIn(const std::string& message);
struct RecordingSaid {
  std::string identification;
  std::int64_t started;
};
std::optional<RecordingSaid> RecordingIn(const std::string& message);

/// Whether `text` has the form of a UUID.
bool IsUuid(const std::string& text);

}  // namespace vane::recorder
