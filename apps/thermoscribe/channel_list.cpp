#include "apps/thermoscribe/channel_list.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "apps/thermoscribe/assignments.h"
#include "apps/thermoscribe/command.h"
#include "vane/channels/channel.h"
#include "vane/instrument/t312b.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

// 0 for what is no channel.
std::int16_t ChannelIn(std::string_view text) {
  const std::string digits(TrimBlanks(text));
  std::int16_t channel = 0;
  const char* const end = digits.data() + digits.size();
  const auto [last, error] = std::from_chars(digits.data(), end, channel);
  const bool ischannel = error == std::errc() && last == end && channel <= kHighestChannel;
  return ischannel ? std::max<std::int16_t>(channel, 0) : std::int16_t{0};
}

}  // namespace

std::vector<std::int16_t> ChannelList(const std::string& option, const std::string& text) {
  std::vector<std::int16_t> channels;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    const std::string_view item = std::string_view(text).substr(begin, end - begin);
    begin = end + 1;
    const std::size_t bar = std::min(item.find('-'), item.size());
    const std::int16_t first = ChannelIn(item.substr(0, bar));
    const std::int16_t last = bar == item.size() ? first : ChannelIn(item.substr(bar + 1));
    if (first == 0 || last < first) {
      throw CUsageError(option + " can't be \"" + text + "\". It is a list of channels from 1 to " +
                        std::to_string(kHighestChannel) + ", such as 2,3,5-8, or \"all\".");
    }
    for (std::int16_t channel = first; channel <= last; ++channel) {
      if (std::ranges::find(channels, channel) != channels.end()) {
        throw CUsageError(option + " names channel " + std::to_string(channel) + " twice.");
      }
      channels.push_back(channel);
    }
  }
  return channels;
}

std::vector<std::int16_t> ChannelsInUse(const CVaneT312B& instrument) {
  std::vector<std::int16_t> channels;
  for (std::int16_t chn = 1; chn <= instrument.NumChannels(); ++chn) {
    const CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(chn);
    if (channel != nullptr && channel->Enabled()) channels.push_back(chn);
  }
  return channels;
}

}  // namespace vane::thermoscribe
