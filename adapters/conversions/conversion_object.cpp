#include "adapters/conversions/conversion_object.h"

#include "adapters/conversions/conversion_settings.h"
#include "vane/components/library_error.h"

namespace vane {

CConversion::CConversion(EVaneConversionType ct, CChangedFlag& changed)
    : settings_(MakeConversionSettings(ct, changed)) {}

void CConversion::EditSettings() {
  throw LibraryError(ERR_PLATFORM_CALL, "CConversion - EditSettings",
                     "This program has no dialog for the values of a conversion.");
}

}  // namespace vane
