// The values of a conversion by their names in the field.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vane/components/conversion.h"

namespace vane {

class CVaneT312BPRTTHRMChannel;

struct Coefficient {
  std::string name;
  std::string format;  ///< in which it is shown, see `FormatNumber`
  std::function<double()> get;
  std::function<void(double)> set;
};

/// The name of a coefficient of ITS-90 by its place in the range: "a4", "c1"; above 0.01 °C "b8",
/// "d". Empty where the subrange doesn't have it.
std::string RangeCoefficientName(std::int32_t subrange, std::int32_t index);

/// All values of a conversion of type `ct`, in the order of the readout: "RTPW", "a4", "R0", "c10".
/// Good until the conversion or one of its subranges changes; none where there are no settings.
std::vector<Coefficient> CoefficientsOf(CConversionSettings* settings, EVaneConversionType ct);
std::vector<Coefficient> CoefficientsOf(const CVaneT312BPRTTHRMChannel& channel);

}  // namespace vane
