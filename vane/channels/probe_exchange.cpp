#include "vane/channels/probe_exchange.h"

#include "vane/channels/channel.h"
#include "vane/channels/module.h"
#include "vane/instrument/operations.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/numbering.h"
#include "vane/support/texts.h"

namespace vane {

CVaneT312B& InstrumentOf(const CVaneT312BPRTTHRMChannel& channel) {
  const CModule* const md = channel.Module();
  if (md == nullptr || md->BaseUnit() == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "The channel belongs to no instrument.");
  }
  return *md->BaseUnit();
}

CVaneCommunications& LineOf(const CVaneT312BPRTTHRMChannel& channel) {
  return LineOf(InstrumentOf(channel));
}

ChannelPlace PlaceOf(const CVaneT312BPRTTHRMChannel& channel) {
  const std::int16_t number = channel.ActualChannel();
  if (number <= kNumInputs) return {false, std::to_string(number), ECommand::READ_PROBE_INDEX};
  return {true, std::to_string(ScannerChannel(number)), ECommand::READ_SCANNER_PROBE_INDEX};
}

bool QueryProbe(const CVaneT312BPRTTHRMChannel& channel, const ProbeCommand& command,
                std::int16_t prbidx, const std::function<void(const std::string&)>& store) {
  return Labelled(kChannelClass, "Query" + std::string(command.operation), [&] {
    store(UpperCase(Read(LineOf(channel), command.readid,
                         {{&CommandParams::Probe, std::to_string(prbidx)},
                          {&CommandParams::Range, std::string(command.range)},
                          {&CommandParams::Index, std::string(command.index)}})));
    return true;
  });
}

bool UpdateProbe(const CVaneT312BPRTTHRMChannel& channel, const ProbeCommand& command,
                 std::int16_t prbidx, const std::function<std::string()>& value) {
  return Labelled(kChannelClass, "Update" + std::string(command.operation), [&] {
    CVaneCommunications& line = LineOf(channel);
    Write(line, WriteOf(command.readid),
          {{&CommandParams::Probe, std::to_string(prbidx)},
           {&CommandParams::Range, std::string(command.range)},
           {&CommandParams::Index, std::string(command.index)},
           {&CommandParams::value, value()}});
    return true;
  });
}

}  // namespace vane
