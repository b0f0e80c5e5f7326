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
  kCurrent = 0,
  kOffset = 1,
  kRtpw = 2,
  kLow = 3,    // a, b, c1 to c5
  kHigh = 10,  // a, b, c, d
  kIpts = 14,  // R0, alpha, delta, A4, C4
  kCvd = 19,   // R0, alpha, delta, beta
  kRt = 23,
  kTr = 27,
  kPoly = 31,
  kProbeNumbers = 42,
};

/// Places in the word lists of `probe_settings.cpp`.
enum EReference : std::size_t { kExternal, k1Ohm, k10Ohm, k100Ohm, k10KOhm };
enum EConversion : std::size_t {
  kConvIts90,
  kConvIpts68,
  kConvCvd,
  kConvPolynomial,
  kConvTr,
  kConvRt,
  kConvResistance,
  kConvWt90,
  kConvRatio,
};
enum EScale : std::size_t { kScale90, kScale68, kScaleUnknown };

inline constexpr std::int32_t kNoLowRange = 0;
inline constexpr std::int32_t kNoHighRange = 12;

struct Probe {
  std::string serial;
  Sensor sensor;
  std::size_t reference;
  std::size_t conversion;
  std::size_t scale = kScale68;
  std::int32_t low_range = kNoLowRange;    ///< 1 to 5, or `kNoLowRange`
  std::int32_t high_range = kNoHighRange;  ///< 6 to 11, or `kNoHighRange`
  std::array<double, kProbeNumbers> numbers{};
};

/// The probes of a readout that has been in use: each conversion and each ITS-90 subrange occurs.
/// Probe n stands at n - 1.
std::array<Probe, kProbeCount> MakeProbes();

}  // namespace vane::simulator
