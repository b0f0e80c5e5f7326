#include "apps/snapshots/value.h"

#include <algorithm>
#include <type_traits>

namespace vane::thermoscribe {

// Here, where a member is a complete type.
Value::Value(double number) : held(number) {}
Value::Value(std::string text) : held(std::move(text)) {}
Value::Value(std::string_view text) : held(std::string(text)) {}
Value::Value(const char* text) : held(std::string(text)) {}
Value::Value(List list) : held(std::move(list)) {}
Value::Value(Members members) : held(std::move(members)) {}

double Value::Number() const {
  if (const auto* const whole = If<std::int64_t>()) return static_cast<double>(*whole);
  if (const auto* const whole = If<std::uint64_t>()) return static_cast<double>(*whole);
  return std::get<double>(held);
}

bool operator==(const Value& left, const Value& right) {
  if (left.held.index() != right.held.index() && left.IsNumber() && right.IsNumber()) {
    return left.Number() == right.Number();
  }
  return left.held == right.held;
}

const Value* Find(const Members& members, std::string_view name) {
  const auto member = std::ranges::find(members, name, &Member::name);
  return member == members.end() ? nullptr : &member->value;
}

Value Known(const std::string& text) { return text.empty() ? Value() : Value(text); }

void Append(std::string& text, std::string_view separator, std::string_view part) {
  if (!text.empty()) text += separator;
  text += part;
}

}  // namespace vane::thermoscribe
