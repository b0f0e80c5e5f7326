// thermoscribe channel and thermoscribe probe: one channel's probe, or one probe, whole; and with
// "set" the writing of it.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_set.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/support/failure.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {
namespace {

EExitCode RunChannel(CHost& host, std::int16_t number) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = host.FindChannel(number);
  if (channel == nullptr) return EExitCode::USAGE;
  if (!channel->QueryInfo(host.ProgressWindow())) return host.CodeOfStoppedRun();
  const std::string name = host.Instrument().GetScanSeqChannelName(number);
  Members record = {{"channel", number}, {"name", name}};
  std::ranges::move(MembersOf(channel->ProbeIndex(), ProbeRecord(*channel)),
                    std::back_inserter(record));
  std::string text;
  AddRecordLine(text, "Channel", number);
  AddRecordLine(text, "Name", name);
  AddProbeRecord(text, channel->ProbeIndex(), *channel);
  host.Output().Record("channelrecord", record, text);
  return EExitCode::DONE;
}

EExitCode RunProbe(CHost& host, std::int16_t number) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = ProbeCarrier(host.Instrument(), host);
  if (channel == nullptr) return EExitCode::FAILED;
  if (!channel->QueryProbeInfo(number, host.ProgressWindow())) return host.CodeOfStoppedRun();
  std::string text;
  AddProbeRecord(text, number, *channel);
  host.Output().Record("proberecord", MembersOf(number, ProbeRecord(*channel)), text);
  return EExitCode::DONE;
}

constexpr const char* kSetHelp =
    R"(The names are those of the record in JSON: serial, reference, current, offset3wire,
conversion, lowrange, highrange, scale, and the coefficients of the conversion. A name or a
value that can't be is refused before anything is sent, a coefficient that the conversion
doesn't have before anything is written. A new conversion starts with default values. The
passcode is asked for where the readout protects conversions and one is touched; otherwise
the conversion is not written. Behind the writing the record is read again, and what has
changed is shown.
)";

// A command with a number behind it, from 1 to `maximum`, which reads, and with "set" behind the
// number writes.
struct NumberedCommand {
  const char* name;
  const char* brief;
  std::string footer;
  std::int16_t maximum;
  std::string meaning;
  EExitCode (*read)(CHost& host, std::int16_t number);

  const char* setbrief;
  const char* setexamples;
  EExitCode (*write)(CHost& host, std::int16_t number, const ProbeAssignments& assignments,
                     bool dryrun);
  bool takesprobe;  // an assignment of a probe too
};

Command Numbered(const NumberedCommand& row) {
  struct Options {
    std::int16_t number = 0;
    ProbeAssignments assignments;
    bool dryrun = false;
  };
  const auto options = std::make_shared<Options>();
  Option assignments{
      "assignments", "NAME=VALUE...", "a member of the record and its new value", {}};
  assignments.take = [options, takesprobe = row.takesprobe](const std::string& text) {
    AddProbeAssignment(options->assignments, text, takesprobe);
  };
  assignments.isrequired = true;
  assignments.takesmany = true;
  assignments.offer = EOffer::WORDS;
  assignments.words = ProbeAssignmentWords(row.takesprobe);
  Command set{.name = "set",
              .brief = row.setbrief,
              .footer = kSetHelp + std::string(row.setexamples),
              .options = {std::move(assignments), DryRun(options->dryrun)},
              .body = [options, write = row.write](CHost& host) {
                return write(host, options->number, options->assignments, options->dryrun);
              }};
  Option number = WholeOption(row.name, "N", options->number, 1, row.maximum, row.meaning);
  number.isrequired = true;
  return {.name = row.name,
          .brief = row.brief,
          .footer = row.footer,
          .options = {std::move(number)},
          .members = {std::move(set)},
          .body = [options, read = row.read](CHost& host) { return read(host, options->number); }};
}

constexpr const char* kRecordHelp =
    R"(serial number, reference resistor, current, 3-wire offset, conversion type, and every
coefficient of the conversion by its name in the field (R0, alpha, a5, b5, c1 ...) at
full precision. With --progress the reading shows how far it is; Ctrl-C stops it between
two values.)";

}  // namespace

Command ChannelCommand() {
  return Numbered(
      {.name = "channel",
       .brief = "Read one channel's probe with its whole record, or set it",
       .footer = std::string(R"(Tells which probe the channel has, and the probe's record:
)") + kRecordHelp +
                 R"(

Examples:
  thermoscribe channel 3
  thermoscribe --simulate channel 1 --json)",
       .maximum = kHighestChannel,
       .meaning = "channel of the instrument, 1 to " + std::to_string(kHighestChannel),
       .read = RunChannel,
       .setbrief = "Assign a probe, and write values of its record",
       .setexamples = R"(probe=K assigns probe K to the channel, and other values go to that probe.

Examples:
  thermoscribe channel 3 set probe=12
  thermoscribe channel 3 set serial=SP-4107 current=1.414)",
       .write = WriteChannel,
       .takesprobe = true});
}

Command ProbeCommand() {
  return Numbered(
      {.name = "probe",
       .brief = "Read the whole record of one probe, or set it",
       .footer = std::string(R"(Tells the record of a probe, whether a channel has it or not:
)") + kRecordHelp +
                 R"(

Example:
  thermoscribe probe 12)",
       .maximum = CVaneT312B::NumProbes(),
       .meaning = "probe in the readout's memory, 1 to " + std::to_string(CVaneT312B::NumProbes()),
       .read = RunProbe,
       .setbrief = "Write values of the record",
       .setexamples = R"(
Examples:
  thermoscribe probe 12 set current=1 reference="100 Ohm"
  thermoscribe probe 12 set conversion=ITS-90 lowrange=4 RTPW=25.5098764 a4=-1.257e-4
  thermoscribe probe 12 set conversion=Ratio --dry-run)",
       .write = WriteProbe,
       .takesprobe = false});
}

}  // namespace vane::thermoscribe
