// A write in stages, with an account of itself: whatever stops it, the user learns what is written,
// what may be in part, and what is not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CHost;

/// What is written in one go.
struct Stage {
  std::string name;
  std::function<bool()> write;  ///< false when the user has been told why
  /// One exchange, which is done or not; a stage of many may end early when the user stops it.
  bool isone = false;
};

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

}  // namespace vane::thermoscribe
