// Values around a write: what has changed, and why one is not what it should be behind it.
#pragma once

#include <string>
#include <string_view>

#include "apps/snapshots/value.h"

namespace vane::thermoscribe {

struct CheckedValue {
  std::string name;
  Value before;
  Value wanted;  ///< the same as `before` where no change was asked for
  Value after;
  std::string_view unit = {};  ///< for people
};

/// "it keeps fewer digits" only where the digits that are left are those of the wanted value.
std::string WhyWrong(const CheckedValue& value);

/// A sentence on a value that is not the wanted one.
std::string WrongValueText(const CheckedValue& value);

}  // namespace vane::thermoscribe
