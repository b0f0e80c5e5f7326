// Writing properties of the instrument: what `settings set` and `scan set` share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/instrument_properties.h"

namespace CLI {
class App;
}

namespace vane {

class CHost;

struct Assignment {
  const PropertyRow* row;
  Json value;
};

/// An assignment of what a person has typed. Raises `std::invalid_argument` with a text for the
/// user, which tells what is allowed, for an unknown name or a value that can't be.
Assignment AssignmentOf(std::string_view name, std::string_view text);

/// Whether `list` names, with "," between, channels of the instrument from Input 2 to `highest`.
bool IsScanSequence(const std::string& list, std::int32_t highest);

/// Adds `--dry-run`; the result becomes true when the user gives it.
std::shared_ptr<bool> AddDryRun(CLI::App& command);

/// Reads all settings, asks for the passcode where it takes one, writes the assignments, reads all
/// settings again, and shows what has changed. A value that did not arrive is told.
EExitCode WriteSettings(CHost& host, const std::vector<Assignment>& assignments, bool dryrun);

}  // namespace vane
