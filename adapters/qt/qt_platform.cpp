#include "adapters/qt/qt_platform.h"

#include <QApplication>
#include <QEventLoop>
#include <QMessageBox>
#include <QTimer>
#include <algorithm>

#include "adapters/qt/qt_text.h"
#include "vane/support/messages.h"

namespace vane {
namespace {

QMessageBox::Icon IconOf(std::int32_t flags) {
  switch (flags & kBoxIconMask) {
    case kBoxStop:
      return QMessageBox::Critical;
    case kBoxQuestion:
      return QMessageBox::Question;
    case kBoxInformation:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

}  // namespace

EBoxButton CQtPlatform::MessageBox(const std::string& text, const std::string& title,
                                   std::int32_t flags, const std::string& helpfile,
                                   std::int32_t helpcontext) {
  std::string lines = text;
  std::ranges::replace(lines, '\r', '\n');
  if (observer_) observer_({lines, title, flags});
  const bool asks = (flags & kBoxYesNo) != 0;
  QMessageBox::StandardButtons buttons =
      asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok;
  if ((flags & kBoxHelpButton) != 0) buttons |= QMessageBox::Help;
  QMessageBox box(IconOf(flags), ToQt(title), ToQt(lines), buttons, QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  box.setDefaultButton(asks ? QMessageBox::Yes : QMessageBox::Ok);
  // With a Help button the toolkit finds none by itself, and Escape would do nothing.
  box.setEscapeButton(asks ? QMessageBox::No : QMessageBox::Ok);
  // The window below may be disabled while a run goes on, and would pass that on.
  box.setEnabled(true);
  while (true) {
    switch (box.exec()) {
      case QMessageBox::Help:
        OpenHelp(helpfile, HELP_CONTEXT, helpcontext);
        break;
      case QMessageBox::Yes:
        return EBoxButton::YES;
      case QMessageBox::No:
        return EBoxButton::NO;
      default:
        return asks ? EBoxButton::NO : EBoxButton::OK;
    }
  }
}

void CQtPlatform::SetBusyCursor(bool on) {
  if (on == isbusy_) return;
  isbusy_ = on;
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void CQtPlatform::RunMessageQueue(std::uint32_t longestwait) {
  const int wait = WaitOf(longestwait);
  if (wait <= 0) {
    QCoreApplication::processEvents();
    return;
  }
  QTimer end;
  end.setSingleShot(true);
  end.setTimerType(Qt::PreciseTimer);
  end.start(wait);
  QEventLoop().processEvents(QEventLoop::WaitForMoreEvents);
}

std::int32_t CQtPlatform::OpenHelp(const std::string&, std::int32_t command, std::int32_t data) {
  return help_ && help_(command == HELP_CONTEXT ? data : 0) ? 1 : 0;
}

}  // namespace vane
