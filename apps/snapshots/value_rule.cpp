#include "apps/snapshots/value_rule.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <utility>

#include "apps/snapshots/value_text.h"

namespace vane::thermoscribe {
namespace {

bool IsWithin(const NumberRule& rule, double number) {
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

std::string WordsText(const WordRule& rule) {
  std::string text;
  for (const std::string& word : rule.words()) Append(text, ", ", word);
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

std::optional<Value> ValueOf(const ValueRule& rule, std::string_view text) {
  if (const auto* const words = std::get_if<WordRule>(&rule)) {
    for (std::string& word : words->words()) {
      if (Folded(word) != Folded(text)) continue;
      return words->arenumbers ? Value(std::stoi(word)) : Value(std::move(word));
    }
    return std::nullopt;
  }
  if (const auto* const form = std::get_if<TextRule>(&rule)) {
    std::optional<std::string> taken = form->taken(text);
    return taken ? std::optional<Value>(*std::move(taken)) : std::nullopt;
  }
  const auto& limits = std::get<NumberRule>(rule);
  const std::optional<double> number = NumberOf(text);
  if (!number || !IsWithin(limits, *number)) return std::nullopt;
  return limits.whole ? Value(static_cast<std::int32_t>(*number)) : Value(*number);
}

std::vector<std::string> AssignmentWords(std::string_view name, const ValueRule& rule) {
  std::vector<std::string> all = {std::string(name) + "="};
  for (const std::string& word : WordsOf(rule)) all.push_back(all.front() + word);
  return all;
}

std::vector<std::string> WordsOf(const ValueRule& rule) {
  const auto* const words = std::get_if<WordRule>(&rule);
  return words == nullptr ? std::vector<std::string>() : words->words();
}

bool Allows(const ValueRule& rule, const Value& value) {
  if (const auto* const limits = std::get_if<NumberRule>(&rule)) {
    return value.IsNumber() && IsWithin(*limits, value.Number());
  }
  if (const auto* const whole = value.If<std::int64_t>()) {
    return ValueOf(rule, std::to_string(*whole)) == value;
  }
  return value.Is<std::string>() && ValueOf(rule, value.Text()) == value;
}

std::string AllowedText(const ValueRule& rule) {
  if (const auto* const words = std::get_if<WordRule>(&rule)) return WordsText(*words);
  const auto* const limits = std::get_if<NumberRule>(&rule);
  if (limits == nullptr) return {};
  return WithUsersSeparator(LimitText(limits->minimum)) + " to " +
         WithUsersSeparator(LimitText(limits->maximum));
}

std::string ExpectedText(const ValueRule& rule) {
  if (const auto* const words = std::get_if<WordRule>(&rule)) return "one of " + WordsText(*words);
  if (const auto* const form = std::get_if<TextRule>(&rule)) return form->expected;
  const auto& limits = std::get<NumberRule>(rule);
  return (limits.whole ? "a whole number, " : "a number, ") + LimitText(limits.minimum) + " to " +
         LimitText(limits.maximum);
}

}  // namespace vane::thermoscribe
