// The person before the windows, for work in many exchanges: one progress window over all of it,
// and boxes for what went wrong.
#pragma once

#include <QPointer>
#include <QString>
#include <cstdint>
#include <memory>
#include <string>

#include "adapters/qt/qt_view.h"
#include "apps/snapshots/audience.h"
#include "apps/thermoscribe-desktop/desktop_host.h"

class QWidget;

namespace vane::desktop {

/// While it lives, each run of the library is a part of its progress, and Cancel ends all that is
/// left. Within `CDesktopHost::Run`.
class CDesktopAudience final : public thermoscribe::CAudience {
 public:
  /// Both outlive it.
  CDesktopAudience(CDesktopHost& host, QWidget& owner);
  ~CDesktopAudience() override;
  CDesktopAudience(const CDesktopAudience&) = delete;
  CDesktopAudience& operator=(const CDesktopAudience&) = delete;

  /// What comes next is `title`, of so many runs of the library. The window stays up from its first
  /// run to `EndProgress`.
  void BeginProgress(const QString& title, int runs);
  void EndProgress();

  bool IsInterrupted() const override { return iscancelled_ || host_.IsStopped(); }
  ui::CWindow* ProgressWindow() override { return &ownerwindow_; }
  std::int32_t Troubles() const override { return host_.Troubles(); }
  void Say(const std::string& text) override;
  void SayError(const std::string& action) override;

 private:
  class CPart;
  class CWindow;

  CDesktopHost& host_;
  QWidget& owner_;
  CQtWindow ownerwindow_;
  std::unique_ptr<CWindow> window_;  // between `BeginProgress` and `EndProgress`
  bool iscancelled_ = false;
};

}  // namespace vane::desktop
