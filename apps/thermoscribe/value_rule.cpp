#include "apps/thermoscribe/value_rule.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace vane {
namespace {

bool HasLimits(const ValueRule& rule) { return rule.minimum < rule.maximum; }

bool IsWithin(const ValueRule& rule, double number) {
  return number >= rule.minimum && number <= rule.maximum &&
         (!rule.whole || std::trunc(number) == number);
}

// Without an exponent, unlike other numbers: these are for comparing.
std::string LimitText(double limit) {
  std::array<char, 32> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), limit, std::chars_format::fixed).ptr;
  return {text.data(), end};
}

std::string ChoicesText(const ValueRule& rule) {
  std::string text;
  for (const std::string& word : rule.choices()) text += (text.empty() ? "" : ", ") + word;
  return text;
}

}  // namespace

std::string Folded(std::string_view text) {
  constexpr std::string_view kDegree = "\u00B0";
  if (text.starts_with(kDegree)) text.remove_prefix(kDegree.size());
  std::string folded(text);
  std::ranges::transform(folded, folded.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return folded;
}

std::optional<double> NumberOf(std::string_view text) {
  double number = 0;
  const auto [last, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || last != text.data() + text.size() || !std::isfinite(number)) {
    return std::nullopt;
  }
  return number;
}

std::optional<Json> ValueOf(const ValueRule& rule, std::string_view text) {
  if (rule.choices != nullptr) {
    for (std::string& word : rule.choices()) {
      if (Folded(word) == Folded(text)) return Json(std::move(word));
    }
    return std::nullopt;
  }
  if (!HasLimits(rule)) return Json(text);
  const std::optional<double> number = NumberOf(text);
  if (!number || !IsWithin(rule, *number)) return std::nullopt;
  return rule.whole ? Json(static_cast<std::int32_t>(*number)) : Json(*number);
}

std::vector<std::string> AssignmentWords(std::string_view name, const ValueRule& rule) {
  std::vector<std::string> words = {std::string(name) + "="};
  if (rule.choices == nullptr) return words;
  for (const std::string& word : rule.choices()) words.push_back(words.front() + word);
  return words;
}

bool Allows(const ValueRule& rule, const Json& value) {
  if (HasLimits(rule)) return value.is_number() && IsWithin(rule, value.get<double>());
  if (!value.is_string()) return false;
  if (rule.choices == nullptr) return true;
  const auto words = rule.choices();
  return std::ranges::find(words, value.get<std::string>()) != words.end();
}

std::string AllowedText(const ValueRule& rule) {
  if (rule.choices != nullptr) return ChoicesText(rule);
  if (!HasLimits(rule)) return {};
  return WithUsersSeparator(LimitText(rule.minimum)) + " to " +
         WithUsersSeparator(LimitText(rule.maximum));
}

std::string ExpectedText(const ValueRule& rule) {
  if (rule.choices != nullptr) return "one of " + ChoicesText(rule);
  if (!HasLimits(rule)) return "a text";
  return (rule.whole ? "a whole number, " : "a number, ") + LimitText(rule.minimum) + " to " +
         LimitText(rule.maximum);
}

}  // namespace vane
