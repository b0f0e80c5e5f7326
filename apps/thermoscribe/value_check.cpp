#include "apps/thermoscribe/value_check.h"

#include <array>
#include <cstdio>
#include <cstdlib>

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
  if (value.wanted.is_null()) return "what isn't known can't be written";
  if (value.wanted.is_number() && value.after.is_number() &&
      IsRounded(value.wanted.get<double>(), value.after.get<double>())) {
    return "it keeps fewer digits";
  }
  return value.after == value.before ? "the readout did not take it" : "it is another value";
}

std::string WrongValueText(const std::string& name, const CheckedValue& value,
                           const std::function<std::string(const Json&)>& text) {
  if (value.wanted == value.before) {
    return name + " should not have changed: it was " + text(value.before) +
           ", and the readout has " + text(value.after) + " now: " + WhyWrong(value) + ".";
  }
  return name + ": " + text(value.wanted) + " was written, but the readout has " +
         text(value.after) + ": " + WhyWrong(value) + ".";
}

}  // namespace vane::thermoscribe
