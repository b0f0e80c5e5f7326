#include "apps/thermoscribe/run.h"

#include <algorithm>
#include <clocale>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/command_line.h"
#include "apps/thermoscribe/completion.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/line_output.h"
#include "apps/thermoscribe/notices.h"
#include "apps/thermoscribe/program.h"
#include "simulator/options.h"

namespace vane::thermoscribe {
namespace {

EExitCode PrintPage(const std::string& page, CNotices& notices) {
  CLineOutput output({});
  try {
    output.Write(page);
  } catch (const std::runtime_error& error) {
    if (output.IsReaderGone()) return EExitCode::READER_GONE;
    notices.Tell(error.what());
    return EExitCode::FAILED;
  }
  return EExitCode::DONE;
}

// What can't be raised any further: shown once, like every failure of the library.
EExitCode RunCommand(CHost& host, const CommandBody& body, const std::string& command) {
  EExitCode code = EExitCode::FAILED;
  try {
    code = body(host);
  } catch (...) {
    code = host.ReportFailure("carrying out \"" + command + "\"");
  }
  return host.Close(code, command);
}

}  // namespace

EExitCode RunThermoscribe(int argc, char** argv, const RunSeams& seams) {
  HostOptions options;
  options.seams = seams;
  if (argc > 1 && std::string_view(argv[1]) == kCompleteWord) {
    CNotices notices(false, false);
    const std::vector<std::string> words(argv + 2, argv + argc);
    return PrintPage(CompletionText(Program(options), words), notices);
  }
  std::string command;
  ParsedLine line;
  try {
    const Command program = Program(options);
    line = ParseCommandLine(program, argc, argv, command);
    if (options.version) line.page = VersionText();
    if (options.simulated && !options.simulated->help.empty()) line.page = options.simulated->help;
    if (line.page.empty() && !line.body) {
      throw CUsageError(command.empty() ? "No command is given."
                                        : "A command is missing behind \"" + command + "\".");
    }
  } catch (const CUsageError& error) {
    // A line that can't be taken apart may still say in which form its reader wants the reason.
    const bool json = std::any_of(
        argv, argv + argc, [](const char* text) { return std::string_view(text) == "--json"; });
    CNotices notices(json, options.quiet);
    notices.Tell(error.what());
    notices.Close(EExitCode::USAGE, Hint(EExitCode::USAGE, command), 0);
    return EExitCode::USAGE;
  }
  CNotices notices(options.json, options.quiet);
  if (!line.page.empty()) return PrintPage(line.page, notices);
  // Not earlier: on the command line the decimal point is "." for everybody.
  std::setlocale(LC_ALL, "");
  CHost host(options, notices);
  return RunCommand(host, line.body, command);
}

}  // namespace vane::thermoscribe
