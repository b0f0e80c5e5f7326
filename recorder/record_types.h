// What a recording is made of, see docs/recording.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "recorder/clock.h"

namespace vane::recorder {

struct Reading {
  std::int64_t sequence = 0;  ///< given by the file, from 1 on without a hole
  Moment time = {};           ///< when its answer had come
  std::int64_t sample = 0;    ///< of the readout, counted since the start of the recording
  std::int16_t channel = 0;
  std::string text = {};  ///< as the readout has sent it
  double value = 0;
  std::string unit = {};
  std::int16_t resolution = 0;  ///< digits behind the decimal point
};

// The kinds of events. What the number of each means stands in docs/recording.md.
namespace kinds {
inline constexpr const char* kStarted = "started";
inline constexpr const char* kContinued = "continued";
inline constexpr const char* kLost = "lost";
inline constexpr const char* kReconnected = "reconnected";
inline constexpr const char* kMissed = "missed";
inline constexpr const char* kSettings = "settings";
inline constexpr const char* kClock = "clock";
inline constexpr const char* kAsleep = "asleep";
inline constexpr const char* kAlarm = "alarm";
inline constexpr const char* kNormal = "normal";
inline constexpr const char* kFull = "full";
inline constexpr const char* kRoom = "room";
inline constexpr const char* kRefused = "refused";
inline constexpr const char* kSilent = "silent";
inline constexpr const char* kUnscanned = "unscanned";
inline constexpr const char* kOther = "other";
inline constexpr const char* kStopped = "stopped";
inline constexpr const char* kEnded = "ended";
}  // namespace kinds

struct Event {
  Moment time = {};
  std::string kind = {};
  std::optional<std::int16_t> channel = {};
  std::optional<double> number = {};
  std::string text = {};  ///< for people
  /// Behind how many of the readings that are filed together with it.
  std::size_t place = 0;
};

/// What is measured with, at the start of a recording.
struct RecordingHead {
  std::string identification = {};
  std::string settings = {};                        ///< everything that the readout keeps, as JSON
  std::map<std::int16_t, std::string> probes = {};  ///< the serial number of each of its records
  struct Channel {
    std::int16_t channel;
    std::string name;
    std::optional<std::int16_t> probe;
  };
  std::vector<Channel> channels = {};
};

/// One run of a recorder.
struct SessionHead {
  std::string program = {};  ///< and its version
  std::string host = {};
  std::string port = {};
  std::string boot = {};
};

}  // namespace vane::recorder
