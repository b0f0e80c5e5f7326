// Which fields of the settings follow the choice in a list.
#pragma once

#include "vane/dialogs/settings_fields.h"

namespace vane {

/// Puts in and out of use what follows the choice in `trigger`. To be run when that changes.
void FollowChoice(CSettingsFields& fields, ESettingsField trigger);

}  // namespace vane
