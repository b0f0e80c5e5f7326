// Values as JSON text, and JSON text as values: the only place that knows JSON.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "apps/snapshots/value.h"

namespace vane::thermoscribe {

/// In one line; with `indent` above 0, a member per line. An instrument may send any byte; one that
/// is no UTF-8 becomes U+FFFD.
std::string JsonText(const Value& value, int indent = 0);

/// Text that is no JSON.
class CJsonDamage : public std::runtime_error {
 public:
  explicit CJsonDamage(std::size_t place)
      : std::runtime_error("damaged at character " + std::to_string(place)) {}
};

/// Raises `CJsonDamage`, or `std::runtime_error` for a member that stands twice in its object: one
/// of the two values would go unseen.
Value ValueOfJson(const std::string& text);

}  // namespace vane::thermoscribe
