// Which channels a readout measures, and how soon each comes again.
#pragma once

#include <cstdint>
#include <vector>

#include "vane/support/enums.h"

namespace vane::recorder {

/// The settings of the readout that it follows from.
struct ScanPlan {
  ET312BChannelMode mode = ET312BChannelMode::CM_ALTERNATE;
  ET312BScannerScanMode scanmode = ET312BScannerScanMode::SSM_USER_DEFINED;
  std::int16_t scanchannel = 0;          ///< of the scanner, from 1 on
  std::int16_t sequencechannels = 0;     ///< how many of the scanner a plain sequence visits
  std::vector<std::int16_t> steps = {};  ///< of a user-defined sequence: instrument channels
};

/// After how many samples `channel` has been measured again for sure; 0: not by these settings.
std::int64_t RoundOf(const ScanPlan& plan, std::int16_t channel);

}  // namespace vane::recorder
