#include "simulator/probes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vane::simulator {
namespace {

struct NumberRun {
  EProbeNumber first;
  std::vector<double> values;
};
using Numbers = std::vector<NumberRun>;

// A record as it leaves the works: the standard curves for a platinum sensor and a common 10 kilohm
// thermistor. `special` overwrites what the probe's own calibration found.
Probe MakeProbe(Probe probe, double current, const Numbers& special) {
  const bool platinum = probe.sensor.kind == ESensor::PLATINUM;
  const double r0 = platinum ? probe.sensor.nominalohms : 100.0;
  const Numbers standard = {
      {NUMBER_CURRENT, {current}},
      {NUMBER_RTPW, {r0}},
      {NUMBER_IPTS68, {r0, 0.00392597, 1.496334}},
      {NUMBER_CVD, {r0, 0.00385055, 1.49978, 0.10863}},
      {NUMBER_RT, {-5.0563015, 4480.4575, -29776.446, -11288873.0}},
      {NUMBER_TR, {1.129148e-3, 2.34125e-4, 0, 8.76741e-8}},
  };
  for (const Numbers* list : {&standard, &special}) {
    for (const auto& [first, values] : *list) {
      std::copy(values.begin(), values.end(), probe.numbers.begin() + first);
    }
  }
  return probe;
}

Sensor Platinum(double ohms) { return {ESensor::PLATINUM, ohms}; }
Sensor Thermistor(double ohms) { return {ESensor::THERMISTOR, ohms}; }
Sensor Resistor(double ohms) { return {ESensor::RESISTOR, ohms}; }

Probe Its90(std::string serial, double ohms, std::size_t reference, std::int32_t low,
            std::int32_t high) {
  return {std::move(serial), Platinum(ohms), reference, CONV_ITS90, SCALE_90, low, high};
}

}  // namespace

std::array<Probe, kProbeCount> MakeProbes() {
  return {
      // 1: long-stem standard thermometer, argon point to aluminium point
      MakeProbe(Its90("SP-4107", 25.5, REF_100_OHM, 4, 7), 1.0,
                {{NUMBER_RTPW, {25.5098764}},
                 {NUMBER_LOW, {-1.2571342e-4, -9.2614e-6}},
                 {NUMBER_HIGH, {-1.2642871e-4, -1.06934e-5, 1.2188e-6}}}),
      // 2: high-temperature standard thermometer, up to the silver point
      MakeProbe(
          Its90("HT-0213", 2.5, REF_10_OHM, kNoLowRange, 6), 5.0,
          {{NUMBER_RTPW, {2.531847}}, {NUMBER_HIGH, {-6.1893e-5, 2.4107e-6, -3.812e-7, 4.655e-6}}}),
      // 3: capsule thermometer from the triple point of hydrogen
      MakeProbe(Its90("CAP-1881", 25.5, REF_100_OHM, 1, 10), 1.0,
                {{NUMBER_RTPW, {25.4786312}},
                 {NUMBER_LOW,
                  {-2.4153e-4, -3.1286e-6, 8.1342e-7, 6.2714e-7, 9.3381e-8, 1.27e-9, -4.2e-9}},
                 {NUMBER_HIGH, {-2.3978e-4}}}),
      // 4: capsule thermometer from the triple point of neon
      MakeProbe(Its90("CAP-1902", 25.5, REF_100_OHM, 2, 9), 1.0,
                {{NUMBER_RTPW, {25.4920155}},
                 {NUMBER_LOW, {-1.9862e-4, -7.7641e-6, 5.2917e-7, 3.1148e-7, 4.0233e-8}},
                 {NUMBER_HIGH, {-1.9704e-4, -8.1166e-6}}}),
      // 5: long-stem thermometer from the triple point of oxygen
      MakeProbe(Its90("SP-4260", 25.5, REF_100_OHM, 3, 8), 1.0,
                {{NUMBER_RTPW, {25.5341208}},
                 {NUMBER_LOW, {-1.4036e-4, -5.8812e-6, 2.0675e-7}},
                 {NUMBER_HIGH, {-1.3987e-4, -6.0431e-6}}}),
      // 6: room-temperature standard, mercury point to gallium point
      MakeProbe(Its90("RT-0077", 100, REF_100_OHM, 5, 11), 1.0,
                {{NUMBER_RTPW, {100.0123905}},
                 {NUMBER_LOW, {-3.3512e-4, -2.7196e-5}},
                 {NUMBER_HIGH, {-3.3409e-4}}}),
      // 7: not calibrated yet, so it has no subrange
      MakeProbe(Its90("SP-NEW", 25.5, REF_100_OHM, kNoLowRange, kNoHighRange), 1.0, {}),
      // 8: an old thermometer that is still on the scale of 1968
      MakeProbe({"OLD-311", Platinum(25.5), REF_100_OHM, CONV_IPTS68, SCALE_68}, 1.0,
                {{NUMBER_IPTS68, {25.507114, 0.003926891, 1.496412, -1.8346e-7, -2.7e-14}}}),
      // 9: the same, but the scale of its coefficients was never entered
      MakeProbe({"OLD-298", Platinum(25.5), REF_100_OHM, CONV_IPTS68, SCALE_UNKNOWN}, 1.0,
                {{NUMBER_IPTS68, {25.489923, 0.003926504, 1.496577, 2.1408e-7, 3.4e-14}}}),
      // 10: industrial sensor
      MakeProbe({"IND-5520", Platinum(100), REF_100_OHM, CONV_CVD}, 1.0,
                {{NUMBER_CVD, {100.0172, 0.003851124, 1.4987, 0.1092}}}),
      // 11: industrial sensor with a fitted polynomial, °C over ohms
      MakeProbe({"IND-5533", Platinum(100), REF_100_OHM, CONV_POLYNOMIAL}, 1.0,
                {{NUMBER_POLYNOMIAL,
                  {-2.417891639e+02, 2.198294945, 3.485162453e-03, -1.933967447e-05,
                   7.880676233e-08, -1.581316578e-10, 1.295095209e-13}}}),
      // 12: thermistor, 1/T over ln R
      MakeProbe({"THM-0831", Thermistor(10000), REF_10K_OHM, CONV_TR}, 0.01, {}),
      // 13: thermistor, ln R over 1/T, on three wires
      MakeProbe({"THM-0832", Thermistor(10000), REF_10K_OHM, CONV_RT}, 0.01,
                {{NUMBER_OFFSET, {0.1325}}}),
      // 14: standard resistor
      MakeProbe({"RES-100", Resistor(100.00213), REF_100_OHM, CONV_RESISTANCE}, 1.0, {}),
      // 15: thermometer for fixed-point work, shown as W
      MakeProbe({"SP-4111", Platinum(25.5), REF_100_OHM, CONV_WT90}, 1.0,
                {{NUMBER_RTPW, {25.5062417}}}),
      // 16: resistor against the external reference
      MakeProbe({"RES-25", Resistor(25.00058), REF_EXTERNAL, CONV_RATIO}, 1.0, {}),
  };
}

}  // namespace vane::simulator
