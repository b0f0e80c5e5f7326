#include "adapters/conversions/probe.h"

#include "adapters/conversions/conversion_settings.h"

namespace vane {

CThermometerProbe::CThermometerProbe(bool haswindows)
    : host_{haswindows, nullptr},
      serialnumber_(changed_),
      conversion_(std::make_unique<CConversion>(type_, changed_, host_)) {}

bool CThermometerProbe::ConversionHasSettings(EVaneConversionType ct) const {
  return host_.haswindows && HasConversionSettings(ct);
}

void CThermometerProbe::SetConversionType(EVaneConversionType ct) {
  conversion_ = std::make_unique<CConversion>(ct, changed_, host_);
  type_ = ct;
  changed_.SetChanged(true);
}

}  // namespace vane
