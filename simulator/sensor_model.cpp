#include "simulator/sensor_model.h"

#include <algorithm>
#include <stdexcept>

#include "physics/scale_1968.h"
#include "physics/sensor.h"

namespace vane::simulator {
namespace {

constexpr double kIcePoint = 273.15;   // K
constexpr double kTriplePoint = 0.01;  // °C

bool IsResistor(const Probe& probe) { return probe.sensor.kind == ESensor::RESISTOR; }

// Scale 68, or one that nobody has entered.
bool Is68(const Probe& probe) { return probe.conversion == CONV_IPTS68 && probe.scale != SCALE_90; }

template <class Target>
void Copy(const Probe& probe, EProbeNumber first, Target& target) {
  std::copy_n(probe.numbers.begin() + first, target.size(), target.begin());
}

}  // namespace

std::optional<physics::Record> RecordOf(const Probe& probe) {
  const auto number = [&](std::size_t place) { return probe.numbers.at(place); };
  switch (probe.conversion) {
    case CONV_ITS90: {
      physics::Its90Record record;
      record.rtpw = number(NUMBER_RTPW);
      if (probe.lowrange != kNoLowRange) record.low = probe.lowrange;
      if (probe.highrange != kNoHighRange) record.high = probe.highrange;
      if (record.low == physics::kNoSubrange && record.high == physics::kNoSubrange) {
        return physics::Wt90Record{record.rtpw};
      }
      Copy(probe, NUMBER_LOW, record.lowcoefficients);
      Copy(probe, NUMBER_HIGH, record.highcoefficients);
      return record;
    }
    case CONV_WT90:
      return physics::Wt90Record{number(NUMBER_RTPW)};
    case CONV_IPTS68:
      return physics::Ipts68Record{number(NUMBER_IPTS68),     number(NUMBER_IPTS68 + 1),
                                   number(NUMBER_IPTS68 + 2), number(NUMBER_IPTS68 + 3),
                                   number(NUMBER_IPTS68 + 4), !Is68(probe)};
    case CONV_CVD:
      return physics::CvdRecord{number(NUMBER_CVD), number(NUMBER_CVD + 1), number(NUMBER_CVD + 2),
                                number(NUMBER_CVD + 3)};
    case CONV_POLYNOMIAL: {
      physics::PolynomialRecord record;
      record.c.assign(probe.numbers.begin() + NUMBER_POLYNOMIAL, probe.numbers.end());
      return record;
    }
    case CONV_TR: {
      physics::ThermistorTRRecord record;
      Copy(probe, NUMBER_TR, record.b);
      return record;
    }
    case CONV_RT: {
      physics::ThermistorRTRecord record;
      Copy(probe, NUMBER_RT, record.a);
      return record;
    }
    default:
      return std::nullopt;
  }
}

double TrueResistance(const Probe& works, double celsius) {
  if (IsResistor(works)) return works.sensor.nominalohms;
  const auto record = RecordOf(works);
  if (!record) return SensorResistance(works.sensor, celsius);
  const double reported = Is68(works) ? physics::T68OfT90(celsius) : celsius;
  try {
    return physics::CSensor(*record).Resistance(reported + kIcePoint).value;
  } catch (const std::domain_error&) {
    return SensorResistance(works.sensor, celsius);  // a bath beyond its curve
  }
}

std::optional<double> TemperatureBy(const Probe& probe, double ohms) {
  const auto record = RecordOf(probe);
  if (!record) return std::nullopt;
  try {
    return physics::CSensor(*record).Temperature(ohms).value - kIcePoint;
  } catch (const std::logic_error&) {
    return std::nullopt;
  }
}

double BaseOfW(const Probe& probe, const Probe& works) {
  const auto record = RecordOf(probe);
  const double base = record ? physics::BaseOfW(*record) : 0;
  return base != 0 ? base : TrueResistance(works, kTriplePoint);
}

}  // namespace vane::simulator
