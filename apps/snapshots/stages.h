// A write in stages, with an account of itself: whatever stops it, the user learns what is written,
// what may be in part, and what is not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "apps/snapshots/audience.h"

namespace vane::thermoscribe {

/// What is written in one go.
struct Stage {
  std::string name;
  std::function<bool()> write;  ///< false when the user has been told why
  /// One exchange, which is done or not; a stage of many may end early when the user stops it.
  bool isone = false;
};

/// The names of the stages, by what became of them.
struct WriteAccount {
  EEnd end = EEnd::DONE;
  std::vector<std::string> written = {};
  std::vector<std::string> partly = {};  ///< at most in part
  std::vector<std::string> unwritten = {};

  bool IsBegun() const { return !written.empty() || !partly.empty(); }

  /// Of a write that is not `DONE`: "Aborted. Written: ... Not written: ...".
  std::string Text(bool isaborted) const;
};

/// Runs the stages in their order, until one fails or the user wants to stop.
WriteAccount WriteStages(const std::vector<Stage>& stages, CAudience& audience);

/// "Nothing was written."
std::string NothingWrittenText(bool isaborted);

}  // namespace vane::thermoscribe
