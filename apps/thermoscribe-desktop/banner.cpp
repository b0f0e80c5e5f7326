#include "apps/thermoscribe-desktop/banner.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

namespace vane::desktop {

CBanner::CBanner(const QString& buttoncaption, std::function<void()> pressed, QWidget* parent)
    : QFrame(parent), text_(new QLabel(this)), button_(new QPushButton(buttoncaption, this)) {
  setAutoFillBackground(true);
  QPalette warning = palette();
  // 7 to 1, on a light and on a dark desktop.
  warning.setColor(QPalette::Window, QColor(0xB0, 0x00, 0x20));
  warning.setColor(QPalette::WindowText, Qt::white);
  setPalette(warning);
  button_->setPalette(QPalette());
  text_->setWordWrap(true);
  text_->setTextFormat(Qt::PlainText);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setAccessibleName("Notice");
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(text_, 1);
  layout->addWidget(button_);
  connect(button_, &QPushButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
  hide();
}

void CBanner::SetText(const QString& text) {
  text_->setText(text);
  setVisible(!text.isEmpty());
}

QString CBanner::Text() const { return text_->text(); }

}  // namespace vane::desktop
