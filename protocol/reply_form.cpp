#include "protocol/reply_form.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>

#include "protocol/letters.h"

namespace vane::protocol {
namespace {

constexpr std::string_view kNoSubrange = "NONE";
constexpr std::int32_t kSubranges = 11;  // of ITS-90

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool IsControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

// A letter, a sign that units are written with, or one of the display's own set.
constexpr bool IsUnitCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '/' || c == '%' || c < 0;
}

std::string_view WithoutBlanksBefore(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text;
}

std::string_view WithoutBlanks(std::string_view text) {
  text = WithoutBlanksBefore(text);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool IsSame(std::string_view one, std::string_view other, bool eithercase) {
  return eithercase ? IsSameWord(one, other) : one == other;
}

// Takes the number at the start of `text` off it. Blanks may stand before it and behind its sign.
std::optional<double> TakeNumber(std::string_view& text) {
  text = WithoutBlanksBefore(text);
  const bool isnegative = text.starts_with('-');
  if (isnegative || text.starts_with('+')) text = WithoutBlanksBefore(text.substr(1));
  // `from_chars` also takes a second sign and the names of what is not a number.
  const std::size_t first = text.starts_with('.') ? 1 : 0;
  if (first >= text.size() || !IsDigit(text[first])) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  // Too near to 0 for any Double is 0 to those who read it; too far from it is nothing.
  if (error == std::errc::result_out_of_range) {
    const std::string_view digits(text.data(), static_cast<std::size_t>(end - text.data()));
    const bool isnearzero = digits.find("e-") != digits.npos || digits.find("E-") != digits.npos ||
                            digits.find_first_not_of("0.") > digits.find('.');
    if (!isnearzero) return std::nullopt;
    number = 0;
  } else if (error != std::errc{}) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return isnegative ? -number : number;
}

bool FitsNumber(const ReplyForm& form, std::string_view reply) {
  const auto number = TakeNumber(reply);
  if (!number || *number < form.lowest || *number > form.highest) return false;
  if (form.kind == EReply::WHOLE && *number != std::trunc(*number)) return false;
  const std::string_view unit = WithoutBlanks(reply);
  return unit.empty() || (reply.front() == ' ' && std::ranges::all_of(unit, IsUnitCharacter));
}

bool FitsWord(const ReplyForm& form, std::string_view reply) {
  reply = WithoutBlanks(reply);
  for (std::string_view words = form.words; !words.empty();) {
    const std::string_view word = words.substr(0, words.find('|'));
    words.remove_prefix(std::min(word.size() + 1, words.size()));
    const std::size_t star = word.find('*');
    if (star == word.npos) {
      if (IsSame(reply, word, form.eithercase)) return true;
      continue;
    }
    const std::string_view head = word.substr(0, star);
    const std::string_view tail = word.substr(star + 1);
    if (reply.size() >= head.size() + tail.size() &&
        IsSame(reply.substr(0, head.size()), head, form.eithercase) &&
        IsSame(reply.substr(reply.size() - tail.size()), tail, form.eithercase)) {
      return true;
    }
  }
  return false;
}

// The rule that reads it looks for a number with its bracket anywhere, so that 11 is also 1.
bool FitsSubrange(const ReplyForm& form, std::string_view reply) {
  reply = WithoutBlanks(reply);
  if (IsSameWord(reply, kNoSubrange)) return true;
  const std::string_view digits = reply.substr(0, reply.find(" ("));
  std::int32_t number = 0;
  const char* const last = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), last, number);
  if (digits.size() == reply.size() || error != std::errc{} || end != last) return false;
  if (number < 1 || number > kSubranges) return false;
  const auto first = static_cast<std::int32_t>(form.lowest);
  for (std::int32_t known = first; known <= static_cast<std::int32_t>(form.highest); ++known) {
    if (digits.ends_with(std::to_string(known))) return true;
  }
  return false;
}

// All bounds are whole.
std::string BoundsText(const ReplyForm& form) {
  if (form.lowest == ReplyForm{}.lowest) return {};
  return " from " + std::to_string(static_cast<std::int64_t>(form.lowest)) + " to " +
         std::to_string(static_cast<std::int64_t>(form.highest));
}

std::string WordsText(std::string_view words) {
  std::string text;
  for (const char c : words) {
    if (c == '|') {
      text += ", ";
    } else if (c == '*') {
      text += "...";
    } else {
      text += c;
    }
  }
  return text;
}

std::string KindText(const ReplyForm& form) {
  switch (form.kind) {
    case EReply::NOTHING:
      return "nothing";
    case EReply::NUMBER:
      return "a number" + BoundsText(form);
    case EReply::WHOLE:
      return "a whole number" + BoundsText(form);
    case EReply::WORD:
      return "one of " + WordsText(form.words) + (form.eithercase ? ", in either case" : "");
    case EReply::SUBRANGE:
      return "a number" + BoundsText(form) + " with a bracket, or NONE";
    case EReply::NAME:
      return "a text without a comma";
    case EReply::TEXT:
      return "a text";
    case EReply::ANY:
      return "any text";
  }
  return {};
}

}  // namespace

bool FitsForm(const ReplyForm& form, std::string_view reply) {
  if (reply.empty() && form.maybenothing) return true;
  const bool isblank = WithoutBlanks(reply).empty();
  switch (form.kind) {
    case EReply::NOTHING:
      return reply.empty();
    case EReply::NUMBER:
    case EReply::WHOLE:
      return FitsNumber(form, reply);
    case EReply::WORD:
      return FitsWord(form, reply);
    case EReply::SUBRANGE:
      return FitsSubrange(form, reply);
    case EReply::NAME:
      return !isblank && reply.find(',') == reply.npos && std::ranges::none_of(reply, IsControl);
    case EReply::TEXT:
      return !isblank;
    case EReply::ANY:
      return true;
  }
  return false;
}

std::string FormText(const ReplyForm& form) {
  return KindText(form) + (form.maybenothing ? ", or nothing" : "");
}

}  // namespace vane::protocol
