// A window as a line of text for each control that the user sees.
#pragma once

#include <string>
#include <vector>

#include "vane/components/form.h"

namespace vane::test {

/// "txtCurrent=1.5", "cboReference=100 Ohm", "cmdApply"; " off" behind what is disabled. Captions
/// are left out, and so are labels and frames, but for notices and what is disabled. Only the
/// controls whose names hold one of `parts`; all when none is given.
std::string FormText(const ui::CForm& form, const std::vector<std::string>& parts = {});

}  // namespace vane::test
