// thermoscribe: the readout from the command line.

#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "adapters/serial/baud_rates.h"
#include "adapters/terminal/terminal_passcode.h"
#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"
#include "simulator/options.h"

namespace vane {
namespace {

constexpr const char* kDescription =
    "Reads a T312B thermometer readout and its M420 scanner over a serial port.";

constexpr const char* kFooter =
    R"(The options above may stand before or behind the command; "thermoscribe COMMAND --help"
tells the options of a command. Answers go to standard output, messages to standard
error. --simulate needs no hardware; the options of the simulated readout are those of
thermoscribe-sim, in one text.

Examples:
  thermoscribe ports
  thermoscribe --port /dev/ttyUSB0 identify
  thermoscribe measure --port /dev/ttyUSB0 --channel 3 --count 0 --every 10
  thermoscribe --simulate='--no-scanner --seed 3' channels --json

Exit codes:
)";

constexpr double kMinTimeout = 0.01;  // s
constexpr double kMaxTimeout = 3600;
constexpr const char* kBareFlag = "true";  // what the parser makes of a flag without a text

std::string Footer() {
  std::string footer = kFooter;
  for (const ExitCodeRow& row : ExitCodes()) {
    footer += "  " + std::to_string(static_cast<int>(row.code)) + "  " + row.meaning + "\n";
  }
  footer.pop_back();
  return footer;
}

std::string BaudRateList() {
  std::string list;
  for (const BaudRateRow& row : BaudRates()) {
    list += (list.empty() ? "" : ", ") + std::to_string(row.bits);
  }
  return list;
}

// What conflicts with an option is told when it happens; on a page of help it hides the options.
class CHelpFormatter final : public CLI::Formatter {
 public:
  CHelpFormatter() {
    column_width(24);
    label("SUBCOMMAND", "COMMAND");
  }

  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string value = option->get_option_text();
    return value.empty() || value.front() == '[' ? value : " " + value;
  }
};

struct CommandLine {
  std::string page;  // help or version, to be printed in place of any command
  HostOptions host;
  std::string command;
  CommandBody body;
};

void AddGlobalOptions(CLI::App& program, HostOptions& host, std::string& simulate) {
  CLI::Option* const port = program
                                .add_option("--port", host.port,
                                            "device of the serial port; without it, the first\n"
                                            "one that \"thermoscribe ports\" lists")
                                ->option_text("DEVICE");
  program
      .add_flag("--simulate", simulate,
                "talk to a simulated readout inside the program,\n"
                "with a scanner unless OPTIONS says otherwise")
      ->option_text("[=OPTIONS]")
      ->excludes(port);
  program
      .add_option_function<std::int32_t>(
          "--baud",
          [&host](const std::int32_t& bits) {
            const auto row = std::ranges::find(BaudRates(), bits, &BaudRateRow::bits);
            if (row == BaudRates().end()) {
              throw CLI::ValidationError("--baud", "must be one of " + BaudRateList());
            }
            host.baud = row->rate;
          },
          "speed of the line in bit/s, as the readout has\n"
          "it; from 300 to 115200 (9600)")
      ->option_text("N");
  program
      .add_option_function<double>(
          "--timeout",
          [&host](const double& seconds) {
            host.timeout = std::chrono::round<std::chrono::milliseconds>(
                std::chrono::duration<double>(seconds));
          },
          "longest wait for one answer, in seconds (1); each\n"
          "command is tried twice")
      ->option_text("S")
      ->check(CLI::Range(kMinTimeout, kMaxTimeout).description(""));
  program
      .add_option("--trace", host.tracefile,
                  "append every line that goes over the port to FILE,\n"
                  "with its time")
      ->option_text("FILE");
  program
      .add_option("--passcode-file", host.passcodefile,
                  "take the passcode from the first line of FILE, or\n"
                  "of the open descriptor of that number, and don't ask")
      ->option_text("FILE")
      ->check([](const std::string& source) -> std::string {
        // Once the program has opened files of its own, the number may be one of theirs.
        const auto number = DescriptorNumber(source);
        if (!number || fcntl(*number, F_GETFD) != -1) return {};
        return "The descriptor " + source + " isn't open.";
      });
  program.add_flag("--progress", host.progress, "show how far a long read is, on a terminal");
  program.add_flag("--json", host.json, "print JSON, one object per line, in place of text");
}

