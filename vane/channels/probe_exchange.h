// One exchange about a probe; what fails in it is raised again under the operation's label.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "vane/components/communications.h"

namespace vane {

class CVaneT312B;
class CVaneT312BPRTTHRMChannel;

inline constexpr char kChannelClass[] = "CVaneT312BPRTTHRMChannel";

/// Raises where the channel belongs to no instrument.
CVaneT312B& InstrumentOf(const CVaneT312BPRTTHRMChannel& channel);

/// The line of the channel's instrument.
CVaneCommunications& LineOf(const CVaneT312BPRTTHRMChannel& channel);

/// Where the line and the user find a channel: on the readout or on the scanner, under a number
/// there.
struct ChannelPlace {
  bool scanner;
  std::string number;
  ECommand readprobeindex;
};
ChannelPlace PlaceOf(const CVaneT312BPRTTHRMChannel& channel);

/// The command that reads a value, and so the one that writes it.
struct ProbeCommand {
  std::string_view operation;  ///< its label is "Query" or "Update", and this
  ECommand readid;
  std::string_view range = {};  ///< of the `Range` field; empty where the command has none
  std::string_view index = {};
};

/// The reply goes in upper case to `store`. True, or an error.
bool QueryProbe(const CVaneT312BPRTTHRMChannel& channel, const ProbeCommand& command,
                std::int16_t prbidx, const std::function<void(const std::string&)>& store);

/// `value` gives the empty text for "no value". True, or an error.
bool UpdateProbe(const CVaneT312BPRTTHRMChannel& channel, const ProbeCommand& command,
                 std::int16_t prbidx, const std::function<std::string()>& value);

}  // namespace vane
