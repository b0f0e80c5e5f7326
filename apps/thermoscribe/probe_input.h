// The values of a probe's record as a person gives them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/snapshots/probe_members.h"

namespace vane::thermoscribe {

/// What a person wants a record to hold.
struct ProbeAssignments {
  ProbeValues values;
  std::optional<std::int16_t> probe;  ///< that is to be assigned to the channel
};

/// Adds an assignment out of a "NAME=VALUE" text; with `takesprobe`, "probe" as well. Raises
/// `CUsageError`, with a text that tells what is allowed, also for a member that is there already.
/// Whether the probe's conversion has the member remains to be seen.
void AddProbeAssignment(ProbeAssignments& assignments, const std::string& text, bool takesprobe);

/// What can be typed for the members but the coefficients, "serial=" and "scale=90", for a shell to
/// offer.
std::vector<std::string> ProbeAssignmentWords(bool takesprobe);

}  // namespace vane::thermoscribe
