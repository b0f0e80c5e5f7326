#include "apps/thermoscribe/exit_codes.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "adapters/serial/line_errors.h"

namespace vane::thermoscribe {
namespace {

constexpr std::array kRows = {
    ExitCodeRow{EExitCode::DONE, "done", ""},
    ExitCodeRow{EExitCode::FAILED, "any other failure", ""},
    ExitCodeRow{EExitCode::USAGE, "bad usage", ""},
    ExitCodeRow{EExitCode::NO_PORT, "the serial port can't be opened, or is in use",
                "\"thermoscribe ports\" lists the ports of this machine, --port chooses one."},
    ExitCodeRow{EExitCode::NO_ANSWER, "no answer",
                "Check the cable, the power and --baud; a slow readout needs a longer --timeout."},
    ExitCodeRow{EExitCode::WRONG_MODEL, "the instrument is of another model",
                "Choose the port of the T312B with --port."},
    ExitCodeRow{EExitCode::REFUSED, "the readout refused",
                "The readout is there but doesn't take the command now; its reason stands above."},
    ExitCodeRow{EExitCode::ABORTED, "aborted by the user before the end", ""},
    ExitCodeRow{
        EExitCode::LINE_DAMAGED,
        "line damaged or lost: garbled, overlong, hung up,\n     or answers that make no sense",
        "Check the cable and --baud; --trace FILE records what comes over the line."},
    ExitCodeRow{EExitCode::NO_PASSCODE, "the passcode is wrong, or none was given",
                "Give it at a terminal, or by --passcode-file in a script."},
    ExitCodeRow{EExitCode::DIFFERS, "the settings differ", ""},
    ExitCodeRow{EExitCode::READER_GONE, "nobody reads the output any more (a pipe)", ""},
};

constexpr bool InOrder() {
  for (std::size_t i = 1; i < kRows.size(); ++i) {
    if (kRows[i - 1].code >= kRows[i].code) return false;
  }
  return true;
}
static_assert(InOrder());

const ExitCodeRow& RowOf(EExitCode code) {
  return *std::ranges::find(kRows, code, &ExitCodeRow::code);
}

}  // namespace

std::span<const ExitCodeRow> ExitCodes() { return kRows; }

std::string Hint(EExitCode code, const std::string& command) {
  if (code == EExitCode::USAGE) {
    return "\"thermoscribe " + command + (command.empty() ? "" : " ") +
           "--help\" tells what can be asked.";
  }
  return RowOf(code).hint;
}

const char* MeaningOf(EExitCode code) { return RowOf(code).meaning; }

EExitCode ExitCodeOfLine(std::int32_t number) {
  switch (number) {
    case 0:
    case ERR_LINE_UNKNOWN_COMMAND:
    case ERR_LINE_BAD_FIELD:
    case ERR_LINE_INSTRUMENT_KIND:
    case ERR_LINE_TRACE_FILE:
      return EExitCode::FAILED;
    case ERR_LINE_NO_PORT:
    case ERR_LINE_CANNOT_OPEN:
    case ERR_LINE_IN_USE:
    case ERR_LINE_BAUD_RATE:
      return EExitCode::NO_PORT;
    case ERR_LINE_NO_ANSWER:
      return EExitCode::NO_ANSWER;
    case ERR_LINE_LOST:
    case ERR_LINE_GARBLED:
    case ERR_LINE_OVERLONG:
    case ERR_LINE_UNEXPECTED:
      return EExitCode::LINE_DAMAGED;
    default:
      // Every other number is the readout's own.
      return EExitCode::REFUSED;
  }
}

}  // namespace vane::thermoscribe
