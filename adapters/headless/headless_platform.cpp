#include "adapters/headless/headless_platform.h"

#include <poll.h>

namespace vane {

EBoxButton CHeadlessPlatform::MessageBox(const std::string& text, const std::string&,
                                         std::int32_t flags, const std::string&, std::int32_t) {
  messages_.push_back({text, flags});
  return (flags & kBoxYesNo) != 0 ? answer_ : EBoxButton::OK;
}

void CHeadlessPlatform::RunMessageQueue(std::uint32_t longestwait) {
  ::poll(nullptr, 0, WaitOf(longestwait));
}

}  // namespace vane
