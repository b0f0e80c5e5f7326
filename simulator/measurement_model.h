// Where the simulated readings come from: the temperature of a bath per channel and the resistance
// of the sensor in it. A reading depends on seed, channel and sample number alone, so a run can be
// repeated.
#pragma once

#include <cstdint>

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

/// Bath temperature in °C: a fixed level per instrument channel (1 to 12), a slow drift and a
/// little noise.
double BathTemperature(std::uint64_t seed, std::int32_t channel, std::int64_t sample);

/// In ohms, at `celsius`.
double SensorResistance(const Sensor& sensor, double celsius);

}  // namespace vane::simulator
