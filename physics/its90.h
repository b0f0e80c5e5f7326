// ITS-90 with the deviation functions of a record. Source as in scale_1990.h, section 3.3.
#pragma once

#include "physics/record.h"
#include "physics/sensor.h"

namespace vane::physics {

/// The ratio W at the aluminium point: there a, b and c alone are the deviation.
double AluminiumRatio(const Its90Record& record);

Marked Its90Temperature(const Its90Record& record, double aluminium, double ohms);
Marked Its90Resistance(const Its90Record& record, double aluminium, double kelvin);
double Its90Slope(const Its90Record& record, double aluminium, double kelvin);

}  // namespace vane::physics
