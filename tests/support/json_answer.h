// JSON that a program has printed, to be looked into and changed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "apps/snapshots/json_text.h"

namespace vane {

struct Answer : thermoscribe::Value {
  using Value::Value;
  Answer() = default;
  Answer(Value value) : Value(std::move(value)) {}  // NOLINT: a value is an answer

  // None when it isn't there.
  Answer operator[](std::string_view name) const {
    const auto* const members = If<thermoscribe::Members>();
    const Value* const found = members == nullptr ? nullptr : Find(*members, name);
    return found == nullptr ? Answer() : Answer(*found);
  }
  thermoscribe::Members Items() const { return std::get<thermoscribe::Members>(held); }
  thermoscribe::List Elements() const { return std::get<thermoscribe::List>(held); }

  // Puts `value` at "/probes/4/current", whose last part may be new.
  void Put(std::string_view path, const Value& value) {
    Value* place = this;
    while (!path.empty()) {
      path.remove_prefix(1);
      const std::string name(path.substr(0, path.find('/')));
      path.remove_prefix(name.size());
      if (auto* const list = std::get_if<thermoscribe::List>(&place->held)) {
        place = &list->at(std::stoul(name));
        continue;
      }
      auto& members = std::get<thermoscribe::Members>(place->held);
      auto member = std::ranges::find(members, name, &thermoscribe::Member::name);
      if (member == members.end()) member = members.insert(member, {name, {}});
      place = &member->value;
    }
    *place = value;
  }

  friend void PrintTo(const Answer& answer, std::ostream* stream) {
    *stream << thermoscribe::JsonText(answer);
  }
};

inline Answer ParsedJson(const std::string& text) { return thermoscribe::ValueOfJson(text); }

}  // namespace vane
