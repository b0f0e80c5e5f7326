// Values around a write: what has changed, and why one is not what it should be behind it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "apps/snapshots/value.h"
#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CHost;

struct CheckedValue {
  std::string name;
  Value before;
  Value wanted;  ///< the same as `before` where no change was asked for
  Value after;
  std::string_view unit = {};  ///< for people
};

/// "it keeps fewer digits" only where the digits that are left are those of the wanted value.
std::string WhyWrong(const CheckedValue& value);

/// Shows the values that have changed, and tells of each that is not what it should be; `FAILED`
/// then.
EExitCode ShowChanges(CHost& host, const std::vector<CheckedValue>& values);

}  // namespace vane::thermoscribe
