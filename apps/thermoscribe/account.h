// What the commands that write tell of it.
#pragma once

#include <string>
#include <vector>

#include "apps/snapshots/stages.h"
#include "apps/snapshots/value_check.h"
#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CHost;

/// Runs the stages in their order, until one fails or the user wants to stop. `DONE`, or the code
/// of what stopped them, behind the account; `advice` ends that.
EExitCode RunStages(CHost& host, const std::vector<Stage>& stages, const std::string& advice);

/// Reads all settings well before a command writes; when the result is not `DONE` it has been told
/// that nothing was written.
EExitCode ReadBeforeWriting(CHost& host);

/// For a command that was going to write and ends before: says so and gives `code` back.
EExitCode NothingWritten(CHost& host, EExitCode code);

/// For a write that is done and can't be read again to be seen: says so and gives `code` back.
EExitCode NotReadBack(CHost& host, EExitCode code);

/// Shows the values that have changed, and tells of each that is not what it should be; `FAILED`
/// then.
EExitCode ShowChanges(CHost& host, const std::vector<CheckedValue>& values);

}  // namespace vane::thermoscribe
