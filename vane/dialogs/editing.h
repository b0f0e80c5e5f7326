// What the two editing dialogs have in common: the steps of a first painting, the question before a
// write, and the window's place. How they gather, apply and close differs, and is each one's own.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "vane/components/form.h"
#include "vane/components/registry.h"
#include "vane/support/text_table.h"

namespace vane {

/// The code of the selected entry. Without one, the platform's out-of-range error.
std::int32_t SelectedCode(const ui::CItemList& list);

/// `text` with ":" behind it, as labels and frames have it.
std::string WithColon(EText text);

/// Asks `question`, Yes or No.
bool AskToWrite(EText question);

/// Of the registry component, which must be there to restore. What fails in saving is swallowed: a
/// dialog on its way out has nothing to tell.
void RestorePlacement(const std::shared_ptr<CVaneRegistry>& registry, ui::CForm& form);
void SavePlacement(const std::shared_ptr<CVaneRegistry>& registry, ui::CForm& form) noexcept;

/// A flag that stands while it lives.
class CStanding {
 public:
  explicit CStanding(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~CStanding() { flag_ = before_; }
  CStanding(const CStanding&) = delete;
  CStanding& operator=(const CStanding&) = delete;

 private:
  bool& flag_;
  const bool before_;
};

/// Loads a form's dialog now and unloads it on every road out of the scope.
class CLoadedForm {
 public:
  explicit CLoadedForm(ui::CForm& form) : form_(form) { form_.Load(); }
  ~CLoadedForm() { form_.Unload(); }
  CLoadedForm(const CLoadedForm&) = delete;
  CLoadedForm& operator=(const CLoadedForm&) = delete;

 private:
  ui::CForm& form_;
};

/// The steps in which a dialog reads the instrument. One that raises shows a box and takes OK and
/// Apply away, and the next one is run all the same. At the end the whole window is enabled, also
/// when not even the box could be shown: the user has to get out.
class CReadingSteps {
 public:
  CReadingSteps(ui::CForm& form, ui::CButton& ok, ui::CButton& apply)
      : form_(form), ok_(ok), apply_(apply) {}
  ~CReadingSteps() { form_.SetEnabled(true); }
  CReadingSteps(const CReadingSteps&) = delete;
  CReadingSteps& operator=(const CReadingSteps&) = delete;

  template <class Step>
  void Do(Step&& step) {
    try {
      std::forward<Step>(step)();
    } catch (...) {
      ShowPending();
    }
  }

  /// A step with a result; one that has raised goes on as if it had given true.
  template <class Read>
  bool Succeeds(Read&& read) {
    bool success = true;
    Do([&] { success = std::forward<Read>(read)(); });
    return success;
  }

  /// The steps for a read that gave false: says so, and takes OK and Apply away.
  void TellUnable();

 private:
  // To be called inside a catch.
  void ShowPending();
  void TakeAway();

  ui::CForm& form_;
  ui::CButton& ok_;
  ui::CButton& apply_;
};

}  // namespace vane
