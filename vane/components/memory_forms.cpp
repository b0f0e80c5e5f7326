#include "vane/components/memory_forms.h"

#include "vane/components/library_error.h"

namespace vane {

class CMemoryForms::CMemoryView final : public ui::CFormView {
 public:
  explicit CMemoryView(CMemoryForms& forms) : forms_(forms) {}

  void Load(ui::CForm&) override {}

  void Changed(ui::CControl& control, ui::EAspect aspect) override {
    if (forms_.observer_) forms_.observer_(control, aspect);
  }

  void RunModal(ui::CForm& form, ui::CWindow* owner) override {
    forms_.lastowner_ = owner;
    auto& expected = forms_.windows_;
    if (expected.empty() || expected.front().name != form.Name()) {
      Fail("Nobody expected the window " + form.Name() + ".");
    }
    const ExpectedWindow window = std::move(expected.front());
    expected.pop_front();
    form.Paint();
    ui::CUser user(form);
    if (!form.Shown()) {
      forms_.faults_ += "The window " + form.Name() + " closed before anybody acted.\n";
      return;
    }
    window.acts(user);
    if (form.Shown()) Fail("The window " + form.Name() + " was left open.");
  }

 private:
  [[noreturn]] void Fail(const std::string& text) {
    forms_.faults_ += text + "\n";
    throw LibraryError(ERR_PLATFORM_CALL, "CMemoryForms", text);
  }

  CMemoryForms& forms_;
};

void CMemoryForms::Expect(std::string name, std::function<void(ui::CUser& user)> acts) {
  windows_.push_back({std::move(name), std::move(acts)});
}

void CMemoryForms::ExpectBox(std::string part, EBoxButton answer) {
  boxes_.push_back({std::move(part), answer});
}

void CMemoryForms::AtPass(std::size_t pass, std::function<void()> acts) {
  acts_.push_back({passes_ + pass, std::move(acts)});
}

std::unique_ptr<ui::CForm> CMemoryForms::Make(const std::string& name) {
  return std::make_unique<ui::CForm>(name, std::make_unique<CMemoryView>(*this));
}

EBoxButton CMemoryForms::MessageBox(const std::string& text, std::int32_t flags) {
  const bool asks = (flags & kBoxYesNo) != 0;
  if (boxes_.empty() || text.find(boxes_.front().part) == text.npos) {
    faults_ += "Nobody expected the box \"" + text + "\".\n";
    return asks ? EBoxButton::NO : EBoxButton::OK;
  }
  const ExpectedBox box = std::move(boxes_.front());
  boxes_.pop_front();
  if (asks == (box.answer == EBoxButton::OK)) {
    faults_ += "The box \"" + text + "\" has no such button as was expected.\n";
  }
  return box.answer;
}

void CMemoryForms::RunMessageQueue() {
  // What acts may come to further passes.
  const std::size_t pass = ++passes_;
  for (std::size_t i = 0; i < acts_.size();) {
    if (acts_[i].pass != pass) {
      ++i;
      continue;
    }
    const ExpectedPass due = std::move(acts_[i]);
    acts_.erase(acts_.begin() + static_cast<std::ptrdiff_t>(i));
    due.acts();
    i = 0;
  }
}

std::string CMemoryForms::Faults() const {
  std::string faults = faults_;
  for (const ExpectedWindow& window : windows_) {
    faults += "The window " + window.name + " has not come up.\n";
  }
  for (const ExpectedBox& box : boxes_) {
    faults += "The box \"" + box.part + "\" has not come up.\n";
  }
  for (const ExpectedPass& act : acts_) {
    faults += "The queue was not passed to the " + std::to_string(act.pass) + ". time.\n";
  }
  return faults;
}

}  // namespace vane
