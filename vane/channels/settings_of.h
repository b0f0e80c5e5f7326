// The values of a probe's conversion as the kind that its type has.
#pragma once

#include "vane/components/conversion.h"
#include "vane/components/library_error.h"

namespace vane {

/// Raises the platform's type mismatch when the conversion has no values of that kind.
template <class Settings>
Settings& SettingsOf(CVaneProbe& probe) {
  auto* const settings = dynamic_cast<Settings*>(probe.Conversion().Settings());
  if (settings == nullptr) throw PlatformError(ERR_PLATFORM_TYPE_MISMATCH);
  return *settings;
}

}  // namespace vane
