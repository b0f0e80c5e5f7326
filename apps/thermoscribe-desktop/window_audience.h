// Who sits before the desktop program, as the runs on snapshots see him.
#pragma once

#include <string>

#include "apps/snapshots/audience.h"
#include "apps/thermoscribe-desktop/desktop_host.h"

namespace vane::desktop {

/// For one piece of work, within `CDesktopHost::Run`.
class CWindowAudience final : public thermoscribe::CAudience {
 public:
  /// Progress comes up above `owner`. All outlive it.
  CWindowAudience(CDesktopHost& host, ui::CWindow& owner);

  bool IsInterrupted() const override { return host_.IsStopped(); }
  ui::CWindow* ProgressWindow() override { return &owner_; }
  std::int32_t Troubles() const override { return host_.Troubles(); }
  void Say(const std::string& text) override;
  void SayError(const std::string& action) override;

 private:
  CDesktopHost& host_;
  ui::CWindow& owner_;
};

}  // namespace vane::desktop
