#include "apps/thermoscribe/command.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "apps/snapshots/value_rule.h"

namespace vane::thermoscribe {

Option Flag(std::string name, bool& target, std::string brief) {
  return {std::move(name), {}, std::move(brief), [&target](const std::string&) { target = true; }};
}

Option TextOption(std::string name, std::string value, std::string& target, std::string brief) {
  return {std::move(name), std::move(value), std::move(brief),
          [&target](const std::string& text) { target = text; }};
}

Option PathOption(std::string name, std::string value, std::string& target, std::string brief,
                  EOffer offer) {
  Option option{std::move(name), std::move(value), std::move(brief), {}};
  option.take = [called = option.LongName(), &target](const std::string& text) {
    if (text.empty()) throw CUsageError(called + " can't be empty.");
    target = text;
  };
  option.offer = offer;
  return option;
}

Option WordOption(std::string name, std::string value, std::vector<std::string> words,
                  std::string& target, std::string brief) {
  Option option{std::move(name), std::move(value), std::move(brief), {}};
  option.take = [name = option.LongName(), words, &target](const std::string& text) {
    for (const std::string& word : words) {
      if (Folded(word) != Folded(text)) continue;
      target = word;
      return;
    }
    throw CUsageError(name + " can't be \"" + text + "\". It is " + Listed(words, "or") + ".");
  };
  option.offer = EOffer::WORDS;
  option.words = std::move(words);
  return option;
}

Option ManyTexts(std::string name, std::string value, std::vector<std::string>& target,
                 std::string brief) {
  Option option{std::move(name), std::move(value), std::move(brief),
                [&target](const std::string& text) { target.push_back(text); }};
  option.takesmany = true;
  return option;
}

double NumberIn(std::string_view name, const std::string& text, double minimum, double maximum) {
  const std::optional<double> number = NumberOf(text);
  if (number && *number >= minimum && *number <= maximum) return *number;
  throw CUsageError(std::string(name) + " can't be \"" + text + "\". It is " +
                    ExpectedText(NumberRule{minimum, maximum}) + ".");
}

std::int64_t WholeNumberIn(std::string_view name, const std::string& text, std::int64_t minimum,
                           std::int64_t maximum) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && last == end && number >= minimum && number <= maximum) return number;
  throw CUsageError(std::string(name) + " can't be \"" + text + "\". It is a whole number, " +
                    std::to_string(minimum) + " to " + std::to_string(maximum) + ".");
}

Option RealOption(std::string name, std::string value, std::optional<double>& target,
                  double minimum, double maximum, std::string brief) {
  Option option{std::move(name), std::move(value), std::move(brief), {}};
  option.take = [name = option.LongName(), &target, minimum, maximum](const std::string& text) {
    target = NumberIn(name, text, minimum, maximum);
  };
  return option;
}

Option DryRun(bool& target) {
  return Flag("--dry-run", target,
              "read, but write nothing: print the lines that\nwould go out, in their order");
}

std::string Listed(const std::vector<std::string>& words, std::string_view last) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 < words.size() ? ", " : " " + std::string(last) + " ";
    text += words[i];
  }
  return text;
}

}  // namespace vane::thermoscribe
