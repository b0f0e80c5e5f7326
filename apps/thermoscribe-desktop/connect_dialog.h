// The question where the readout is.
#pragma once

#include <optional>

#include "apps/thermoscribe-desktop/desktop_host.h"

class QWidget;

namespace vane::desktop {

/// Shows the machine's ports, and the simulated readout for a user without an instrument; `last` is
/// selected. Nothing when the user gives up.
std::optional<Connection> AskForConnection(QWidget* parent, const std::optional<Connection>& last);

}  // namespace vane::desktop
