// The window in which a user sees and edits the values of a conversion.
//
// It shows the values that the type has, by their names in the field. What a user leaves as it is
// keeps all its digits, whatever the field shows of them; nothing reaches the conversion before OK.
#pragma once

#include <memory>

#include "vane/components/conversion.h"
#include "vane/components/registry.h"

namespace vane {

/// Modal, above the window that is shown; made by the installed factory. Without `allowedit` the
/// values can be read and copied. `registry` keeps the window's place; null keeps none.
void EditConversion(CConversionSettings& settings, EVaneConversionType ct, bool allowedit,
                    const std::shared_ptr<CVaneRegistry>& registry);

}  // namespace vane