// The name of the chosen command, with that of its group before it.
std::string CommandName(const CLI::App& program) {
  std::string name;
  for (const CLI::App* command = &program; !command->get_subcommands().empty();) {
    command = command->get_subcommands().front();
    name += (name.empty() ? "" : " ") + command->get_name();
  }
  return name;
}

std::string MissingCommand(const std::string& group) {
  if (group.empty()) return "No command is given.";
  return "A command is missing behind \"" + group + "\"; \"thermoscribe " + group +
         " --help\" lists them.";
}

// Raises `std::invalid_argument` with a text for the user.
CommandLine ParseCommandLine(int argc, char** argv) {
  CommandLine line;
  CLI::App program(kDescription, "thermoscribe");
  program.formatter(std::make_shared<CHelpFormatter>());
  program.fallthrough();
  program.require_subcommand(0, 1);
  program.set_help_flag("-h,--help", "print this help and exit");
  program.set_version_flag("--version", "thermoscribe " THERMOSCRIBE_VERSION,
                           "print the version and exit");
  std::string simulate;
  AddGlobalOptions(program, line.host, simulate);
  for (AddCommand* const add : kCommands) add(program, line.body);
  for (CLI::App* const command : program.get_subcommands({})) {
    command->group("Commands");
    for (CLI::App* const member : command->get_subcommands({})) member->group("Commands");
  }
  program.footer(Footer());

  try {
    program.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    line.page = program.help();
    return line;
  } catch (const CLI::CallForVersion& version) {
    line.page = std::string(version.what()) + "\n";
    return line;
  } catch (const CLI::ParseError& error) {
    throw std::invalid_argument(error.what());
  }
  line.command = CommandName(program);
  if (!line.body) throw std::invalid_argument(MissingCommand(line.command));
  if (!simulate.empty()) {
    line.host.simulated = simulator::ParseOptions(simulate == kBareFlag ? "" : simulate);
    line.page = line.host.simulated->help;
  }
  return line;
}

void ReportUsage(const std::string& problem) {
  CHost::Say(problem);
  CHost::Say(Hint(EExitCode::USAGE));
}

// What can't be raised any further: shown once, like every failure of the library.
EExitCode RunCommand(CHost& host, const CommandLine& line) {
  EExitCode code = EExitCode::FAILED;
  try {
    code = line.body(host);
  } catch (...) {
    code = host.ReportFailure("carrying out \"" + line.command + "\"");
  }
  if (const std::string hint = Hint(code); !hint.empty()) CHost::Say(hint);
  return code;
}

EExitCode Run(int argc, char** argv) {
  CommandLine line;
  try {
    line = ParseCommandLine(argc, argv);
  } catch (const std::invalid_argument& error) {
    ReportUsage(error.what());
    return EExitCode::USAGE;
  }
  if (!line.page.empty()) {
    std::cout << line.page << std::flush;
    return std::cout ? EExitCode::DONE : EExitCode::FAILED;
  }
  // Not earlier: on the command line the decimal point is "." for everybody.
  std::setlocale(LC_ALL, "");
  CHost host(line.host);
  return RunCommand(host, line);
}

}  // namespace

CLI::App& AddGroup(CLI::App& program, const char* name, const char* brief) {
  CLI::App* const group = program.add_subcommand(name, brief);
  group->require_subcommand(0, 1);
  return *group;
}

}  // namespace vane

int main(int argc, char** argv) {
  // A reader that goes away is a failure of the output, not the end of the program: the simulated
  // readout has a folder to take away.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return static_cast<int>(vane::Run(argc, argv));
  } catch (const std::exception& error) {
    vane::CHost::Say(error.what());
    return static_cast<int>(vane::EExitCode::FAILED);
  }
}
