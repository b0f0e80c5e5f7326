#include "apps/thermoscribe-desktop/appearance.h"

#include <QApplication>
#include <QPalette>
#include <utility>

namespace vane::desktop {
namespace {

constexpr float kShare = 0.62F;  // of the text's colour in the mix with its ground: 5 to 1 at least

float Mixed(float text, float ground) { return kShare * text + (1 - kShare) * ground; }

}  // namespace

void MakeDisabledTextsLegible() {
  const QPalette now = QApplication::palette();
  // What nobody has set in it goes on following the desktop.
  QPalette changed = now;
  for (const auto& [role, groundrole] : {std::pair(QPalette::WindowText, QPalette::Window),
                                         {QPalette::Text, QPalette::Base},
                                         {QPalette::ButtonText, QPalette::Button}}) {
    const QColor text = now.color(QPalette::Active, role);
    const QColor ground = now.color(QPalette::Active, groundrole);
    changed.setColor(
        QPalette::Disabled, role,
        QColor::fromRgbF(Mixed(text.redF(), ground.redF()), Mixed(text.greenF(), ground.greenF()),
                         Mixed(text.blueF(), ground.blueF())));
  }
  QApplication::setPalette(changed);
}

}  // namespace vane::desktop
