// thermoscribe scan: what the readout measures and how it walks its channels.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "apps/thermoscribe/assignments.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/support/display_texts.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kNameColumns = 24;

// A step of the user-defined sequence.
struct ScanStep {
  std::int16_t channel;
  std::string name;
};

std::vector<ScanStep> Sequence(const CVaneT312B& instrument) {
  std::vector<ScanStep> steps;
  std::istringstream list(instrument.ScanChannels());
  for (std::string item; std::getline(list, item, ',');) {
    const auto channel = static_cast<std::int16_t>(std::stoi(item));
    steps.push_back({channel, instrument.GetScanSeqChannelName(channel)});
  }
  return steps;
}

// Members that are properties, as for `settings show`.
constexpr const char* kShown[] = {"ChannelMode", "ScannerScanMode", "ScanChannel",
                                  "ScanSeqChannels", "ScanSeqSteps"};

EExitCode RunScanShow(CHost& host) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  const CVaneT312B& instrument = host.Instrument();
  Members members = {{"scanner", instrument.HasScanners()}};
  std::string text;
  for (const char* const name : kShown) {
    const PropertyRow& row = *FindProperty(name);
    members.push_back({name, ValueIn(instrument, row)});
    if (!IsThere(row.group, instrument)) continue;
    AddLine(text, std::string(row.words), kNameColumns, PropertyText(row, members.back().value));
  }
  if (!instrument.HasScanners()) {
    members.push_back({"sequence", {}});
    Append(text, "\n", "No scanner is attached.");
  } else {
    List steps;
    for (const auto& [channel, name] : Sequence(instrument)) {
      const std::string number = TextOf(channel);
      steps.emplace_back(Members{{"step", steps.size() + 1}, {"channel", channel}, {"name", name}});
      AddLine(text, "  Step " + TextOf(steps.size()), kNameColumns,
              (number.size() < 2 ? " " : "") + number + "  " + TextOf(name));
    }
    members.push_back({"sequence", steps});
  }
  host.Output().Record("scan", members, text);
  return EExitCode::DONE;
}

// An option stands for a property.
struct ScanOption {
  const char* option;
  std::string_view property;
  const char* text;
  std::string brief;
};

const std::string kScannerChannelsText = "1 to " + std::to_string(kScannerChannels);

const ScanOption kScanOptions[] = {
    {"--mode", "ChannelMode", "MODE", "channel mode, such as \"Input 1\""},
    {"--scanner-mode", "ScannerScanMode", "MODE", "scanner sequence mode"},
    {"--channel", "ScanChannel", "N", "the single scanner channel, " + kScannerChannelsText},
    {"--sequence-channels", "ScanSeqChannels", "N",
     "channels of a sequence, " + kScannerChannelsText},
    {"--sequence", "ScanChannels", "LIST",
     "the user-defined sequence: channels of the instrument\nfrom " + std::to_string(kNumInputs) +
         " on, such as 2,3,5"},
};

std::string OptionOf(const PropertyRow& property) {
  return std::ranges::find(kScanOptions, property.name, &ScanOption::property)->option;
}

Command ScanSetCommand() {
  struct Options {
    std::vector<PropertyValue> assignments;
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
            return WriteSettings(host, options->assignments, options->dryrun, OptionOf);
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
