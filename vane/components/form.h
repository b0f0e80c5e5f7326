// A window of the seam, its controls, and what a back end is told of them. See `ui.h`.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vane/components/ui.h"

namespace vane::ui {

/// A back end, as one window sees it: draws it, mirrors its state, and reports through `CUser` what
/// the user does. Implemented by an adapter; the form owns it.
class CFormView {
 public:
  virtual ~CFormView() = default;

  /// Before the form's load event. Raises an error that says so when it can't draw one of the
  /// controls.
  virtual void Load(CForm& form) = 0;

  /// A state has changed; the new one is there to be read. Only between `Load` and the end. Must
  /// not raise.
  virtual void Changed(CControl& control, EAspect aspect) = 0;

  /// Shows the window, calls `CForm::Paint` once it is there, and returns when `Shown` has become
  /// false.
  virtual void RunModal(CForm& form, CWindow* owner) = 0;

  /// Brings the screen in line with the state at once.
  virtual void DrawNow() {}
};

/// Of the window on the screen, in the back end's own unit.
struct Placement {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;

  friend bool operator==(const Placement&, const Placement&) = default;
};

/// A window with its controls, which it owns. Its caption is the window's title; disabling it
/// disables the whole window.
class CForm final : public CWindow, public CControl {
 public:
  CForm(const std::string& name, std::unique_ptr<CFormView> view);
  ~CForm() override;

  /// Adds a control of a kind, with what its constructor takes behind the socket. Names are unique
  /// within a form. Controls are added before the form is loaded; the focus goes through them in
  /// this order.
  template <class Control, class... Arguments>
  Control& Add(const std::string& name, CFrame* frame = nullptr, Arguments&&... arguments) {
    auto added = std::make_unique<Control>(Socket{*this, name, frame},
                                           std::forward<Arguments>(arguments)...);
    Control& control = *added;
    controls_.push_back(std::move(added));
    return control;
  }

  /// In the order in which they were added.
  const std::vector<std::unique_ptr<CControl>>& Controls() const { return controls_; }

  /// The control of that name and kind; raises `std::invalid_argument` when there is none.
  template <class Control>
  Control& Find(const std::string& name) const {
    return dynamic_cast<Control&>(FindControl(name));
  }

  std::int32_t HelpContext() const { return helpcontext_; }
  void SetHelpContext(std::int32_t context) { helpcontext_ = context; }

  /// Where the window was last, or shall come up; nothing leaves that to the back end.
  const std::optional<Placement>& Place() const { return place_; }
  void SetPlace(const Placement& place) { Change(place_, {place}, EAspect::PLACE); }

  void OnLoad(Handler handler) { load_ = std::move(handler); }
  void OnFirstPaint(Handler handler) { firstpaint_ = std::move(handler); }
  void OnUnload(Handler handler) { unload_ = std::move(handler); }

  /// Runs inside a catch when an event that a user caused, or the first painting, has raised; the
  /// window stays as it is. Without a handler the window closes, and `ShowModal` raises the error.
  void OnFailure(Handler handler) { failed_ = std::move(handler); }

  /// Nothing when the window is loaded.
  void Load();
  /// Loads the window if it isn't loaded, and shows it until it is hidden.
  void ShowModal(CWindow* owner);
  bool Shown() const { return shown_; }
  void Hide() { Change(shown_, false, EAspect::SHOWN); }
  /// Undoes the loading; nothing when there was none.
  void Unload();

  /// For the back end, after each painting: the first one after the loading runs the event.
  void Paint();
  /// Runs the event of the first painting again, as a part of the running program.
  void PaintAnew();
  void DrawNow() { view_->DrawNow(); }

  /// The control with the focus; null when none can have it.
  CControl* Focused() const { return focused_; }
  /// Moves the focus, with its events; false when `control` can't have it: in a window that is
  /// disabled or not shown, closed itself, or of a kind without focus.
  bool SetFocus(CControl& control);

  /// While the event of a button, a command list or the first painting runs. A user starts no
  /// second one then, nor closes the window.
  bool IsRunning() const { return running_; }

  /// The window that was shown last and is still there; null when there is none. The user reaches
  /// no other.
  static CForm* Active();

 private:
  friend class CControl;
  friend class CUser;

  CControl& FindControl(const std::string& name) const;
  CButton* FindButton(EButtonRole role) const;

  // Runs `body` for the user: no error leaves it. False when there was one.
  bool Guarded(const Handler& body, bool iscommand = false);
  // Inside a catch: hands the pending error to the failure handler, or closes the window with it.
  void Fail();
  void MoveFocus(CControl* control);
  // The next open control that takes the focus, from that after `from` on and around; null is none.
  CControl* NextStop(const CControl* from, bool forward) const;
  // Takes the focus from a control that can't have it any more.
  void SettleFocus();

  std::vector<std::unique_ptr<CControl>> controls_;
  CControl* focused_ = nullptr;
  std::int32_t helpcontext_ = 0;
  std::optional<Placement> place_;
  bool loaded_ = false;
  bool painted_ = false;
  bool shown_ = false;
  bool running_ = false;
  std::exception_ptr failure_;  // that closes the window
  Handler load_;
  Handler firstpaint_;
  Handler unload_;
  Handler failed_;
  const std::unique_ptr<CFormView> view_;  // goes before the controls that it mirrors
};

}  // namespace vane::ui
