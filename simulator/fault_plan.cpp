#include "simulator/fault_plan.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "protocol/letters.h"
#include "simulator/readout_numbers.h"
#include "simulator/reply.h"

namespace vane::simulator {
namespace {

// What may stand behind a kind's "=".
enum class EValue { NONE, SECONDS, NUMBER, TEXT };

struct FaultKind {
  std::string_view name;
  EFault fault;
  EValue value = EValue::NONE;
  double seconds = 0;  // when none are given
};

constexpr FaultKind kFaultKinds[] = {
    {"drop", EFault::DROP},
    {"delay", EFault::DELAY, EValue::SECONDS, 0.3},
    {"garble", EFault::GARBLE},
    {"split", EFault::SPLIT, EValue::SECONDS, 0.05},
    {"late", EFault::LATE, EValue::SECONDS, 1.5},
    {"refuse", EFault::REFUSE, EValue::NUMBER},
    {"hangup", EFault::HANGUP, EValue::SECONDS, 0.3},
    {"power", EFault::POWER, EValue::SECONDS, 1},
    {"identify", EFault::IDENTIFY},
    {"answer", EFault::ANSWER, EValue::TEXT},
    {"overlong", EFault::OVERLONG},
};

constexpr double kMaxSeconds = 3600;
constexpr std::size_t kMaxAnswerLength = 400;

[[noreturn]] void Fail(std::string_view text, std::string_view reason) {
  throw std::invalid_argument("fault '" + std::string(text) + "': " + std::string(reason));
}

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

// `value` stands behind the "=" of a kind that takes `kind`.
void TakeValue(FaultRule& rule, EValue kind, std::string_view value, std::string_view text) {
  switch (kind) {
    case EValue::NONE:
      Fail(text, "nothing stands behind this kind");
    case EValue::SECONDS: {
      const auto seconds = ParseReal(value);
      if (!seconds || *seconds < 0 || *seconds > kMaxSeconds) Fail(text, "seconds are 0 to 3600");
      rule.seconds = *seconds;
      return;
    }
    case EValue::NUMBER: {
      const auto number = ParseWhole(value);
      if (!number || *number == 0) Fail(text, "a refusal has a whole number other than 0");
      rule.refusal = *number;
      return;
    }
    case EValue::TEXT:
      if (value.size() > kMaxAnswerLength || !std::ranges::all_of(value, IsPrintable)) {
        Fail(text, "an answer is up to 400 printable characters");
      }
      rule.answer = value;
  }
}

}  // namespace

std::string_view FaultName(EFault fault) {
  return std::ranges::find(kFaultKinds, fault, &FaultKind::fault)->name;
}

FaultRule ParseFaultRule(std::string_view text) {
  FaultRule rule;
  const std::size_t colon = text.find(':');
  if (colon == text.npos) Fail(text, "expected WHEN:KIND");
  const std::string_view when = text.substr(0, colon);
  const std::size_t equals = std::min(when.find('='), when.size());
  const std::string_view word = when.substr(0, equals);
  const std::string_view number = when.substr(std::min(equals + 1, when.size()));
  if (protocol::IsSameWord(word, "p")) {
    rule.when = FaultRule::EWhen::CHANCE;
    const auto chance = ParseReal(number);
    if (!chance || *chance < 0 || *chance > 1) Fail(text, "p is a probability from 0 to 1");
    rule.chance = *chance;
  } else if (protocol::IsSameWord(word, "at") || protocol::IsSameWord(word, "every") ||
             protocol::IsSameWord(word, "write")) {
    using enum FaultRule::EWhen;
    rule.when = protocol::IsSameWord(word, "at")      ? AT
                : protocol::IsSameWord(word, "every") ? EVERY
                                                      : WRITE;
    const auto exchange = ParseWhole(number);
    if (!exchange || *exchange < 1) Fail(text, "exchanges are counted from 1");
    rule.number = static_cast<std::uint64_t>(*exchange);
  } else {
    Fail(text, "WHEN is at=N, every=N, write=N or p=CHANCE");
  }

  const std::string_view what = text.substr(colon + 1);
  const std::size_t value = what.find('=');
  const auto* kind = std::ranges::find_if(kFaultKinds, [&](const FaultKind& one) {
    return protocol::IsSameWord(one.name, what.substr(0, value));
  });
  if (kind == std::end(kFaultKinds)) {
    Fail(text,
         "KIND is drop, delay, garble, split, late, refuse, hangup, power, identify, answer or "
         "overlong");
  }
  rule.fault = kind->fault;
  rule.seconds = kind->seconds;
  rule.refusal = static_cast<std::int32_t>(ERefusal::BUSY);
  if (value != what.npos) {
    TakeValue(rule, kind->value, what.substr(value + 1), text);
  } else if (kind->value == EValue::TEXT) {
    Fail(text, "the answer stands behind a '=', and may be empty");
  }
  return rule;
}

const FaultRule* CFaultPlan::Strike(std::uint64_t exchange, std::uint64_t write) const {
  for (std::size_t i = 0; i < rules_.size(); ++i) {
    const FaultRule& rule = rules_[i];
    bool strikes = false;
    switch (rule.when) {
      case FaultRule::EWhen::AT:
        strikes = exchange == rule.number;
        break;
      case FaultRule::EWhen::EVERY:
        strikes = exchange % rule.number == 0;
        break;
      case FaultRule::EWhen::WRITE:
        strikes = write == rule.number;
        break;
      case FaultRule::EWhen::CHANCE:
        strikes = ScatterUnit({seed_, exchange, i}) < rule.chance;
        break;
    }
    if (strikes) return &rule;
  }
  return nullptr;
}

std::string CFaultPlan::Garble(std::string line, std::uint64_t exchange) const {
  // A change in the low half of a byte alone: a hexadecimal digit becomes another one or none, and
  // never its own small letter.
  const auto change = [](char& c, std::uint64_t bits) {
    c = static_cast<char>(c ^ static_cast<char>(1 + bits % 15));
  };
  const std::uint64_t chance =
      Scatter({seed_, exchange, std::numeric_limits<std::uint64_t>::max()});
  if (line.size() < 2) return line;
  const std::size_t place = (chance >> 32) % (line.size() - 1);
  change(line[place], chance & 0xFF);
  change(line[place + 1], (chance >> 8) & 0xFF);
  return line;
}

}  // namespace vane::simulator
