#include "adapters/qt/qt_view.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>
#include <utility>

#include "adapters/qt/qt_layout.h"
#include "adapters/qt/qt_peers.h"
#include "adapters/qt/qt_text.h"

namespace vane {
namespace {

// The windows that are loaded, for their owners' sake.
std::map<const ui::CForm*, QWidget*> g_windows;

// A click in a window that is not active yet comes as the window's activity. What had the focus
// before gets it back the same way, which changes nothing.
bool IsMeantByUser(Qt::FocusReason reason) {
  return reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
         reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason ||
         reason == Qt::ActiveWindowFocusReason;
}

}  // namespace

// The window itself: takes the keys and the focus from all that is in it.
class CQtDialog final : public QDialog {
 public:
  CQtDialog(CQtView& view, ui::CUser& user) : view_(view), user_(user) {
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  }

  void Watch(CControlPeer& peer) {
    watched_[&peer.Widget()] = &peer;
    peer.Widget().installEventFilter(this);
    for (auto* const child : peer.Widget().findChildren<QWidget*>()) {
      // The list that a drop-down drops is a window of its own, with keys of its own.
      if (child->focusPolicy() == Qt::NoFocus || child->window() != this) continue;
      watched_[child] = &peer;
      child->installEventFilter(this);
    }
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    const auto found = watched_.find(object);
    if (found == watched_.end()) return QDialog::eventFilter(object, event);
    switch (event->type()) {
      case QEvent::ShortcutOverride:
        // Access keys are the door's, not the toolkit's.
        if (IsAccessKey(static_cast<const QKeyEvent&>(*event))) event->accept();
        return false;
      case QEvent::KeyPress:
        return TakeKey(*found->second, static_cast<const QKeyEvent&>(*event));
      case QEvent::FocusIn:
        if (IsMeantByUser(static_cast<const QFocusEvent&>(*event).reason()) && !mirroring_) {
          Tell([&] { user_.Focus(found->second->Control()); });
        }
        return false;
      default:
        return false;
    }
  }

  /// Shows what has the focus, as the form has it.
  void SetFocusTo(QWidget* widget) {
    const bool before = std::exchange(mirroring_, true);
    if (widget != nullptr) {
      widget->setFocus(Qt::OtherFocusReason);
    } else if (focusWidget() != nullptr) {
      focusWidget()->clearFocus();
    }
    mirroring_ = before;
  }

  void PlaceAt(const ui::Placement& place) {
    const bool before = std::exchange(mirroring_, true);
    setGeometry(place.left, place.top, place.width, place.height);
    mirroring_ = before;
  }

 protected:
  bool focusNextPrevChild(bool next) override {
    Tell([&] { user_.Tab(next); });
    return true;
  }

  void keyPressEvent(QKeyEvent* event) override { TakeWindowKey(*event); }

  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    Tell([&] { user_.CloseBox(); });
  }

  void reject() override {
    Tell([&] { user_.Escape(); });
  }

  void moveEvent(QMoveEvent* event) override {
    QDialog::moveEvent(event);
    TellPlace();
  }

  void resizeEvent(QResizeEvent* event) override {
    QDialog::resizeEvent(event);
    TellPlace();
  }

 private:
  static bool IsAccessKey(const QKeyEvent& key) {
    const int code = key.key();
    return key.modifiers() == Qt::AltModifier &&
           ((code >= Qt::Key_A && code <= Qt::Key_Z) || (code >= Qt::Key_0 && code <= Qt::Key_9));
  }

  // Behind what the user has done, whatever came of it, the focus is where the form has it.
  template <class Report>
  void Tell(Report&& report) {
    report();
    view_.ShowFocus();
  }

  bool TakeKey(CControlPeer& peer, const QKeyEvent& key) {
    if (TakeWindowKey(key)) return true;
    return peer.TakeKey(key.key(), key.modifiers(), key.text());
  }

  bool TakeWindowKey(const QKeyEvent& key) {
    if (IsAccessKey(key)) {
      const char code = static_cast<char>(key.key());
      Tell([&] { user_.PressAccessKey(code >= 'A' ? static_cast<char>(code - 'A' + 'a') : code); });
      return true;
    }
    if (key.modifiers() != Qt::NoModifier && key.modifiers() != Qt::KeypadModifier) return false;
    switch (key.key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
        Tell([&] { user_.Return(); });
        return true;
      case Qt::Key_Escape:
        Tell([&] { user_.Escape(); });
        return true;
      case Qt::Key_F1:
        Tell([&] { user_.Help(); });
        return true;
      default:
        return false;
    }
  }

