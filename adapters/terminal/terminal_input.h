// Lines that the user types at a terminal.
#pragma once

#include <string>

#include "adapters/terminal/interrupts.h"

namespace vane {

enum class ELineEnd {
  LINE,          ///< the user has ended a line
  END_OF_INPUT,  ///< there is no more input
  INTERRUPTED,   ///< an interrupt is pending, and stays so
};

/// Waits for one line on `input`; `line` gets it without its end, and is empty when no line came.
/// What follows the line stays for whoever reads next.
ELineEnd ReadLine(CInterrupts& interrupts, int input, std::string& line);

/// Whether a question can be asked: both descriptors are terminals.
bool CanAsk(int input, int output);

/// `text` without blanks, tabs and line ends on either side.
std::string Trimmed(const std::string& text);

/// The word that an answer is: `line` trimmed, its letters A to Z in lower case.
std::string AnswerWord(const std::string& line);

}  // namespace vane
