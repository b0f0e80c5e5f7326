// What a value that a person may write can be: a number within limits, one of some words, or a text
// of some form.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "apps/snapshots/value.h"

namespace vane::thermoscribe {

/// A number from `minimum` to `maximum`.
struct NumberRule {
  double minimum;
  double maximum;
  bool whole = false;
};

/// One of some words, in their order; or of some whole numbers that are chosen like words.
struct WordRule {
  std::vector<std::string> (*words)();
  bool arenumbers = false;
};

/// A text of some form.
struct TextRule {
  /// The text as it is kept; nothing where `typed` is none of that form.
  std::optional<std::string> (*taken)(std::string_view typed);
  std::string expected;  ///< what it is, as the end of a sentence
};

using ValueRule = std::variant<NumberRule, WordRule, TextRule>;

/// A word as it is compared: in lower case, without the sign of degrees.
std::string Folded(std::string_view text);

/// All of `text` as a number with "."; nothing when it is none. Infinities are no numbers.
std::optional<double> NumberOf(std::string_view text);

/// The value that a person has typed: a choice in letters of either case and with or without the
/// sign of degrees, a number within the limits, a text of the form. Nothing when it is none of
/// these.
std::optional<Value> ValueOf(const ValueRule& rule, std::string_view text);

/// The words of a rule that has some; none of any other.
std::vector<std::string> WordsOf(const ValueRule& rule);

/// What can be typed to set `name`: "NAME=", and with each word that there is.
std::vector<std::string> AssignmentWords(std::string_view name, const ValueRule& rule);

/// What `ValueOf` would give, whether a program has written it or a person has changed it.
bool Allows(const ValueRule& rule, const Value& value);

/// "2 to 200", or "None, Average, Exponential"; empty for a text.
std::string AllowedText(const ValueRule& rule);

/// The same as the end of a sentence that refuses a value: "one of ...", "a whole number, ...". The
/// decimal point is ".", as on the command line and in files; nobody is asked for the user's.
std::string ExpectedText(const ValueRule& rule);

}  // namespace vane::thermoscribe
