#include "apps/thermoscribe-desktop/window_audience.h"

#include "vane/support/messages.h"
#include "vane/support/texts.h"

namespace vane::desktop {

CWindowAudience::CWindowAudience(CDesktopHost& host, ui::CWindow& owner)
    : host_(host), owner_(owner) {
  host_.ForgetStop();
}

void CWindowAudience::Say(const std::string& text) { ShowMessage(text); }

void CWindowAudience::SayError(const std::string& action) {
  ShowError(action, kCompanyName, {}, 0);
}

}  // namespace vane::desktop
