// What becomes of an error that an event of a dialog raises.
#pragma once

#include "vane/components/form.h"
#include "vane/support/messages.h"
#include "vane/support/text_table.h"

namespace vane {

/// What the box says was going on.
inline constexpr char kCommandAction[] = "carrying out the command";

/// Shows one box for an error of an event; the window stays as it is.
inline void GuardEvents(ui::CForm& form) {
  form.OnFailure([] { ShowError(kCommandAction, kCompanyName, {}, 0); });
}

}  // namespace vane
