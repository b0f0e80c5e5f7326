// The values of each conversion type.
//
// The readout computes the conversions itself; this component holds their values and converts
// nothing. The subranges of ITS-90 and their coefficients are those of the deviation functions in
// H. Preston-Thomas, "The International Temperature Scale of 1990 (ITS-90)", Metrologia 27 (1990).
// The low side has the numbers 1 to 5, from the lower ends hydrogen, neon, oxygen, argon and
// mercury; the high side 6 to 11, from the upper ends silver, aluminium, zinc, tin, indium and
// gallium.
#pragma once

#include <memory>

#include "vane/components/conversion.h"
#include "vane/support/tracked.h"

namespace vane {

/// Whether type `ct` has values at all.
bool HasConversionSettings(EVaneConversionType ct);

/// New values of type `ct`: numbers at 0, no subrange, empty formats; null for a type without
/// values. Every later change of a value sets `changed`, which must outlive the result. Formats and
/// the limits of a subrange's number say how a value is shown or chosen; they are no values and
/// mark nothing.
std::unique_ptr<CConversionSettings> MakeConversionSettings(EVaneConversionType ct,
                                                            CChangedFlag& changed);

}  // namespace vane
