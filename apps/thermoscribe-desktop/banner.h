// A notice above the content that can't be overlooked, with a button for what helps.
#pragma once

#include <QFrame>
#include <functional>

class QLabel;
class QPushButton;

namespace vane::desktop {

class CBanner final : public QFrame {
 public:
  CBanner(const QString& buttoncaption, std::function<void()> pressed, QWidget* parent);

  /// An empty text takes it away.
  void SetText(const QString& text);
  QString Text() const;

 private:
  QLabel* const text_;
  QPushButton* const button_;
};

}  // namespace vane::desktop
