// Whether the numbers of a record can be those of a thermometer, without a measurement.
//
// What is found is odd and may yet be right: a warning for the user, never a reason to refuse.
#pragma once

#include <string>
#include <vector>

#include "physics/record.h"

namespace vane::physics {

struct Finding {
  std::string parameter;  ///< as of `ParametersOf`; empty for the record as a whole
  std::string text;       ///< a sentence for the user
};

std::vector<Finding> CheckRecord(const Record& record);

}  // namespace vane::physics
