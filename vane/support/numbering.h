// The numbers of one channel, which must not be mixed:
//
//                              Input 1   Input 2   scanner channel n   counts from
//   instrument channel number     1         2           n + 2              1
//   number within the module      1         2             n                1
//   index within the module       0         1           n - 1              0
//   scan step on the wire         -         0             n                0
//
// A channel holds the first as `ActualChannel` and the second as `ModuleChannel`; a module's
// `Channels` takes the third.
#pragma once

#include <cstdint>

namespace vane {

/// Inputs of the readout itself; every instrument channel number above is a scanner channel's.
inline constexpr std::int16_t kNumInputs = 2;

/// Channels of a scanner, and the highest channel that an instrument can have.
inline constexpr std::int16_t kScannerChannels = 10;
inline constexpr std::int16_t kHighestChannel = kNumInputs + kScannerChannels;

/// A scanner channel's number on the scanner, from its instrument channel number. Wide enough for
/// any count of channels that an instrument may answer.
constexpr std::int32_t ScannerChannel(std::int32_t instrumentchannel) {
  return instrumentchannel - kNumInputs;
}

}  // namespace vane