  void TellPlace() {
    if (mirroring_ || !isVisible()) return;
    const QRect place = geometry();
    user_.Move({place.x(), place.y(), place.width(), place.height()});
  }

  CQtView& view_;
  ui::CUser& user_;
  std::map<QObject*, CControlPeer*> watched_;
  bool mirroring_ = false;
};

QWidget* WidgetOfWindow(ui::CWindow* owner) {
  if (const auto* const window = dynamic_cast<CQtWindow*>(owner)) return window->Widget();
  const auto found = g_windows.find(dynamic_cast<ui::CForm*>(owner));
  return found == g_windows.end() ? nullptr : found->second;
}

CQtView::CQtView() = default;

CQtView::~CQtView() {
  if (user_) g_windows.erase(&user_->Form());
}

void CQtView::Load(ui::CForm& form) {
  peers_.clear();
  user_ = std::make_unique<ui::CUser>(form);
  dialog_ = std::make_unique<CQtDialog>(*this, *user_);
  g_windows[&form] = dialog_.get();
  dialog_->setObjectName(ToQt(form.Name()));
  for (const auto& control : form.Controls()) {
    QWidget* const parent =
        control->Frame() == nullptr ? dialog_.get() : &peers_.at(control->Frame())->Widget();
    auto peer = MakePeer(*control, *user_, parent);
    peer->Widget().setObjectName(ToQt(control->Name()));
    dialog_->Watch(*peer);
    peers_[control.get()] = std::move(peer);
  }
  LayOutWindow(form, *dialog_,
               [this](const ui::CControl& control) -> QWidget& { return *WidgetOf(control); });
  for (const auto& [control, peer] : peers_) peer->MirrorAll();
  dialog_->setWindowTitle(ToQt(form.Caption()));
}

QWidget* CQtView::WidgetOf(const ui::CControl& control) const {
  const auto found = peers_.find(&control);
  return found == peers_.end() ? dialog_.get() : &found->second->Widget();
}

void CQtView::Changed(ui::CControl& control, ui::EAspect aspect) {
  if (!dialog_) return;
  if (control.Kind() == ui::EKind::FORM) return Mirror(control, aspect);
  if (aspect == ui::EAspect::FOCUS) return ShowFocus();
  peers_.at(&control)->Mirror(aspect);
}

void CQtView::Mirror(ui::CControl& control, ui::EAspect aspect) {
  const ui::CForm& form = user_->Form();
  switch (aspect) {
    case ui::EAspect::CAPTION:
      dialog_->setWindowTitle(ToQt(control.Caption()));
      break;
    case ui::EAspect::ENABLED:
      dialog_->setEnabled(control.Enabled());
      if (control.Enabled()) ShowFocus();
      break;
    case ui::EAspect::FOCUS:
      ShowFocus();
      break;
    case ui::EAspect::PLACE:
      if (form.Place()) dialog_->PlaceAt(*form.Place());
      break;
    case ui::EAspect::SHOWN:
      if (!form.Shown() && ends_) ends_();
      break;
    default:
      break;
  }
}

void CQtView::ShowFocus() {
  const ui::CControl* const focused = user_->Form().Focused();
  QWidget* const widget = focused == nullptr ? nullptr : &peers_.at(focused)->FocusWidget();
  if (widget == nullptr || !widget->hasFocus()) dialog_->SetFocusTo(widget);
}

void CQtView::RunModal(ui::CForm& form, ui::CWindow* owner) {
  const QPointer<QWidget> before = QApplication::activeWindow();
  // One without an owner belongs above what the user looks at, all the same.
  QWidget* const parent = WidgetOfWindow(owner);
  dialog_->setParent(parent != nullptr ? parent : before.data(), dialog_->windowFlags());
  if (form.Place()) dialog_->PlaceAt(*form.Place());
  QEventLoop loop;
  ends_ = [&loop] { loop.quit(); };
  dialog_->show();
  ShowFocus();
  // From the loop, and never from within a painting: it may run for long, and show boxes.
  QTimer::singleShot(0, dialog_.get(), [&form] { form.Paint(); });
  loop.exec();
  ends_ = nullptr;
  dialog_->hide();
  dialog_->setParent(nullptr, dialog_->windowFlags());
  if (before) before->activateWindow();
  // The program ends, and with it its windows.
  form.Hide();
}

void CQtView::DrawNow() {
  if (!dialog_) return;
  dialog_->repaint();
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace vane
