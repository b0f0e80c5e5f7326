#include "vane/support/timing.h"

#include <algorithm>

#include "vane/components/components.h"

namespace vane {

void PauseMs(std::int32_t ms, const std::function<bool()>& leave) {
  CPlatform& platform = InstalledComponents().platform;
  const auto length = static_cast<std::uint32_t>(std::max(ms, 0));
  const std::uint32_t start = platform.TickCount();
  std::uint32_t passed = 0;
  do {
    platform.RunMessageQueue(length - passed);
    if (leave && leave()) return;
    // The difference is right across a wrap; a sum of start and length would not be.
    passed = platform.TickCount() - start;
  } while (passed < length);
}

}  // namespace vane
