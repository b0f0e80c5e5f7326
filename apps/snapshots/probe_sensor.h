// A probe's record as the formulas of the temperature scales take it.
#pragma once

#include <string>
#include <vector>

#include "apps/snapshots/probe_members.h"
#include "physics/record.h"

namespace vane::thermoscribe {

/// Raises `std::invalid_argument`, with a text for the user, for a conversion that gives no
/// temperature.
physics::Record PhysicsRecordOf(const ProbeValues& record);

/// What is odd about a record, as sentences for the user; none for a conversion that gives no
/// temperature. A warning, and never a reason not to write it.
std::vector<std::string> OddThingsAbout(const ProbeValues& record);

}  // namespace vane::thermoscribe
