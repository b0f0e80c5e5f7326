// Windows of the toolkit seam, drawn with Qt 6 Widgets.
//
// Each control is its native widget, which shows the state that the library keeps and changes none
// of it by itself: what a user does goes to `ui::CUser`, and the widget is then brought in line
// with what has come of it. Keys, focus, Return, Escape, F1, access keys and the close box are
// taken from the toolkit for that.
//
// A window lays itself out from the order of its controls (`qt_layout.h`). It is modal to the whole
// program, and `ui::CForm::ShowModal` returns when it is hidden. Lives on the user-interface
// thread.
#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "vane/components/form.h"
#include "vane/components/user.h"

namespace vane {

class CControlPeer;
class CQtDialog;

/// A window of the program itself, as the owner of the library's.
class CQtWindow final : public ui::CWindow {
 public:
  explicit CQtWindow(QWidget& widget) : widget_(&widget) {}

  /// Null when it is gone.
  QWidget* Widget() const { return widget_; }

 private:
  const QPointer<QWidget> widget_;
};

class CQtView final : public ui::CFormView {
 public:
  CQtView();
  ~CQtView() override;

  void Load(ui::CForm& form) override;
  void Changed(ui::CControl& control, ui::EAspect aspect) override;
  void RunModal(ui::CForm& form, ui::CWindow* owner) override;
  void DrawNow() override;

  /// The widget that shows `control`; the window's own for the form. Good while the window is
  /// loaded.
  QWidget* WidgetOf(const ui::CControl& control) const;

 private:
  friend class CQtDialog;

  void Mirror(ui::CControl& control, ui::EAspect aspect);
  void ShowFocus();

  std::unique_ptr<ui::CUser> user_;
  std::unique_ptr<CQtDialog> dialog_;
  std::map<const ui::CControl*, std::unique_ptr<CControlPeer>> peers_;
  std::function<void()> ends_;  // of the run that shows the window
};

/// The widget of the window `owner`; null for none, and for one that has no widget.
QWidget* WidgetOfWindow(ui::CWindow* owner);

}  // namespace vane
