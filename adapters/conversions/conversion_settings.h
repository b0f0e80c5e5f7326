// The values of each conversion type.
//
// The readout computes the conversions itself; this component holds their values and converts
// nothing. Which subrange of ITS-90 has which coefficients is in
// `vane/channels/conversion_table.h`.
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
