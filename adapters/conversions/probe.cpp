#include "adapters/conversions/probe.h"

#include "adapters/conversions/conversion_object.h"
#include "adapters/conversions/conversion_settings.h"

namespace vane {

CThermometerProbe::CThermometerProbe()
    : serialnumber_(changed_), conversion_(std::make_unique<CConversion>(type_, changed_)) {}

bool CThermometerProbe::ConversionHasSettings(EVaneConversionType ct) const {
  return HasConversionSettings(ct);
}

void CThermometerProbe::SetConversionType(EVaneConversionType ct) {
  conversion_ = std::make_unique<CConversion>(ct, changed_);
  type_ = ct;
  changed_.SetChanged(true);
}

}  // namespace vane
