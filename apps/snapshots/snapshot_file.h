// A snapshot as a file of JSON.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "adapters/posix/patience.h"
#include "apps/snapshots/snapshot.h"

namespace vane::thermoscribe {

/// Of a new file.
inline constexpr mode_t kSnapshotPermissions = 0644;

/// The whole file.
std::string SnapshotText(const Snapshot& snapshot);

/// Both raise `std::runtime_error` with a text for the user: what can't be read or written, or the
/// place of the first thing in the file that can't be. "-" is standard input or output.
Snapshot ReadSnapshotFile(const std::filesystem::path& path, const Patience& patience = {});
/// The record of probe `number` in a snapshot, or the one that the file is, as `thermoscribe probe
/// --json` prints it; there `number` may be 0, and else has to be its own. Raises like the two.
ProbeValues ReadProbeFile(const std::filesystem::path& path, std::int16_t number,
                          const Patience& patience = {});
void WriteSnapshotFile(const std::filesystem::path& path, const Snapshot& snapshot,
                       const Patience& patience = {});

}  // namespace vane::thermoscribe
