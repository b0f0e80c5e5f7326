// Values of the readout and of answers, typed until they are printed.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vane::thermoscribe {

struct Value;
struct Member;

using List = std::vector<Value>;
/// Members with their names, in their order.
using Members = std::vector<Member>;

template <class T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

/// A value that may be none: "not there", or not known.
struct Value {
  /// The unsigned number is one of a file that no signed one can hold.
  using Held = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string,
                            List, Members>;

  Value() = default;
  // NOLINTBEGIN(google-explicit-constructor): what a value can hold is one.
  Value(std::same_as<bool> auto flag) : held(flag) {}
  Value(WholeNumber auto number) : held(std::in_place_type<std::int64_t>, number) {}
  Value(double number);
  Value(std::string text);
  Value(std::string_view text);
  Value(const char* text);
  Value(List list);
  Value(Members members);
  // NOLINTEND(google-explicit-constructor)

  template <class T>
  bool Is() const {
    return std::holds_alternative<T>(held);
  }
  /// Null when it is of another kind.
  template <class T>
  const T* If() const {
    return std::get_if<T>(&held);
  }

  bool IsNone() const { return Is<std::monostate>(); }
  bool IsWhole() const { return Is<std::int64_t>() || Is<std::uint64_t>(); }
  bool IsNumber() const { return IsWhole() || Is<double>(); }

  // Of a value that is one.
  double Number() const;
  const std::string& Text() const { return std::get<std::string>(held); }
  bool Flag() const { return std::get<bool>(held); }

  /// Numbers are equal by what they are, whole or not.
  friend bool operator==(const Value& left, const Value& right);

  Held held;
};

struct Member {
  std::string name;
  Value value;

  friend bool operator==(const Member&, const Member&) = default;
};

/// Null when there is no member `name`.
const Value* Find(const Members& members, std::string_view name);

/// None for the empty text, or without a value.
Value Known(const std::string& text);
template <class T>
Value Known(const std::optional<T>& value) {
  return value ? Value(*value) : Value();
}

/// Puts `part` behind `text`, with `separator` between where there is text.
void Append(std::string& text, std::string_view separator, std::string_view part);

}  // namespace vane::thermoscribe
