#include "apps/snapshots/value_check.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "apps/snapshots/value_text.h"

namespace vane::thermoscribe {
namespace {

// Fewer than two digits or decimals are no way to keep a value.
constexpr int kLeastDigits = 2;
constexpr int kMostDigits = 17;

// Whether `left` is `whole` with some of its last digits rounded away.
bool IsRounded(double whole, double left) {
  std::array<char, 400> text;
  for (int digits = kLeastDigits; digits <= kMostDigits; ++digits) {
    for (const char* const form : {"%.*e", "%.*f"}) {
      std::snprintf(text.data(), text.size(), form, digits - (form[3] == 'e' ? 1 : 0), whole);
      if (std::strtod(text.data(), nullptr) == left) return true;
    }
  }
  return false;
}

}  // namespace

std::string WhyWrong(const CheckedValue& value) {
  if (value.wanted.IsNone()) return "what isn't known can't be written";
  if (value.wanted.IsNumber() && value.after.IsNumber() &&
      IsRounded(value.wanted.Number(), value.after.Number())) {
    return "it keeps fewer digits";
  }
  return value.after == value.before ? "the readout did not take it" : "it is another value";
}

std::string WrongValueText(const CheckedValue& value) {
  const auto text = [&value](const Value& one) { return TextOf(one, value.unit); };
  if (value.wanted == value.before) {
    return value.name + " should not have changed: it was " + text(value.before) +
           ", and the readout has " + text(value.after) + " now: " + WhyWrong(value) + ".";
  }
  return value.name + ": " + text(value.wanted) + " was written, but the readout has " +
         text(value.after) + ": " + WhyWrong(value) + ".";
}

}  // namespace vane::thermoscribe
