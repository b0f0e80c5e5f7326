// Why a value in the readout is not what it should be behind a write.
#pragma once

#include <functional>
#include <string>

#include "apps/thermoscribe/output.h"

namespace vane::thermoscribe {

struct CheckedValue {
  Json before;
  Json wanted;  ///< the same as `before` where no change was asked for
  Json after;
};

/// "it keeps fewer digits" only where the digits that are left are those of the wanted value.
std::string WhyWrong(const CheckedValue& value);

/// A sentence on the value of `name`, in which `text` writes values.
std::string WrongValueText(const std::string& name, const CheckedValue& value,
                           const std::function<std::string(const Json&)>& text);

}  // namespace vane::thermoscribe
