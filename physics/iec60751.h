// Industrial platinum thermometers of IEC 60751:2008: the standard's curve and its tolerance
// classes.
#pragma once

#include <cstdint>

#include "physics/record.h"

namespace vane::physics {

/// The curve of section 4.2, by its A, B and C, of a sensor with `r0` ohms at 0 °C.
CvdRecord IecRecord(double r0 = 100);

enum class EToleranceClass : std::int32_t { AA, A, B, C };

/// By how much a sensor of the class may be off at a temperature, in kelvins: section 5.1.3,
/// table 3. The ranges are those of wire-wound resistors, outside which the class promises nothing:
/// raises `std::domain_error`.
double ToleranceOf(EToleranceClass grade, double celsius);

}  // namespace vane::physics
