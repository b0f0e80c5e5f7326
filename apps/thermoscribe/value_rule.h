// What a value that a person may write can be: a number within limits, or one of some words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/output.h"

namespace vane {

struct ValueRule {
  // Of a number; otherwise both are 0.
  double minimum = 0;
  double maximum = 0;
  bool whole = false;

  /// The words, in their order; null for any other value.
  std::vector<std::string> (*choices)() = nullptr;
};

/// A word as it is compared: in lower case, without the sign of degrees.
std::string Folded(std::string_view text);

/// All of `text` as a number with "."; nothing when it is none. Infinities are no numbers.
std::optional<double> NumberOf(std::string_view text);

/// The value that a person has typed: a choice in letters of either case and with or without the
/// sign of degrees, a number within the limits, any text where there is no rule. Nothing when it is
/// none of these.
std::optional<Json> ValueOf(const ValueRule& rule, std::string_view text);

/// What can be typed to set `name`: "NAME=", and with each word that there is.
std::vector<std::string> AssignmentWords(std::string_view name, const ValueRule& rule);

/// What `ValueOf` would give, whether a program has written it or a person has changed it.
bool Allows(const ValueRule& rule, const Json& value);

/// "2 to 200", or "None, Average, Exponential"; empty where there is no rule.
std::string AllowedText(const ValueRule& rule);

/// The same as the end of a sentence that refuses a value: "one of ...", "a whole number, ...". The
/// decimal point is ".", as on the command line and in files; nobody is asked for the user's.
std::string ExpectedText(const ValueRule& rule);

}  // namespace vane
