// The thermometers behind the probes: what they truly are, and what the readout makes of them by
// its records.
#pragma once

#include <optional>

#include "physics/record.h"
#include "simulator/probes.h"

namespace vane::simulator {

/// The record as the scales' formulas take it; nothing for a conversion that gives no temperature.
/// A thermometer that isn't calibrated follows the reference function.
std::optional<physics::Record> RecordOf(const Probe& probe);

/// In ohms, of the thermometer whose record was `works` when it left the works, at `celsius`. Of a
/// resistor its value.
double TrueResistance(const Probe& works, double celsius);

/// What the record says of a resistance, in °C of its own scale; nothing where it can't.
std::optional<double> TemperatureBy(const Probe& probe, double ohms);

/// What the ratio W is reckoned from: RTPW or R0, and for other conversions the thermometer's
/// resistance at the triple point of water.
double BaseOfW(const Probe& probe, const Probe& works);

}  // namespace vane::simulator
