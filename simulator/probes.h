// The sixteen probes in the readout's memory.
//
// A probe record keeps the coefficients of every conversion, whatever its type is at the moment:
// changing the type and back loses nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/measurement_model.h"

namespace vane::simulator {

inline constexpr std::int32_t kProbeCount = 16;

/// Where each number of a record lies in `Probe::numbers`.
enum EProbeNumber : std::size_t {
  NUMBER_CURRENT = 0,
  NUMBER_OFFSET = 1,
  NUMBER_RTPW = 2,
  NUMBER_LOW = 3,      // a, b, c1 to c5
  NUMBER_HIGH = 10,    // a, b, c, d
  NUMBER_IPTS68 = 14,  // R0, alpha, delta, A4, C4
  NUMBER_CVD = 19,     // R0, alpha, delta, beta
  NUMBER_RT = 23,
  NUMBER_TR = 27,
  NUMBER_POLYNOMIAL = 31,
  NUMBERS_OF_PROBE = 42,
};

/// Places in the word lists of `probe_settings.cpp`.
enum EReference : std::size_t { REF_EXTERNAL, REF_1_OHM, REF_10_OHM, REF_100_OHM, REF_10K_OHM };
enum EConversion : std::size_t {
  CONV_ITS90,
  CONV_IPTS68,
  CONV_CVD,
  CONV_POLYNOMIAL,
  CONV_TR,
  CONV_RT,
  CONV_RESISTANCE,
  CONV_WT90,
  CONV_RATIO,
};
enum EScale : std::size_t { SCALE_90, SCALE_68, SCALE_UNKNOWN };

inline constexpr std::int32_t kNoLowRange = 0;
inline constexpr std::int32_t kNoHighRange = 12;

struct Probe {
  std::string serial;
  Sensor sensor;
  std::size_t reference;
  std::size_t conversion;
  std::size_t scale = SCALE_68;
  std::int32_t lowrange = kNoLowRange;    ///< 1 to 5, or `kNoLowRange`
  std::int32_t highrange = kNoHighRange;  ///< 6 to 11, or `kNoHighRange`
  std::array<double, NUMBERS_OF_PROBE> numbers{};
};

/// The probes of a readout that has been in use: each conversion and each ITS-90 subrange occurs.
/// Probe n stands at n - 1.
std::array<Probe, kProbeCount> MakeProbes();

}  // namespace vane::simulator
