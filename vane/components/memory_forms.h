// Windows without a screen: the back end for tests and for hosts that run unattended. What the user
// would do is told beforehand, and what nobody told is a fault.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vane/components/form.h"
#include "vane/components/platform.h"
#include "vane/components/user.h"

namespace vane {

/// A window that nobody sees: it paints itself and closes.
class CUnseenView final : public ui::CFormView {
 public:
  void Load(ui::CForm&) override {}
  void Changed(ui::CControl&, ui::EAspect) override {}
  void RunModal(ui::CForm& form, ui::CWindow*) override { form.Paint(); }
};

/// Lives longer than the forms that it makes.
class CMemoryForms {
 public:
  /// What the user does in the window `name` when it has come up and painted itself; the queue is
  /// worked off in order. He has to leave the window, or what is in it has to.
  void Expect(std::string name, std::function<void(ui::CUser& user)> acts);

  /// Answers the next message box, which has to hold `part`.
  void ExpectBox(std::string part, EBoxButton answer = EBoxButton::OK);

  /// Acts within the n-th pass of the message queue from now on; 1 is the next one.
  void AtPass(std::size_t pass, std::function<void()> acts);

  /// A window that nobody expected, or one that is left open, raises an error.
  std::unique_ptr<ui::CForm> Make(const std::string& name);

  // What a platform hands on. A box that nobody expected gets the answer No, or OK.
  EBoxButton MessageBox(const std::string& text, std::int32_t flags);
  void RunMessageQueue();

  /// Is told what every back end is told.
  void OnChanged(std::function<void(ui::CControl& control, ui::EAspect aspect)> observer) {
    observer_ = std::move(observer);
  }

  /// The window that the last form came up above; null when it had none.
  const ui::CWindow* LastOwner() const { return lastowner_; }

  /// What came up and was not expected, and what was expected and has not come up, a line each;
  /// empty when everything went as told.
  std::string Faults() const;

 private:
  class CMemoryView;

  struct ExpectedWindow {
    std::string name;
    std::function<void(ui::CUser& user)> acts;
  };
  struct ExpectedBox {
    std::string part;
    EBoxButton answer;
  };
  struct ExpectedPass {
    std::size_t pass;
    std::function<void()> acts;
  };

  std::deque<ExpectedWindow> windows_;
  std::deque<ExpectedBox> boxes_;
  std::vector<ExpectedPass> acts_;
  std::size_t passes_ = 0;
  std::string faults_;
  std::function<void(ui::CControl& control, ui::EAspect aspect)> observer_;
  const ui::CWindow* lastowner_ = nullptr;
};

}  // namespace vane
