#include "apps/thermoscribe/program.h"

#include <fcntl.h>

#include <utility>

#include "adapters/terminal/terminal_passcode.h"
#include "apps/thermoscribe/line_options.h"
#include "apps/thermoscribe/program_commands.h"
#include "simulator/options.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kDescription =
    "Reads a T312B thermometer readout and its M420 scanner over a serial port.";

constexpr const char* kFooter =
    R"(The options above may stand before or behind the command; "thermoscribe help COMMAND"
tells the options of a command. Port, speed and time-out have defaults, see
"thermoscribe help config". Answers go to standard output, messages to standard
error. --simulate needs no hardware; the options of the simulated readout are those of
thermoscribe-sim, in one text.

Examples:
  thermoscribe ports
  thermoscribe --port /dev/ttyUSB0 identify
  thermoscribe measure --port /dev/ttyUSB0 --channel 3 --count 0 --every 10
  thermoscribe --simulate='--no-scanner --seed 3' channels --json

Exit codes:
)";

std::string Footer() {
  std::string footer = kFooter;
  for (const ExitCodeRow& row : ExitCodes()) {
    footer += "  " + std::to_string(static_cast<int>(row.code)) + "  " + row.meaning + "\n";
  }
  footer.pop_back();
  return footer;
}

// One of the options of the line.
Option LineOption(HostOptions& host, const LineOptionRow& row, std::string value,
                  std::string brief) {
  const std::string name = "--" + std::string(row.name);
  Option option{name, std::move(value), std::move(brief), {}};
  option.take = [&host, &row, name](const std::string& text) {
    row.take(host, name, text);
    host.given.emplace_back(row.name);
  };
  option.words = row.words();
  if (!option.words.empty()) option.offer = EOffer::WORDS;
  return option;
}

Option Port(HostOptions& host) {
  Option option = LineOption(host, *FindLineOption("port"), "DEVICE",
                             "device of the serial port; without it, the USB\n"
                             "adapter of the machine if there is only one");
  option.excludes = {"--simulate"};
  option.offer = EOffer::PORTS;
  return option;
}

Option Simulate(HostOptions& host) {
  Option option{"--simulate",
                "OPTIONS",
                "talk to a simulated readout inside the program,\n"
                "with a scanner unless OPTIONS says otherwise",
                {}};
  option.take = [&host](const std::string& text) {
    try {
      host.simulated = std::make_shared<const simulator::Options>(simulator::ParseOptions(text));
    } catch (const std::invalid_argument& error) {
      throw CUsageError(error.what());
    }
  };
  option.isvalueoptional = true;
  return option;
}

Option PasscodeFile(HostOptions& host) {
  Option option{"--passcode-file",
                "FILE",
                "take the passcode from the first line of FILE, or\n"
                "of the open descriptor of that number, and don't ask",
                {}};
  option.take = [&host](const std::string& source) {
    // Once the program has opened files of its own, the number may be one of theirs.
    const auto number = DescriptorNumber(source);
    if (number && fcntl(*number, F_GETFD) == -1) {
      throw CUsageError("The descriptor " + source + " isn't open.");
    }
    if (source.empty()) throw CUsageError("--passcode-file can't be empty.");
    host.passcodefile = source;
  };
  option.offer = EOffer::FILES;
  return option;
}

// The parser itself answers it, out of the other commands.
Command HelpCommand() {
  Option path{"command", "[COMMAND]", "the command that is asked for; without it, all", {}};
  path.takesmany = true;
  path.offer = EOffer::COMMANDS;
  return {.name = "help",
          .brief = "Tell the commands, or the options of one",
          .options = {std::move(path)}};
}

}  // namespace

std::string VersionText() { return "thermoscribe " THERMOSCRIBE_VERSION "\n"; }

Command Program(HostOptions& host) {
  Command program{.name = "thermoscribe", .brief = kDescription, .footer = Footer()};
  program.options = {
      Flag("-V,--version", host.version, "print the version and exit"),
      Port(host),
      Simulate(host),
      LineOption(host, *FindLineOption("baud"), "N",
                 "speed of the line in bit/s, as the readout has\n"
                 "it; from 300 to 115200 (9600)"),
      LineOption(host, *FindLineOption("timeout"), "S",
                 "longest wait for one answer, in seconds (1); each\n"
                 "command is tried twice"),
      PathOption("--trace", "FILE", host.tracefile,
                 "append every line that goes over the port to FILE,\n"
                 "with its time; \"-\": standard output"),
      PasscodeFile(host),
      Flag("--progress", host.progress, "show how far a long read is, on a terminal"),
      Flag("-q,--quiet", host.quiet, "tell answers and errors only, no notes and hints"),
      Flag("--json", host.json, "print JSON, one object per line, in place of text"),
  };
  program.members = {PortsCommand(),      IdentifyCommand(),   ChannelsCommand(), MeasureCommand(),
                     RecordCommand(),     WatchCommand(),      ExportCommand(),   ReportCommand(),
                     PublishCommand(),    CollectCommand(),    ChannelCommand(),  ProbeCommand(),
                     ConvertCommand(),    TableCommand(),      VerifyCommand(),   SettingsCommand(),
                     ScanCommand(),       ProtectionCommand(), ClockCommand(),    DownloadCommand(),
                     ConfigCommand(host), CompletionCommand(), HelpCommand()};
  return program;
}

}  // namespace vane::thermoscribe
