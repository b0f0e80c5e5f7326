// The whole command line of the program as data.
#pragma once

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host_options.h"

namespace vane::thermoscribe {

/// The program with its global options, which put what they are given into `host`, and all
/// commands. `host` outlives the parsing.
Command Program(HostOptions& host);

/// "thermoscribe 1.2.3", one line.
std::string VersionText();

}  // namespace vane::thermoscribe
