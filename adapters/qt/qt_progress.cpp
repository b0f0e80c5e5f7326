#include "adapters/qt/qt_progress.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_view.h"

namespace vane {
namespace {

constexpr double kWhole = 100;
constexpr std::chrono::milliseconds kLookInterval{20};

}  // namespace

// Escape and the close box are its button.
class CProgressWindow final : public QDialog {
 public:
  CProgressWindow(QWidget* parent, const std::string& text, bool& cancelled)
      : QDialog(parent), cancelled_(cancelled) {
    setObjectName("progress");
    setModal(true);
    // Its owner is disabled while the run goes on.
    setEnabled(true);
    setWindowTitle(ToQt(text));
    auto* const layout = new QVBoxLayout(this);
    auto* const label = new QLabel(ToQt(text), this);
    label->setTextFormat(Qt::PlainText);
    layout->addWidget(label);
    bar_ = new QProgressBar(this);
    bar_->setRange(0, static_cast<int>(kWhole));
    bar_->setMinimumWidth(24 * fontMetrics().averageCharWidth());
    bar_->setAccessibleName(ToQt(text));
    layout->addWidget(bar_);
    button_ = new QPushButton(tr("Cancel"), this);
    layout->addWidget(button_, 0, Qt::AlignRight);
    connect(button_, &QPushButton::clicked, this, [this] { Cancel(); });
  }

  void Show(double percent) { bar_->setValue(static_cast<int>(std::lround(percent))); }

  void reject() override { Cancel(); }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    Cancel();
  }

 private:
  // It stays until the run has noticed.
  void Cancel() {
    cancelled_ = true;
    button_->setEnabled(false);
  }

  bool& cancelled_;
  QProgressBar* bar_;
  QPushButton* button_;
};

CQtProgress::CQtProgress() = default;

CQtProgress::~CQtProgress() = default;

void CQtProgress::SetVisible(bool flag) {
  visible_ = flag;
  Refresh();
}

void CQtProgress::Hide(bool flag) {
  hidden_ = !flag;
  Refresh();
}

void CQtProgress::Start(const std::string& text, double share) {
  cancelled_ = false;
  hidden_ = false;
  share_ = share;
  percent_ = 0;
  QWidget* const owner = WidgetOfWindow(owner_);
  window_ = std::make_unique<CProgressWindow>(
      owner != nullptr ? owner : QApplication::activeWindow(), text, cancelled_);
  Refresh();
}

bool CQtProgress::Step(std::int32_t total, std::int32_t position, std::int32_t) {
  if (position == kNoPosition) {
    percent_ += share_;
  } else if (total > 0) {
    percent_ = kWhole * position / total;
  }
  percent_ = std::clamp(percent_, 0.0, kWhole);
  const auto now = std::chrono::steady_clock::now();
  if (window_ && now - looked_ >= kLookInterval) {
    window_->Show(percent_);
    QCoreApplication::processEvents();
    looked_ = std::chrono::steady_clock::now();
  }
  return !cancelled_;
}

void CQtProgress::Finish() { window_.reset(); }

void CQtProgress::Refresh() {
  if (window_) window_->setVisible(visible_ && !hidden_);
}

}  // namespace vane
