// What the commands on files of settings share.
#pragma once

#include <vector>

#include "apps/snapshots/snapshot.h"
#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CHost;

/// Opens the line and takes a snapshot. When the result is not `DONE` the user has been told why.
EExitCode ConnectAndTake(CHost& host, Snapshot& snapshot);

/// One object, or one row, per difference.
void ShowDifferences(CHost& host, const std::vector<Difference>& differences, const char* lefttitle,
                     const char* righttitle);

}  // namespace vane::thermoscribe
