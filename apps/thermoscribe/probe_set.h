// Writing a probe's record: what `channel N set` and `probe N set` share.
#pragma once

#include <cstdint>

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/probe_input.h"

namespace vane::thermoscribe {

class CHost;

/// Reads the probe's record, asks for the passcode where it takes one, writes the record with
/// the assignments in it, reads it again and shows what has changed. A value that did not arrive is
/// told.
EExitCode WriteProbe(CHost& host, std::int16_t number, const ProbeAssignments& assignments,
                     bool dryrun);

/// The same with the probe of a channel; they may assign another.
EExitCode WriteChannel(CHost& host, std::int16_t number, const ProbeAssignments& assignments,
                       bool dryrun);

}  // namespace vane::thermoscribe
