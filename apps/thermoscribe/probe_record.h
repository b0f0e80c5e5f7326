// A probe's record as it is shown: the same members for every command that reads one.
#pragma once

#include <cstdint>
#include <string>

#include "apps/thermoscribe/output.h"
#include "vane/channels/channel.h"

namespace vane {

/// The record that `channel` holds, as that of probe `number`: serial number, reference resistor,
/// current, 3-wire offset, conversion, and under "coefficients" the values of the conversion by
/// their names in the field.
Json ProbeRecord(const CVaneT312BPRTTHRMChannel& channel, std::int16_t number);

/// The same for people, one line per value, with its head in `title`.
std::string ProbeRecordText(const Json& record);

}  // namespace vane
