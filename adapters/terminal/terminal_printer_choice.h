// The question for a printer on a terminal.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/terminal/interrupts.h"

namespace vane {

/// Shows the printers with their numbers and asks for one, by number or by name, until one of them
/// is named. Nothing when the user answers with "none" or an empty line, Ctrl-C (which stays
/// pending) or the end of the input, and without a terminal to ask on; the output then says that
/// nothing is printed.
std::optional<std::string> ChoosePrinter(CInterrupts& interrupts,
                                         const std::vector<std::string>& printers, int input = 0,
                                         int output = 2);

}  // namespace vane
