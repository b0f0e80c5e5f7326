// The native widgets of a window's controls: each shows the state of its control and reports what
// the user does with it.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>

#include "vane/components/form.h"
#include "vane/components/user.h"

namespace vane {

/// One control on the screen. The widget belongs to the window.
class CControlPeer {
 public:
  CControlPeer(ui::CControl& control, QWidget* widget) : control_(control), widget_(widget) {}
  virtual ~CControlPeer() = default;
  CControlPeer(const CControlPeer&) = delete;
  CControlPeer& operator=(const CControlPeer&) = delete;

  ui::CControl& Control() const { return control_; }
  QWidget& Widget() const { return *widget_; }
  /// What gets the focus of the control.
  virtual QWidget& FocusWidget() const { return *widget_; }

  /// Shows the state of the control: that of one aspect.
  void Mirror(ui::EAspect aspect);
  /// All of it.
  void MirrorAll();

  /// While the widget is being brought in line: what it reports then is nobody's doing.
  bool IsMirroring() const { return mirroring_; }

  /// A key that the widget's window has no use for. True when the control has.
  virtual bool TakeKey(int, Qt::KeyboardModifiers, const QString&) { return false; }

 protected:
  virtual void Show(ui::EAspect aspect) = 0;

  /// Reports to the door of the user, and brings the widget in line whatever has come of it.
  template <class Report>
  void TellUser(Report&& report) {
    if (mirroring_) return;
    report();
    MirrorAll();
  }

 private:
  ui::CControl& control_;
  QWidget* const widget_;
  bool mirroring_ = false;
};

/// The widget for `control` as a child of `parent`. `user` outlives it.
std::unique_ptr<CControlPeer> MakePeer(ui::CControl& control, ui::CUser& user, QWidget* parent);

}  // namespace vane
