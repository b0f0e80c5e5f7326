// thermoscribe channel and thermoscribe probe: one channel's probe, or one probe, whole.

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>

#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_record.h"
#include "vane/support/failure.h"

namespace vane {
namespace {

constexpr std::int16_t kMaxChannel = 12;

EExitCode RunChannel(CHost& host, std::int16_t number) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312B& instrument = host.Instrument();
  CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(number);
  if (channel == nullptr) {
    CHost::Say("The readout has the channels 1 to " + std::to_string(instrument.NumChannels()) +
               ".");
    return EExitCode::USAGE;
  }
  if (!channel->QueryInfo(host.ProgressWindow())) return host.CodeOfStoppedRun();
  Json record = {{"channel", number}, {"name", instrument.GetScanSeqChannelName(number)}};
  record.update(ProbeRecord(*channel, channel->ProbeIndex()));
  host.Output().Record("channelrecord", record, ProbeRecordText(record));
  return EExitCode::DONE;
}

// A probe need not be assigned to any channel; the first input's object only carries its record.
EExitCode RunProbe(CHost& host, std::int16_t number) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = host.Instrument().GetChannelReference(1);
  if (channel == nullptr) {
    CHost::Say("The readout reports no channels.");
    return EExitCode::FAILED;
  }
  if (!channel->QueryProbeInfo(number, host.ProgressWindow())) return host.CodeOfStoppedRun();
  const Json record = ProbeRecord(*channel, number);
  host.Output().Record("proberecord", record, ProbeRecordText(record));
  return EExitCode::DONE;
}

using RunNumbered = EExitCode(CHost& host, std::int16_t number);

// A command with one number behind it, from 1 to `maximum`.
void AddNumbered(CLI::App& program, CommandBody& chosen, const char* name, const char* brief,
                 const char* footer, std::int16_t maximum, const char* meaning, RunNumbered* run) {
  CLI::App* const command = program.add_subcommand(name, brief);
  const auto number = std::make_shared<std::int16_t>();
  command->add_option("number", *number, meaning)
      ->required()
      ->option_text("N")
      ->check(CLI::Range(std::int16_t{1}, maximum).description(""));
  command->footer(footer);
  command->callback([&chosen, number, run] {
    chosen = [number, run](CHost& host) { return run(host, *number); };
  });
}

constexpr const char* kRecordHelp =
    R"(serial number, reference resistor, current, 3-wire offset, conversion type, and every
coefficient of the conversion by its name in the field (R0, alpha, a5, b5, c1 ...) at
full precision. With --progress the reading shows how far it is; Ctrl-C stops it between
two values.)";

}  // namespace

void AddChannel(CLI::App& program, CommandBody& chosen) {
  static const std::string footer =
      std::string(R"(Tells which probe the channel has, and the probe's record:
)") + kRecordHelp +
      R"(

Examples:
  thermoscribe channel 3
  thermoscribe --simulate channel 1 --json)";
  AddNumbered(program, chosen, "channel", "Read one channel's probe with its whole record",
              footer.c_str(), kMaxChannel, "channel of the instrument, 1 to 12", RunChannel);
}

void AddProbe(CLI::App& program, CommandBody& chosen) {
  static const std::string footer =
      std::string(R"(Tells the record of a probe, whether a channel has it or not:
)") + kRecordHelp +
      R"(

Example:
  thermoscribe probe 12)";
  AddNumbered(program, chosen, "probe", "Read the whole record of one probe", footer.c_str(),
              CVaneT312B::NumProbes(), "probe in the readout's memory, 1 to 16", RunProbe);
}

}  // namespace vane
