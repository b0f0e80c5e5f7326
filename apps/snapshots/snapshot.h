// A snapshot: everything that a readout keeps, as values that can be compared.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/instrument_properties.h"
#include "apps/snapshots/probe_members.h"

namespace vane::thermoscribe {

struct ChannelEntry {
  std::int16_t number;
  std::string name;
  std::int16_t probe;
};

/// Of a file it holds all but the head and the names of channels.
struct Snapshot {
  std::string taken = {};
  std::vector<PropertyValue> readout = {};   ///< what it says of itself
  std::vector<PropertyValue> settings = {};  ///< all that can be set
  std::vector<ChannelEntry> channels = {};   ///< from 1 on
  std::vector<ProbeValues> probes = {};      ///< the records of all, from 1 on
};

/// Reads all settings, the probes of the channels and all probes' records into `snapshot`. The
/// channels are known. An exchange that fails on the way is a failure of all.
/// Channel 1's object, which carries the records one by one, has to be read anew where it lives on.
EEnd TakeSnapshot(CVaneT312B& instrument, CAudience& audience, Snapshot& snapshot);

/// The same with another way to read all settings; false ends it.
EEnd TakeSnapshot(CVaneT312B& instrument, CAudience& audience,
                  const std::function<bool()>& readsettings, Snapshot& snapshot);

/// Where in an instrument a value stands.
struct SnapshotPlace {
  enum class EPart : std::int32_t { SETTING, CHANNEL, PROBE };

  EPart part;
  const PropertyRow* setting = nullptr;
  std::int16_t number = 0;  ///< of a channel or a probe
  ProbeKey probe = {};

  bool IsIn(EPart thepart, std::int16_t thenumber) const {
    return part == thepart && number == thenumber;
  }
  /// A value of a probe that may be behind the passcode.
  bool IsConversion() const { return part == EPart::PROBE && probe.IsConversion(); }

  /// "settings.Units", "channel 3", "probe 12.coefficients.R0".
  std::string Text() const;

  friend bool operator==(const SnapshotPlace&, const SnapshotPlace&) = default;
};

struct Difference {
  SnapshotPlace place;
  Value left;  ///< none: not there
  Value right;
};

/// What two snapshots differ in, but for the time and the readout's identification.
std::vector<Difference> Differences(const Snapshot& left, const Snapshot& right);

}  // namespace vane::thermoscribe
