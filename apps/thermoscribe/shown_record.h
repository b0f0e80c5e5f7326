// A probe's record as it is shown: the same members for every command that reads one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/thermoscribe/output.h"
#include "vane/channels/channel.h"

namespace vane::thermoscribe {

/// The record that `channel` holds, as that of probe `number`: serial number, reference resistor,
/// current, 3-wire offset, conversion, and under "coefficients" the values of the conversion by
/// their names in the field. The members are the same for every conversion; null is what it doesn't
/// have.
Json ProbeRecord(const CVaneT312BPRTTHRMChannel& channel, std::int16_t number);

/// Puts those members of a record that `values` holds into `channel`: the inverse of `ProbeRecord`.
/// A new conversion starts with the library's defaults. What null, or a word that a record shows
/// for something unknown, can't say is left as it is or becomes the library's code for none. Raises
/// `std::invalid_argument`, with a text for the user, for a member or a coefficient that the
/// conversion doesn't have.
void StoreProbeRecord(CVaneT312BPRTTHRMChannel& channel, const Json& values);

/// The words of "reference" and "conversion" that can be written.
std::vector<std::string> ReferenceWords();
std::vector<std::string> ConversionWords();

/// A record for people, one line per value.
std::string ProbeRecordText(const Json& record);

}  // namespace vane::thermoscribe
