// The exit codes of the program: what each means and what the user can do next. Scripts rely on the
// numbers.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vane::thermoscribe {

enum class EExitCode : std::int32_t {
  DONE = 0,
  FAILED = 1,
  USAGE = 2,
  NO_PORT = 3,
  NO_ANSWER = 4,
  WRONG_MODEL = 5,
  REFUSED = 6,
  ABORTED = 7,
  LINE_DAMAGED = 8,
  NO_PASSCODE = 9,
  DIFFERS = 10,
  READER_GONE = 141,  ///< as a shell has it of a program that such a pipe has ended
};

struct ExitCodeRow {
  EExitCode code;
  const char* meaning;  ///< for the help
  const char* hint;     ///< what to do next; empty where the message says it all
};

/// All codes, in their order.
std::span<const ExitCodeRow> ExitCodes();

/// What to do next, by the pages of help of `command` for bad usage; empty where there is nothing.
std::string Hint(EExitCode code, const std::string& command);

const char* MeaningOf(EExitCode code);

/// The code of an exchange that failed with the error `number`; `FAILED` for 0.
EExitCode ExitCodeOfLine(std::int32_t number);

}  // namespace vane::thermoscribe
