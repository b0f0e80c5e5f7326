// The platform and the factory of the desktop program: as of any program with windows, and besides
// they end what the library is doing when the program is about to end.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "adapters/qt/qt_factory.h"
#include "adapters/qt/qt_platform.h"

namespace vane::desktop {

class CDesktopPlatform final : public CQtPlatform {
 public:
  using CQtPlatform::CQtPlatform;

  /// From now on no box comes up, and a question gets No.
  void BeginToEnd() { isquiet_ = true; }
  /// Nobody is there: the same, and standard error has what a box would have said.
  void SetUnattended() { isquiet_ = isprinting_ = true; }

  /// How many boxes there were up to now that were no question.
  std::int32_t Boxes() const { return boxes_; }

  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;

 private:
  bool isquiet_ = false;
  bool isprinting_ = false;
  std::int32_t boxes_ = 0;
};

class CDesktopFactory final : public CQtFactory {
 public:
  explicit CDesktopFactory(std::shared_ptr<LineSettings> line) : CQtFactory(std::move(line)) {}

  /// The text of the latest reading, as the readout has sent it.
  const std::string& ReadingText() const { return *reading_; }

  /// From now on a run of the library stops behind its present step.
  void BeginToEnd() { state_->ends = state_->isstopped = true; }

  /// Whether the user has stopped a run since `ForgetStop`, or the program is about to end.
  bool IsStopped() const { return state_->isstopped; }
  void ForgetStop() { state_->isstopped = state_->ends; }

  /// Makes the progress of each run from now on; null: a window for each.
  void SetProgress(std::function<std::unique_ptr<CVaneProgress>()> maker) {
    progress_ = std::move(maker);
  }

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;

  struct RunState {
    bool ends = false;
    bool isstopped = false;
  };

 private:
  const std::shared_ptr<std::string> reading_ = std::make_shared<std::string>();
  std::function<std::unique_ptr<CVaneProgress>()> progress_;
  const std::shared_ptr<RunState> state_ = std::make_shared<RunState>();
};

}  // namespace vane::desktop
