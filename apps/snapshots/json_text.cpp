#include "apps/snapshots/json_text.h"

#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

namespace vane::thermoscribe {
namespace {

// Keeps its members in the order in which they were given.
using Json = nlohmann::ordered_json;

Json JsonOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> Json {
        using Kind = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Kind, std::monostate>) {
          return nullptr;
        } else if constexpr (std::is_same_v<Kind, List>) {
          Json list = Json::array();
          for (const Value& one : held) list.push_back(JsonOf(one));
          return list;
        } else if constexpr (std::is_same_v<Kind, Members>) {
          Json object = Json::object();
          for (const auto& [name, one] : held) object[name] = JsonOf(one);
          return object;
        } else {
          return held;
        }
      },
      value.held);
}

// Deeper than any file that means something; what lies deeper still must not exhaust the stack.
constexpr int kMostLevels = 100;

Value ValueOf(const Json& json, int level = 0) {
  if (level > kMostLevels) return {};
  switch (json.type()) {
    case Json::value_t::boolean:
      return json.get<bool>();
    case Json::value_t::number_integer:
      return json.get<std::int64_t>();
    case Json::value_t::number_unsigned: {
      const auto number = json.get<std::uint64_t>();
      Value value = static_cast<std::int64_t>(number);
      if (!std::in_range<std::int64_t>(number)) value.held = number;
      return value;
    }
    case Json::value_t::number_float:
      return json.get<double>();
    case Json::value_t::string:
      return json.get<std::string>();
    case Json::value_t::array: {
      List list;
      for (const Json& one : json) list.push_back(ValueOf(one, level + 1));
      return list;
    }
    case Json::value_t::object: {
      Members members;
      for (const auto& [name, one] : json.items())
        members.push_back({name, ValueOf(one, level + 1)});
      return members;
    }
    default:
      return {};
  }
}

}  // namespace

std::string JsonText(const Value& value, int indent) {
  return JsonOf(value).dump(indent > 0 ? indent : -1, ' ', false, Json::error_handler_t::replace);
}

Value ValueOfJson(const std::string& text) {
  std::vector<std::set<std::string>> names;  // of the objects that are open
  const auto look = [&names](int, Json::parse_event_t event, const Json& part) {
    if (event == Json::parse_event_t::object_start) names.emplace_back();
    if (event == Json::parse_event_t::object_end) names.pop_back();
    if (event == Json::parse_event_t::key) {
      const auto name = part.get<std::string>();
      if (!names.back().insert(name).second) {
        throw std::runtime_error(name + ": given twice in one object.");
      }
    }
    return true;
  };
  try {
    return ValueOf(Json::parse(text, look));
  } catch (const Json::parse_error& error) {
    throw CJsonDamage(error.byte);
  }
}

}  // namespace vane::thermoscribe
