#include "vane/components/memory_forms.h"

#include <utility>

#include "vane/components/library_error.h"

namespace vane {

class CMemoryForms::CMemoryForm final : public ui::CForm {
 public:
  CMemoryForm(CMemoryForms& forms, const std::string& name) : CForm(name), forms_(forms) {}

 private:
  void RunModal(ui::CWindow* owner) override {
    forms_.lastowner_ = owner;
    Paint();
    auto& expected = forms_.expected_;
    if (expected.empty() || expected.front().name != Name()) {
      throw LibraryError(ERR_PLATFORM_CALL, "CMemoryForms",
                         "Nobody expected the window " + Name() + ".");
    }
    const Expected window = std::move(expected.front());
    expected.pop_front();
    window.user(*this);
    if (Shown()) {
      throw LibraryError(ERR_PLATFORM_CALL, "CMemoryForms",
                         "The window " + Name() + " was left open.");
    }
  }

  CMemoryForms& forms_;
};

void CMemoryForms::Expect(std::string name, std::function<void(ui::CForm& form)> user) {
  expected_.push_back({std::move(name), std::move(user)});
}

std::unique_ptr<ui::CForm> CMemoryForms::Make(const std::string& name) {
  return std::make_unique<CMemoryForm>(*this, name);
}

}  // namespace vane
