#include "recorder/scan_plan.h"

#include <algorithm>

#include "vane/support/numbering.h"

namespace vane::recorder {

std::int64_t RoundOf(const ScanPlan& plan, std::int16_t channel) {
  const bool isinput = channel <= kNumInputs;
  switch (plan.mode) {
    case ET312BChannelMode::CM_ALTERNATE:
      return isinput ? 2 : 0;
    case ET312BChannelMode::CM_INPUT_1:
      return channel == 1 ? 1 : 0;
    case ET312BChannelMode::CM_INPUT_2:
      return channel == 2 ? 1 : 0;
    case ET312BChannelMode::CM_SCANNER_CHANNEL:
      return ScannerChannel(channel) == plan.scanchannel ? 1 : 0;
    case ET312BChannelMode::CM_SCANNER_SEQUENCE:
      break;
    default:
      return 0;
  }
  if (plan.scanmode == ET312BScannerScanMode::SSM_USER_DEFINED) {
    const bool isvisited = std::ranges::find(plan.steps, channel) != plan.steps.end();
    return isvisited ? static_cast<std::int64_t>(plan.steps.size()) : 0;
  }
  // Input 2 or scanner channel 1 may take every second sample.
  const std::int64_t round = std::int64_t{2} * plan.sequencechannels;
  if (!isinput) return ScannerChannel(channel) <= plan.sequencechannels ? round : 0;
  const bool hasinput = plan.scanmode == ET312BScannerScanMode::SSM_INPUT_2_SCAN ||
                        plan.scanmode == ET312BScannerScanMode::SSM_ALT_INPUT_2_SCAN;
  return channel == 2 && hasinput ? round : 0;
}

}  // namespace vane::recorder
