// The three options of the line: its port, its speed and the time-out. Each has a default that the
// user can set. The command line stands before the environment, that before the user's
// configuration file, and that before what is built in; one check reads all four.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "apps/snapshots/value.h"
#include "apps/thermoscribe/host_options.h"

namespace vane {
class CConfigRegistry;
}

namespace vane::thermoscribe {

/// The sub key of the user's registry that holds the program's own entries.
inline constexpr const char* kProgramSubkey = "thermoscribe";

struct LineOptionRow {
  const char* name;      ///< in the configuration file; behind "--" that of the option
  const char* variable;  ///< of the environment; an empty one counts as none
  const char* unit;      ///< for people; empty: none

  /// The words of a value, where it is one of some.
  std::vector<std::string> (*words)();

  /// Puts `text` into `options`. Raises `CUsageError`, which calls the value `called`.
  void (*take)(HostOptions& options, const std::string& called, const std::string& text);

  /// What `options` holds; none for a port that is left to the machine.
  Value (*value)(const HostOptions& options);
};

/// In the order in which they are shown.
std::span<const LineOptionRow> LineOptions();

/// Null for a name that none has. Letters count in either case.
const LineOptionRow* FindLineOption(const std::string& name);

enum class EValueSource : std::int32_t { BUILT_IN, FILE, ENVIRONMENT, COMMAND_LINE };

/// Where the value of `row` comes from, which `options` holds behind this call; what the command
/// line gave is there already. Raises `CUsageError` for a value that can't be, and for a file that
/// can't be used and might hold the port: another port may lead to another instrument.
EValueSource TakeDefault(const LineOptionRow& row, HostOptions& options,
                         const CConfigRegistry& registry);

/// All of them, and where no port comes of it, the lone USB adapter of the machine. A simulated
/// readout has no port. Raises `CUsageError`.
void TakeDefaults(HostOptions& options, const CConfigRegistry& registry);

}  // namespace vane::thermoscribe
