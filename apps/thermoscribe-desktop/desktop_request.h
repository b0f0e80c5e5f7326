// What the command line of the desktop program asks for.
#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>
#include <stdexcept>

#include "apps/thermoscribe-desktop/desktop_host.h"

namespace vane::desktop {

struct Request {
  std::optional<Connection> connection;  ///< none: as the user has it
  QString picture;                       ///< the file; empty: none
  std::optional<std::chrono::duration<double>> figures;

  /// It runs without a user.
  bool EndsByItself() const { return figures || !picture.isEmpty(); }
};

/// With a text for the user.
struct BadUsage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Ends the process for help and version. Raises `BadUsage`.
Request ParseCommandLine(const QStringList& arguments);

}  // namespace vane::desktop
