#include "simulator/measurement_model.h"

#include <array>
#include <cmath>
#include <numbers>

#include "simulator/readout_numbers.h"

namespace vane::simulator {
namespace {

// Levels at which both platinum and thermistors live; Input 2 stands in a triple point cell.
constexpr std::array kLevels = {24.95, 0.01, 10.0, 15.0, 20.0, 25.0,
                                30.0,  37.0, 50.0, 60.0, 70.0, 85.0};

constexpr double kDriftSamples = 900.0;  // of one full wave

// Keys that keep the two uses of chance apart.
constexpr std::uint64_t kPhaseKey = 1;
constexpr std::uint64_t kNoiseKey = 2;

// IEC 60751:2008, Industrial platinum resistance thermometers, equations for -200 °C to 0 °C and
// 0 °C to 850 °C.
double PlatinumRatio(double t) {
  constexpr double kA = 3.9083e-3;
  constexpr double kB = -5.775e-7;
  constexpr double kC = -4.183e-12;
  const double ratio = 1 + kA * t + kB * t * t;
  return t < 0 ? ratio + kC * (t - 100) * t * t * t : ratio;
}

// The beta equation of NTC thermistors.
double ThermistorRatio(double t) {
  constexpr double kBeta = 3930;
  return std::exp(kBeta * (1 / (t + 273.15) - 1 / 298.15));
}

}  // namespace

double BathTemperature(const Bath& bath, std::uint64_t seed, std::int32_t channel,
                       std::int64_t sample) {
  const auto channelkey = static_cast<std::uint64_t>(channel);
  const auto samplekey = static_cast<std::uint64_t>(sample);
  const double phase = ScatterUnit({seed, kPhaseKey, channelkey});
  const double wave =
      std::sin(2 * std::numbers::pi * (static_cast<double>(sample) / kDriftSamples + phase));
  // Four uniform numbers, each of variance 1/12, come close to a normal one.
  double sum = -2;
  for (std::uint64_t i = 0; i < 4; ++i) {
    sum += ScatterUnit({seed, kNoiseKey, channelkey, samplekey, i});
  }
  const auto own = bath.levels.find(channel);
  double level =
      own != bath.levels.end() ? own->second : kLevels.at(static_cast<std::size_t>(channel - 1));
  for (const auto& [from, kelvins] : bath.steps) {
    if (sample >= from) level += kelvins;
  }
  return level + bath.drift * wave + bath.noise * std::numbers::sqrt3 * sum;
}

double SensorResistance(const Sensor& sensor, double celsius) {
  switch (sensor.kind) {
    case ESensor::PLATINUM:
      return sensor.nominalohms * PlatinumRatio(celsius);
    case ESensor::THERMISTOR:
      return sensor.nominalohms * ThermistorRatio(celsius);
    case ESensor::RESISTOR:
      break;
  }
  return sensor.nominalohms;
}

}  // namespace vane::simulator
