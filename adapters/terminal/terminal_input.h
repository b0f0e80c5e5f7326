// Lines that the user types at a terminal.
#pragma once

#include <functional>
#include <string>

#include "adapters/posix/patience.h"
#include "adapters/terminal/interrupts.h"

namespace vane {

enum class ELineEnd {
  LINE,          ///< the user has ended a line
  END_OF_INPUT,  ///< there is no more input
  INTERRUPTED,   ///< an interrupt is pending, and stays so
  OVERLONG,      ///< whoever takes the line has no room for more
};

/// Waits for one line; `add` takes it without its end, character by character, and gives false when
/// it has no room. What follows the line stays for whoever reads next. Raises what `input` raises.
ELineEnd ReadLine(CPatientInput& input, const std::function<bool(char)>& add);

/// The same on a terminal, on `input`: `line` is empty when no line came, and an input that fails
/// has ended.
ELineEnd ReadLine(CInterrupts& interrupts, int input, std::string& line);

/// Whether a question can be asked: both descriptors are terminals.
bool CanAsk(int input, int output);

/// `text` without blanks, tabs and line ends on either side.
std::string Trimmed(const std::string& text);

/// The word that an answer is: `line` trimmed, its letters A to Z in lower case.
std::string AnswerWord(const std::string& line);

}  // namespace vane
