// Takes a command line apart by the description of the program.
#pragma once

#include <string>
#include <vector>

#include "apps/thermoscribe/command.h"

namespace vane::thermoscribe {

/// Every command takes it, and the parser itself answers it.
Option HelpFlag();

/// What was asked for. `body` is null where there is only a page to print.
struct ParsedLine {
  std::string page;
  CommandBody body;
};

/// Hands the options' values to `program` and gives the chosen command's work. `command` gets the
/// name of the command as far as it is known, "settings set", also when this raises `CUsageError`.
ParsedLine ParseCommandLine(const Command& program, int argc, char** argv, std::string& command);

}  // namespace vane::thermoscribe
