// Windows without a screen: the back end for tests and for hosts that run unattended. What the user
// would do is queued beforehand.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "vane/components/ui.h"

namespace vane {

/// Lives longer than the forms that it makes.
class CMemoryForms {
 public:
  /// What the user does in the window `name` when it comes up; the queue is worked off in order.
  /// It has to hide the window.
  void Expect(std::string name, std::function<void(ui::CForm& form)> user);

  /// A form that shows itself to the queue. A window that nobody expected, or one that is left
  /// open, raises an error.
  std::unique_ptr<ui::CForm> Make(const std::string& name);

  /// The window that the last form came up above; null when it had none.
  const ui::CWindow* LastOwner() const { return lastowner_; }

  /// How many windows were expected and have not come up.
  std::size_t Unused() const { return expected_.size(); }

 private:
  class CMemoryForm;

  struct Expected {
    std::string name;
    std::function<void(ui::CForm& form)> user;
  };

  std::deque<Expected> expected_;
  const ui::CWindow* lastowner_ = nullptr;
};

}  // namespace vane
