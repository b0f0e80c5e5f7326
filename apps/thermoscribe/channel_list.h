// Lists of channels as a person types them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vane {
class CVaneT312B;
}

namespace vane::thermoscribe {

/// The channels of "2,3,5-8" in the order of the list; blanks around an item don't count. Raises
/// `CUsageError`, under the name of the option, for anything else, a channel outside 1 to
/// `kHighestChannel`, a span that runs down, and a channel that is named twice.
std::vector<std::int16_t> ChannelList(const std::string& option, const std::string& text);

/// The channels of `instrument` that are in use.
std::vector<std::int16_t> ChannelsInUse(const CVaneT312B& instrument);

}  // namespace vane::thermoscribe
