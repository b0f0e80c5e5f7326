#include "vane/components/form.h"

#include <algorithm>
#include <stdexcept>

namespace vane::ui {
namespace {

// The windows that are shown, the top one last: a user of one process has one screen.
std::vector<CForm*> g_shown;

// A flag that stands while it lives, if at all.
class CRaised {
 public:
  CRaised(bool& flag, bool raise) : flag_(flag), before_(std::exchange(flag, flag || raise)) {}
  ~CRaised() { flag_ = before_; }
  CRaised(const CRaised&) = delete;
  CRaised& operator=(const CRaised&) = delete;

 private:
  bool& flag_;
  const bool before_;
};

class COnTop {
 public:
  explicit COnTop(CForm& form) : form_(form) { g_shown.push_back(&form); }
  ~COnTop() { std::erase(g_shown, &form_); }
  COnTop(const COnTop&) = delete;
  COnTop& operator=(const COnTop&) = delete;

 private:
  CForm& form_;
};

}  // namespace

CForm::CForm(const std::string& name, std::unique_ptr<CFormView> view)
    : CControl({*this, name}, EKind::FORM), view_(std::move(view)) {}

CForm::~CForm() = default;

CForm* CForm::Active() { return g_shown.empty() ? nullptr : g_shown.back(); }

CControl& CForm::FindControl(const std::string& name) const {
  for (const auto& control : controls_) {
    if (control->Name() == name) return *control;
  }
  throw std::invalid_argument("The window " + Name() + " has no control " + name + ".");
}

CButton* CForm::FindButton(EButtonRole role) const {
  for (const auto& control : controls_) {
    if (control->Kind() != EKind::BUTTON) continue;
    auto& button = static_cast<CButton&>(*control);
    if (button.Role() == role) return &button;
  }
  return nullptr;
}

void CForm::Load() {
  if (loaded_) return;
  view_->Load(*this);
  loaded_ = true;
  painted_ = false;
  try {
    Run(load_);
  } catch (...) {
    loaded_ = false;
    throw;
  }
}

void CForm::ShowModal(CWindow* owner) {
  if (shown_) throw std::logic_error("The window " + Name() + " is shown already.");
  Load();
  {
    const COnTop ontop(*this);
    failure_ = nullptr;
    focused_ = nullptr;
    Change(shown_, true, EAspect::SHOWN);
    try {
      Guarded([this] { MoveFocus(NextStop(nullptr, true)); });
      if (shown_) view_->RunModal(*this, owner);
    } catch (...) {
      Hide();
      throw;
    }
    Hide();
  }
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void CForm::Unload() {
  if (!std::exchange(loaded_, false)) return;
  shown_ = false;
  Run(unload_);
}

void CForm::Paint() {
  if (painted_) return;
  Guarded([this] { PaintAnew(); });
  SettleFocus();
}

void CForm::PaintAnew() {
  painted_ = true;
  const CRaised running(running_, true);
  Run(firstpaint_);
}

bool CForm::Guarded(const Handler& body, bool iscommand) {
  const CRaised running(running_, iscommand);
  try {
    body();
    return true;
  } catch (...) {
    Fail();
  }
  return false;
}

void CForm::Fail() {
  try {
    if (!failed_) throw;
    failed_();
  } catch (...) {
    failure_ = std::current_exception();
    Hide();
  }
}

bool CForm::SetFocus(CControl& control) {
  if (!shown_ || !Enabled() || !control.IsOpen() || !control.TakesFocus()) return false;
  MoveFocus(&control);
  return true;
}

void CForm::MoveFocus(CControl* control) {
  if (focused_ == control) return;
  if (focused_ != nullptr) Run(focused_->lostfocus_);
  // What the control that is left does may have closed the other.
  if (control != nullptr && !control->IsOpen()) return;
  focused_ = control;
  if (control == nullptr) {
    Tell(EAspect::FOCUS);
    return;
  }
  control->Tell(EAspect::FOCUS);
  Run(control->gotfocus_);
}

CControl* CForm::NextStop(const CControl* from, bool forward) const {
  const auto count = static_cast<std::ptrdiff_t>(controls_.size());
  const auto found = std::ranges::find(controls_, from, &std::unique_ptr<CControl>::get);
  std::ptrdiff_t place = found != controls_.end() ? found - controls_.begin() : forward ? -1 : 0;
  for (std::ptrdiff_t tries = 0; tries < count; ++tries) {
    place = (place + (forward ? 1 : count - 1)) % count;
    CControl& control = *controls_[static_cast<std::size_t>(place)];
    if (control.TakesFocus() && control.IsOpen()) return &control;
  }
  return nullptr;
}

void CForm::SettleFocus() {
  if (!shown_ || (focused_ != nullptr && focused_->IsOpen())) return;
  Guarded([this] { MoveFocus(NextStop(focused_, true)); });
}

}  // namespace vane::ui
