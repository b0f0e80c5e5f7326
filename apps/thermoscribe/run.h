// The whole program as a function: what `main` calls, and what a test calls many times in one
// process.
#pragma once

#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/host_options.h"

namespace vane::thermoscribe {

/// Does what the command line asks for. Answers go to descriptor 1, all else to descriptor 2.
/// `PrepareProcess` has been called before. One run at a time.
EExitCode RunThermoscribe(int argc, char** argv, const RunSeams& seams = {});

}  // namespace vane::thermoscribe
