// Where the simulated readings come from: the temperature of a bath per channel and the resistance
// of the sensor in it. A reading depends on seed, channel and sample number alone, so a run can be
// repeated.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace vane::simulator {

enum class ESensor {
  PLATINUM,    ///< nominal resistance at 0 °C
  THERMISTOR,  ///< nominal resistance at 25 °C
  RESISTOR,    ///< a standard resistor, the same at any temperature
};

struct Sensor {
  ESensor kind;
  double nominalohms;
};

/// The temperature of a channel, in °C, as it goes on from sample to sample.
struct Bath {
  /// By instrument channel; where there is none, one that the readout comes with.
  std::map<std::int32_t, double> levels = {};
  double drift = 0.004;   ///< amplitude of a slow wave
  double noise = 0.0003;  ///< standard deviation
  /// Added from a sample on, for all channels.
  std::vector<std::pair<std::int64_t, double>> steps = {};
};

/// Bath temperature of an instrument channel (1 to 12).
double BathTemperature(const Bath& bath, std::uint64_t seed, std::int32_t channel,
                       std::int64_t sample);

/// In ohms, at `celsius`.
double SensorResistance(const Sensor& sensor, double celsius);

}  // namespace vane::simulator
