#include "apps/recording/recording_head.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <utility>

#include "apps/snapshots/snapshot_file.h"

namespace vane::thermoscribe {

void AddSettings(recorder::RecordingHead& head, const Snapshot& snapshot,
                 const std::vector<std::int16_t>& channels) {
  head.settings = SnapshotText(snapshot);
  for (const std::int16_t channel : channels) {
    const auto entry = std::ranges::find(snapshot.channels, channel, &ChannelEntry::number);
    if (entry == snapshot.channels.end()) continue;
    recorder::RecordingHead::Channel one{channel, entry->name, {}};
    if (head.probes.contains(entry->probe)) one.probe = entry->probe;
    head.channels.push_back(std::move(one));
  }
}

recorder::SessionHead SessionOf(const std::string& program, const std::string& port,
                                const recorder::CClock& clock) {
  char host[HOST_NAME_MAX + 1] = {};
  gethostname(host, sizeof host - 1);
  return {program, host, port, clock.Boot()};
}

}  // namespace vane::thermoscribe
