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
#include <utility>

#include "vane/components/components.h"
#include "vane/support/text_table.h"

namespace vane {

struct RunPolicy {
  /// Shown with the step's name when a step gives false; `NO_TEXT` leaves the word to the caller of
  /// the run.
  EText failedtext;

  /// Shown when the user stops the run; `NO_TEXT` leaves the word to the caller of the run.
  EText abortedtext;

  /// What an error meets. With a text, the run stands at the user's boundary: the error is shown as
  /// an attempt at the step that it came from, and the run ends with false. Without, it climbs on.
  EText errortext = EText::NO_TEXT;

  /// Whether the display makes room for the word that the user stopped the run. A write keeps it
  /// up, so that he sees how far the instrument's settings have changed.
  bool hidesbeforeabort = true;

  /// Whether the display makes room for the box of an error.
  bool hidesonerror = true;

  /// Whether an error also finishes the reporter and takes away the busy cursor. A read whose error
  /// climbs leaves the reporter to its release, and the cursor stays up until the box that shows
  /// the error clears it.
  bool finishonerror = false;

  /// Whether a step that gives false finishes the reporter. A range's write leaves that to the
  /// reporter's release.
  bool finishonfailure = true;

  /// Whether the run raises the busy cursor, and whether its end takes it away. A run within
  /// another leaves it up.
  bool raisesbusycursor = true;
  bool clearsbusycursor = true;

  /// Milliseconds behind each step in which the instrument takes in what was written.
  std::int32_t pause = 0;
};

/// Reads of several settings whose errors are shown further up.
inline constexpr RunPolicy kReadRun{.failedtext = EText::FAILED_TO_QUERY,
                                    .abortedtext = EText::ABORTED_QUERYING};

/// Reads of a conversion's values: they end at the user.
inline constexpr RunPolicy kConversionReadRun{.failedtext = EText::FAILED_TO_QUERY,
                                              .abortedtext = EText::ABORTED_QUERYING,
                                              .errortext = EText::ATTEMPTING_TO_QUERY,
                                              .finishonerror = true};

/// Reads of one range of a conversion, within the run of the whole conversion, which says that the
/// range failed.
inline constexpr RunPolicy kRangeReadRun{.failedtext = EText::FAILED_TO_QUERY,
                                         .abortedtext = EText::NO_TEXT,
                                         .errortext = EText::ATTEMPTING_TO_QUERY,
                                         .finishonerror = true,
                                         .clearsbusycursor = false};

inline constexpr std::int32_t kWritePause = 300;  // ms

/// Writes of several settings whose errors are shown further up.
inline constexpr RunPolicy kWriteRun{.failedtext = EText::FAILED_TO_UPDATE,
                                     .abortedtext = EText::ABORTED_UPDATING,
                                     .hidesbeforeabort = false,
                                     .hidesonerror = false,
                                     .finishonerror = true,
                                     .pause = kWritePause};

/// Writes of a conversion's named values. An error is shown and nothing more: the box clears the
/// busy cursor, and the release of the reporter takes its display away.
inline constexpr RunPolicy kConversionWriteRun{.failedtext = EText::FAILED_TO_UPDATE,
                                               .abortedtext = EText::ABORTED_UPDATING,
                                               .errortext = EText::ATTEMPTING_TO_UPDATE,
                                               .hidesonerror = false,
                                               .pause = kWritePause};

/// Writes of a conversion's numbered values.
inline constexpr RunPolicy kSeriesWriteRun{.failedtext = EText::NO_TEXT,
                                           .abortedtext = EText::ABORTED_UPDATING,
                                           .errortext = EText::ATTEMPTING_TO_UPDATE,
                                           .finishonerror = true,
                                           .pause = kWritePause};

/// Writes of one range of a conversion, within the run of the whole conversion.
inline constexpr RunPolicy kRangeWriteRun{.failedtext = EText::NO_TEXT,
                                          .abortedtext = EText::NO_TEXT,
                                          .errortext = EText::ATTEMPTING_TO_UPDATE,
                                          .finishonerror = true,
                                          .finishonfailure = false,
                                          .clearsbusycursor = false,
                                          .pause = kWritePause};

/// The steps of a scan sequence, within the run of the settings or alone. Who stops this one gets a
/// shorter list and is told nothing.
inline constexpr RunPolicy kScanSequenceRun{.failedtext = EText::NO_TEXT,
                                            .abortedtext = EText::NO_TEXT,
                                            .raisesbusycursor = false,
                                            .clearsbusycursor = false};

/// A step gives false when it could not do its work without raising an error.
struct RunStep {
  RunStep(std::string stepname, std::function<bool()> work)
      : name(std::move(stepname)), run(std::move(work)) {}
  RunStep(EText title, std::function<bool()> work)
      : RunStep(ResourceText(title), std::move(work)) {}

  std::string name;
  std::function<bool()> run;
};

/// What the body of a run works with.
class CLongRun {
 public:
  /// Opens a stretch of steps; `share` is the percent of one.
  void Start(const std::string& text, double share);

  /// Advances the reporter. False when the user wants the run to end; nothing is said of it.
  bool Advance();

  /// Runs the steps in their order, each with the policy's pause behind it. False after a step that
  /// failed or an abort; what the policy has to say of it has then been said.
  bool Steps(std::initializer_list<RunStep> steps);
  bool Step(const RunStep& step);

  /// A step for each of `rows`, which are pointers, under its title: `work` is done with the row.
  template <class Rows, class Work>
  bool Steps(const Rows& rows, const Work& work) {
    for (const auto* const row : rows) {
      if (!Step({TitleOf(*row), [&] { return work(*row); }})) return false;
    }
    return true;
  }

  /// A step that has pauses of its own.
  bool StepWithoutPause(const RunStep& step);

  /// A step behind which the reporter doesn't advance and the user is not asked.
  bool LastStep(const RunStep& step);

  /// The policy's pause.
  void Pause();

  /// Takes the display off the screen, so that another display or a message box can come up.
  void Hide();

  /// Ends a stretch; another `Start` may follow.
  void Finish();

 private:
  friend bool RunLong(const Components& components, const RunPolicy& policy,
                      std::optional<ui::CWindow*> frm, const std::function<bool(CLongRun&)>& body,
                      const std::string& firstname);

  CLongRun(const RunPolicy& policy, std::string name) : policy_(policy), name_(std::move(name)) {}
  bool StopWith(EText text, bool hide, const std::string& value = {});
  void End();

  const RunPolicy& policy_;
  std::unique_ptr<CVaneProgress> progress_;
  std::string name_;  // of the step that the run is on
  bool failed_ = false;
};

/// Makes the reporter, raises the busy cursor, runs `body`, and takes both away again; the result
/// is that of `body`. With `frm` given, the display belongs to that window and shows itself when
/// there is one; without it, the reporter stays as it came. An error meets what the policy says;
/// until the first step it belongs to `firstname`.
bool RunLong(const Components& components, const RunPolicy& policy, std::optional<ui::CWindow*> frm,
             const std::function<bool(CLongRun&)>& body, const std::string& firstname = {});

}  // namespace vane
