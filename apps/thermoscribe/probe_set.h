// Writing a probe's record: what `channel N set` and `probe N set` share.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/output.h"

namespace vane::thermoscribe {

class CHost;

/// Adds a member of a probe's record out of a "NAME=VALUE" text; with `takesprobe`, "probe" as
/// well, the number of the probe to be assigned. Raises `CUsageError`.
void AddProbeAssignment(Json& values, const std::string& text, bool takesprobe);

/// What can be typed, "serial=" and "scale=90", for a shell to offer.
std::vector<std::string> ProbeMemberWords(bool takesprobe);

/// Reads the probe's record, asks for the passcode where it takes one, writes the record with
/// `values` in it, reads it again and shows what has changed. A value that did not arrive is told.
EExitCode WriteProbe(CHost& host, std::int16_t number, const Json& values, bool dryrun);

/// The same with the probe of a channel; `values` may assign another.
EExitCode WriteChannel(CHost& host, std::int16_t number, const Json& values, bool dryrun);

}  // namespace vane::thermoscribe
