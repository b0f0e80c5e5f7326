// What the program changes of the look that the desktop gives it.
#pragma once

namespace vane::desktop {

/// Makes texts that can't be edited darker, or lighter on a dark ground, than most styles do: what
/// is behind the passcode is read far more often than it is edited. Once, behind the style.
void MakeDisabledTextsLegible();

}  // namespace vane::desktop
