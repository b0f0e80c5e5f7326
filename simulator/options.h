// The options of the simulated readout, from a command line or from a text that another program
// holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/fault_plan.h"
#include "simulator/readout.h"

namespace vane::simulator {

struct Options {
  ReadoutOptions readout;
  std::int32_t baud = 0;  ///< 0: the line takes no time
  std::string link;       ///< empty: no link of the user's own
  std::vector<FaultRule> faults;
  std::string readingslog;  ///< empty: none

  /// The manual page or the version, when it was asked for; the other members then hold nothing of
  /// use.
  std::string help;
};

/// Raise `std::invalid_argument` with a text for the user.
Options ParseOptions(int argc, const char* const* argv);
Options ParseOptions(const std::string& text);

}  // namespace vane::simulator
