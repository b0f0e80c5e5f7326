#include "adapters/conversions/conversion_object.h"

#include "adapters/conversions/conversion_editor.h"
#include "adapters/conversions/conversion_settings.h"
#include "vane/components/library_error.h"

namespace vane {

CConversion::CConversion(EVaneConversionType ct, CChangedFlag& changed, const ConversionHost& host)
    : type_(ct), host_(host), settings_(MakeConversionSettings(ct, changed)) {}

void CConversion::EditSettings() {
  const auto refuse = [](const char* text) {
    throw LibraryError(ERR_PLATFORM_CALL, "CConversion - EditSettings", text);
  };
  if (!settings_) refuse("This conversion has no values.");
  if (!host_.haswindows) refuse("This program has no dialog for the values of a conversion.");
  EditConversion(*settings_, type_, allowedit_, host_.registry);
}

}  // namespace vane
