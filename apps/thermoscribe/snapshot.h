// A snapshot: everything that a readout keeps, as one JSON value and as a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/instrument_properties.h"
#include "apps/thermoscribe/output.h"
#include "apps/thermoscribe/probe_members.h"

namespace vane::thermoscribe {

class CHost;

/// Reads all settings, the probes of the channels and all probes' records into `snapshot`. With
/// `connect`, opens the line first. An exchange that fails on the way is a failure of all. When the
/// result is not `DONE` the user has been told why.
EExitCode TakeSnapshot(CHost& host, Json& snapshot, bool connect = true);

/// Both raise an error with a text for the user: what can't be read or written, or the place of the
/// first thing in the file that can't be. "-" is standard input or output.
Json ReadSnapshotFile(CHost& host, const std::string& path);
void WriteSnapshotFile(CHost& host, const std::string& path, const Json& snapshot);

/// Where in an instrument a value stands.
struct Place {
  enum class EPart : std::int32_t { SETTING, CHANNEL, PROBE };

  EPart part;
  const PropertyRow* setting = nullptr;
  std::int16_t number = 0;  ///< of a channel or a probe
  const ProbeMemberRow* member = nullptr;
  std::string coefficient = {};  ///< of a probe, where there is no member

  bool IsIn(EPart thepart, std::int16_t thenumber) const {
    return part == thepart && number == thenumber;
  }
  /// A value of a probe that may be behind the passcode.
  bool IsConversion() const {
    return part == EPart::PROBE && (member == nullptr || member->isconversion);
  }

  /// "settings.Units", "channel 3", "probe 12.coefficients.R0".
  std::string Text() const;

  friend bool operator==(const Place&, const Place&) = default;
};

struct Difference {
  Place place;
  Json left;  ///< null: not there
  Json right;
};

/// What two snapshots differ in, but for the time and the readout's identification.
std::vector<Difference> Differences(const Json& left, const Json& right);

/// One object, or one row, per difference.
void ShowDifferences(CHost& host, const std::vector<Difference>& differences, const char* lefttitle,
                     const char* righttitle);

}  // namespace vane::thermoscribe
