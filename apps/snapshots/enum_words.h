// An enumeration with the texts of its members, as rules and rows take it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vane::thermoscribe {

/// `Text` gives the text of a member.
template <auto Text, auto... Choices>
struct EnumWords {
  static std::string Of(auto choice) { return Text(choice); }

  static std::vector<std::string> All() { return {Text(Choices)...}; }

  /// Nothing for the text of none of them.
  static auto Find(std::string_view word) {
    std::optional<std::common_type_t<decltype(Choices)...>> found;
    ((Text(Choices) == word ? void(found = Choices) : void()), ...);
    return found;
  }
};

}  // namespace vane::thermoscribe
