// thermoscribe channels: all channels with their numbers and probes.

#include <cstdint>
#include <vector>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/channels/channel.h"
#include "vane/channels/module.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {
namespace {

// Input 1 carries the scanner, so that no step of a scan can name it.
Value ScanStep(std::int16_t channel) {
  return channel < kNumInputs ? Value() : Value(ScannerChannel(channel));
}

EExitCode RunChannels(CHost& host) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  const CVaneT312B& instrument = host.Instrument();
  std::vector<Row> rows;
  for (std::int16_t number = 0; number < instrument.NumModules(); ++number) {
    CModule& md = *instrument.Modules(number);
    // Without a reason in the line, it was the user who ended it.
    if (!md.QueryInfo(nullptr, false)) return EExitCode::ABORTED;
    for (std::int16_t idx = 0; idx < md.NumChannels(); ++idx) {
      const CVaneT312BPRTTHRMChannel& channel = *md.Channels(idx);
      rows.push_back({channel.ActualChannel(),
                      instrument.GetScanSeqChannelName(channel.ActualChannel()), number, md.Model(),
                      channel.ModuleChannel(), idx, ScanStep(channel.ActualChannel()),
                      channel.Enabled(), channel.ProbeIndex()});
    }
  }
  host.Output().Table("channel",
                      {{"channel", "Channel"},
                       {"name", "Name"},
                       {"module", "Module"},
                       {"modulemodel", "Model"},
                       {"modulechannel", "In module"},
                       {"index", "Index"},
                       {"scanstep", "Scan step"},
                       {"enabled", "Enabled"},
                       {"probe", "Probe"}},
                      rows);
  return EExitCode::DONE;
}

}  // namespace

Command ChannelsCommand() {
  return {
      .name = "channels",
      .brief = "List the channels with their numbers and probes",
      .footer =
          R"(Lists every channel with its name, its module, whether it is in use, the number of the
probe that is assigned to it, and its four numbers:
  Channel    on the instrument; what --channel of other commands takes
  In module  within its module, from 1
  Index      within its module, from 0
  Scan step  in the steps of a scan; Input 1 has none ("-")

Example:
  thermoscribe channels --port /dev/ttyUSB0 --json)",
      .body = RunChannels};
}

}  // namespace vane::thermoscribe
