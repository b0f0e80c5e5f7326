// Display texts of the enumerations. A code outside an enumeration gives "<unknown>".
#pragma once

#include <cstdint>
#include <string>

#include "vane/support/enums.h"

namespace vane {

/// For a unit code of the instrument; -1 to 10 all have a text, also those that `ET312BUnits` does
/// not name.
std::string UnitsText(std::int16_t code);

/// For a conversion type code of the conversion component, -1 to 20.
std::string ConversionTypeText(std::int32_t code);

std::string FilterTypeText(ET312BFilterType code);
std::string SampleActionText(ET312BSampleAction code);
std::string OvenText(ET312BOven code);
std::string ChannelModeText(ET312BChannelMode code);
std::string ScannerScanModeText(ET312BScannerScanMode code);
std::string RefResistorText(ET312BProbeRefResistor code);

}  // namespace vane
