// A snapshot: everything that a readout keeps, as one JSON value and as a file.
#pragma once

#include <string>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/output.h"

namespace vane {

class CHost;

/// Reads all settings, the probes of the channels and all probes' records into `snapshot`. With
/// `connect`, opens the line first. An exchange that fails on the way is a failure of all. When the
/// result is not `DONE` the user has been told why.
EExitCode TakeSnapshot(CHost& host, Json& snapshot, bool connect = true);

/// Both raise an error with a text for the user: what can't be read or written, or the place of the
/// first thing in the file that can't be. "-" is standard input or output.
Json ReadSnapshotFile(CHost& host, const std::string& path);
void WriteSnapshotFile(CHost& host, const std::string& path, const Json& snapshot);

struct Difference {
  std::string place;  ///< "settings.Units", "channel 3", "probe 12.coefficients.R0"
  Json left;          ///< null: not there
  Json right;
};

/// What two snapshots differ in, but for the time and the readout's identification.
std::vector<Difference> Differences(const Json& left, const Json& right);

/// One object, or one row, per difference.
void ShowDifferences(CHost& host, const std::vector<Difference>& differences, const char* lefttitle,
                     const char* righttitle);

}  // namespace vane
