// thermoscribe scan: what the readout measures and how it walks its channels.

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/property_write.h"
#include "vane/support/display_texts.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kNameColumns = 24;

Json Sequence(const CVaneT312B& instrument) {
  Json steps = Json::array();
  std::istringstream list(instrument.ScanChannels());
  for (std::string item; std::getline(list, item, ',');) {
    const auto channel = static_cast<std::int16_t>(std::stoi(item));
    steps.push_back({{"step", steps.size() + 1},
                     {"channel", channel},
                     {"name", instrument.GetScanSeqChannelName(channel)}});
  }
  return steps;
}

Json ScanMembers(const CVaneT312B& instrument) {
  const bool scanner = instrument.HasScanners();
  const auto ifscanner = [scanner](Json value) { return scanner ? std::move(value) : Json(); };
  return {{"scanner", scanner},
          {"ChannelMode", ChannelModeText(instrument.ChannelMode())},
          {"ScannerScanMode", ifscanner(ScannerScanModeText(instrument.ScannerScanMode()))},
          {"ScanChannel", ifscanner(instrument.ScanChannel())},
          {"ScanSeqChannels", ifscanner(instrument.ScanSeqChannels())},
          {"ScanSeqSteps", ifscanner(instrument.ScanSeqSteps())},
          {"sequence", ifscanner(Sequence(instrument))}};
}

std::string ScanText(const Json& members) {
  std::string text = Padded("Channel mode", kNameColumns) + TextOf(members["ChannelMode"]);
  if (!members["scanner"].get<bool>()) return text + "\nNo scanner is attached.";
  const auto add = [&text](const char* name, const Json& value) {
    text += "\n" + Padded(name, kNameColumns) + TextOf(value);
  };
  add("Scanner sequence mode", members["ScannerScanMode"]);
  add("Scanner channel", members["ScanChannel"]);
  add("Sequence channels", members["ScanSeqChannels"]);
  add("User-defined steps", members["ScanSeqSteps"]);
  for (const Json& step : members["sequence"]) {
    const std::string number = TextOf(step["channel"]);
    add(("  Step " + TextOf(step["step"])).c_str(),
        (number.size() < 2 ? " " : "") + number + "  " + TextOf(step["name"]));
  }
  return text;
}

EExitCode RunScanShow(CHost& host) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  const Json members = ScanMembers(host.Instrument());
  host.Output().Record("scan", members, ScanText(members));
  return EExitCode::DONE;
}

// An option stands for a property.
struct ScanOption {
  const char* option;
  const char* property;
  const char* text;
  const char* brief;
};

constexpr ScanOption kScanOptions[] = {
    {"--mode", "ChannelMode", "MODE", "channel mode, such as \"Input 1\""},
    {"--scanner-mode", "ScannerScanMode", "MODE", "scanner sequence mode"},
    {"--channel", "ScanChannel", "N", "the single scanner channel, 1 to 10"},
    {"--sequence-channels", "ScanSeqChannels", "N", "channels of a sequence, 1 to 10"},
    {"--sequence", "ScanChannels", "LIST",
     "the user-defined sequence: channels of the instrument\nfrom 2 on, such as 2,3,5"},
};

Command ScanSetCommand() {
  struct Options {
    std::vector<Assignment> assignments;
    bool dryrun = false;
  };
  const auto options = std::make_shared<Options>();
  Command command{
      .name = "set",
      .brief = "Set the modes and the scan sequence",
      .footer =
          R"(The modes are the words that "settings show" lists. A sequence is written step by step, its
length with it. Behind the writing all settings are read again, and what has changed is
shown.

Examples:
  thermoscribe scan set --mode "Scanner channel" --channel 4
  thermoscribe scan set --scanner-mode "User-defined scanner sequence" --sequence 2,3,5)",
      .body =
          [options](CHost& host) {
            return WriteSettings(host, options->assignments, options->dryrun);
          },
      .needsoption = true};
  for (const ScanOption& row : kScanOptions) {
    Option option{row.option, row.text, row.brief, {}};
    option.take = [options, row](const std::string& text) {
      AddAssignment(options->assignments, row.property, text, row.option);
    };
    option.words = WordsOf(*FindProperty(row.property)->rule);
    if (!option.words.empty()) option.offer = EOffer::WORDS;
    command.options.push_back(std::move(option));
  }
  command.options.push_back(DryRun(options->dryrun));
  return command;
}

}  // namespace

Command ScanCommand() {
  Command show{
      .name = "show",
      .brief = "Show the modes and the scan sequence",
      .footer =
          R"(Tells what the readout measures (channel mode) and, with a scanner, how it scans: the mode,
the single scanner channel, the number of channels of a sequence, and the user-defined
sequence step by step, each with its channel's number on the instrument and its name.

Examples:
  thermoscribe scan show --port /dev/ttyUSB0
  thermoscribe --simulate scan show --json)",
      .body = RunScanShow};
  return {.name = "scan",
          .brief = "Tell and set how the readout walks its channels",
          .members = {std::move(show), ScanSetCommand()}};
}

}  // namespace vane::thermoscribe
