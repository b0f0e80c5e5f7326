// The runner of long runs: a reporter, the busy cursor, and named steps in a fixed order, each
// followed by the question whether the user wants to stop.
//
// A run is a list of steps. What one kind of run does otherwise than another is a field of its
// policy, with the reason beside it; the loop is written once.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

#include "vane/components/components.h"

namespace vane {

struct RunPolicy {
  std::int16_t failedtext;   ///< shown with the step's name when a step gives false
  std::int16_t abortedtext;  ///< shown when the user stopped the run
};

/// Reads go from exchange to exchange without a pause.
inline constexpr RunPolicy kReadRun{.failedtext = 107, .abortedtext = 108};

/// A step gives false when it could not do its work without raising an error.
struct RunStep {
  std::string name;
  std::function<bool()> run;
};

/// What the body of a run works with.
class CLongRun {
 public:
  CLongRun(std::unique_ptr<CVaneProgress> progress, const RunPolicy& policy);

  /// Opens a stretch of steps; `share` is the percent of one.
  void Start(const std::string& text, double share);

  /// Advances the reporter without a step and without asking the user.
  void Advance();

  /// Runs the steps in their order. False after a step that failed or an abort; the user has then
  /// been told.
  bool Steps(std::initializer_list<RunStep> steps);
  bool Step(const RunStep& step);

  /// Takes the display off the screen, so that a message box can come up.
  void Hide();

  void Finish();

 private:
  friend bool RunLong(const Components& components, const RunPolicy& policy,
                      std::optional<ui::CWindow*> frm, const std::function<bool(CLongRun&)>& body);

  bool StopWith(const std::string& message);

  std::unique_ptr<CVaneProgress> progress_;
  const RunPolicy& policy_;
};

/// Makes the reporter, raises the busy cursor, runs `body`, and takes both away again; the result
/// is that of `body`. With `frm` given, the display belongs to that window and shows itself when
/// there is one; without it, the reporter stays as it came.
///
/// An error that climbs out of `body` takes the display off the screen and climbs on. The reporter
/// is then not finished, only released, and the busy cursor stays up until the box that shows the
/// error clears it: the user sees that the run is still on its way out.
bool RunLong(const Components& components, const RunPolicy& policy, std::optional<ui::CWindow*> frm,
             const std::function<bool(CLongRun&)>& body);

}  // namespace vane
