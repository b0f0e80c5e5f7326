#include "apps/thermoscribe-desktop/desktop_audience.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <cmath>

#include "adapters/qt/qt_text.h"
#include "vane/components/progress.h"
#include "vane/support/messages.h"
#include "vane/support/texts.h"

namespace vane::desktop {
namespace {

constexpr int kWhole = 100;  // of a run
constexpr std::chrono::milliseconds kLookInterval{20};

}  // namespace

// Escape and the close box are its button.
class CDesktopAudience::CWindow final : public QDialog {
 public:
  CWindow(QWidget& owner, const QString& title, int runs, bool& iscancelled)
      : QDialog(&owner), iscancelled_(iscancelled) {
    setObjectName("progress");
    setModal(true);
    setWindowTitle(title);
    auto* const layout = new QVBoxLayout(this);
    label_ = new QLabel(title, this);
    label_->setTextFormat(Qt::PlainText);
    layout->addWidget(label_);
    bar_ = new QProgressBar(this);
    bar_->setRange(0, runs * kWhole);
    bar_->setMinimumWidth(40 * fontMetrics().averageCharWidth());
    bar_->setAccessibleName(title);
    layout->addWidget(bar_);
    button_ = new QPushButton(tr("Cancel"), this);
    layout->addWidget(button_, 0, Qt::AlignRight);
    connect(button_, &QPushButton::clicked, this, [this] { Cancel(); });
  }

  void BeginRun(const std::string& text) {
    label_->setText(ToQt(text));
    if (!isVisible()) show();
  }
  void Show(double percent) {
    bar_->setValue(std::min(bar_->maximum(), done_ + static_cast<int>(std::lround(percent))));
    const auto now = std::chrono::steady_clock::now();
    if (now - looked_ < kLookInterval) return;
    QCoreApplication::processEvents();
    looked_ = std::chrono::steady_clock::now();
  }
  void EndRun() { done_ += kWhole; }

  void reject() override { Cancel(); }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    Cancel();
  }

 private:
  // It stays until the run has noticed.
  void Cancel() {
    iscancelled_ = true;
    button_->setEnabled(false);
  }

  bool& iscancelled_;
  QLabel* label_;
  QProgressBar* bar_;
  QPushButton* button_;
  int done_ = 0;
  std::chrono::steady_clock::time_point looked_;  // at what the user does
};

// A run of the library as a part of the whole.
class CDesktopAudience::CPart final : public CVaneProgress {
 public:
  explicit CPart(CDesktopAudience& whole) : whole_(whole) {}

  void SetVisible(bool flag) override { isvisible_ = flag; }
  void Attach(ui::CWindow*) override {}
  void Hide(bool flag) override {
    if (whole_.window_ && isvisible_) whole_.window_->setVisible(flag);
  }
  void Start(const std::string& text, double share) override {
    share_ = share;
    percent_ = 0;
    if (whole_.window_ && isvisible_) whole_.window_->BeginRun(text);
  }
  bool Step(std::int32_t total, std::int32_t position, std::int32_t) override {
    percent_ = position == kNoPosition ? percent_ + share_
               : total > 0             ? 1.0 * kWhole * position / total
                                       : percent_;
    percent_ = std::clamp(percent_, 0.0, 1.0 * kWhole);
    if (whole_.window_) whole_.window_->Show(percent_);
    return !whole_.iscancelled_;
  }
  void Finish() override {
    if (whole_.window_) whole_.window_->EndRun();
  }

 private:
  CDesktopAudience& whole_;
  bool isvisible_ = true;
  double share_ = 0;
  double percent_ = 0;
};

CDesktopAudience::CDesktopAudience(CDesktopHost& host, QWidget& owner)
    : host_(host), owner_(owner), ownerwindow_(owner) {
  host_.ForgetStop();
  host_.SetProgress([this] { return std::make_unique<CPart>(*this); });
}

CDesktopAudience::~CDesktopAudience() { host_.SetProgress(nullptr); }

void CDesktopAudience::BeginProgress(const QString& title, int runs) {
  window_ = std::make_unique<CWindow>(owner_, title, runs, iscancelled_);
}

void CDesktopAudience::EndProgress() { window_.reset(); }

void CDesktopAudience::Say(const std::string& text) {
  if (window_) window_->hide();
  ShowMessage(text);
}

void CDesktopAudience::SayError(const std::string& action) {
  if (window_) window_->hide();
  ShowError(action, kCompanyName, {}, 0);
}

}  // namespace vane::desktop
