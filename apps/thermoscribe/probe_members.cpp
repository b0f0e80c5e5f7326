#include "apps/thermoscribe/probe_members.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/shown_record.h"
#include "apps/thermoscribe/value_rule.h"
#include "vane/components/components.h"
#include "vane/support/display_texts.h"
#include "vane/support/field_editing.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

using Channel = CVaneT312BPRTTHRMChannel;

// The readout's serial numbers are read in capital letters.
std::optional<std::string> SerialTaken(std::string_view typed) {
  const bool isgood = !typed.empty() &&
                      typed.size() <= static_cast<std::size_t>(Channel::MaxSerialLength()) &&
                      std::ranges::all_of(typed, [](char character) {
                        if (character <= ' ') return false;
                        std::int16_t key = character;
                        FilterSerialKey(key);
                        return key != 0;
                      });
  return isgood ? std::optional<std::string>(UpperCase(typed)) : std::nullopt;
}

std::optional<std::string> SerialInFile(std::string_view serial) {
  const bool isgood =
      serial.size() <= static_cast<std::size_t>(Channel::MaxSerialLength()) &&
      std::ranges::none_of(serial, [](unsigned char c) { return c < ' ' || c == 0x7F; });
  return isgood ? std::optional<std::string>(serial) : std::nullopt;
}

std::optional<std::string> UnknownReference(std::string_view word) {
  const std::string unknown = RefResistorText(ET312BProbeRefResistor::PRR_NONE);
  return word == unknown ? std::optional<std::string>(unknown) : std::nullopt;
}

std::vector<std::string> ScaleWords() { return {"90", "68"}; }

const ProbeMemberRow kMembers[] = {
    {.name = "serial",
     .rule = TextRule{SerialTaken, "1 to 8 letters, digits and \"-\""},
     .isconversion = false,
     .infile = TextRule{SerialInFile, "a text of up to 8 characters without control characters"}},
    {.name = "reference",
     .rule = WordRule{ReferenceWords},
     .isconversion = false,
     .infile = TextRule{UnknownReference, nullptr}},
    {.name = "current",
     .rule = NumberRule{Channel::MinProbeCurrent(), Channel::MaxProbeCurrent()},
     .isconversion = false},
    {.name = "offset3wire",
     .rule = NumberRule{Channel::MinProbe3WireOffset(), Channel::MaxProbe3WireOffset()},
     .isconversion = false},
    {.name = "conversion", .rule = WordRule{ConversionWords}, .maybeunknown = true},
    {.name = "lowrange", .rule = NumberRule{1, 5, true}, .ofsome = true, .maybenone = true},
    {.name = "highrange", .rule = NumberRule{6, 11, true}, .ofsome = true, .maybenone = true},
    {.name = "scale", .rule = WordRule{ScaleWords, true}, .ofsome = true, .maybeunknown = true},
};

// The coefficients of all conversions; several conversions share a name.
bool IsCoefficient(const std::string& folded) {
  static constexpr std::string_view kWords[] = {"rtpw", "r0", "alpha", "delta", "beta", "d"};
  if (std::ranges::find(kWords, folded) != std::end(kWords)) return true;
  const std::string number = folded.substr(std::min<std::size_t>(1, folded.size()));
  const bool isnumber = !number.empty() && number.size() <= 2 &&
                        number.find_first_not_of("0123456789") == number.npos &&
                        (number.size() == 1 || number[0] != '0');
  if (!isnumber) return false;
  const int highest = folded[0] == 'a' ? 11 : folded[0] == 'b' ? 9 : folded[0] == 'c' ? 10 : -1;
  return std::stoi(number) <= highest;
}

[[noreturn]] void Refuse(std::string_view name, const std::string& text,
                         const std::string& expected) {
  throw CUsageError(std::string(name) + " can't be \"" + text + "\". It is " + expected + ".");
}

Json MemberValue(const ProbeMemberRow& row, const std::string& text) {
  if (row.maybenone && Folded(text) == "none") return nullptr;
  std::optional<Json> value = ValueOf(row.rule, text);
  if (!value) Refuse(row.name, text, ExpectedText(row.rule) + (row.maybenone ? ", or none" : ""));
  return *std::move(value);
}

std::string MemberNames() {
  std::string names;
  for (const ProbeMemberRow& row : kMembers) names += std::string(row.name) + ", ";
  return names +
         "and the coefficients of the conversion (RTPW, R0, alpha, delta, beta, a4, c1, d, A0, B0, "
         "c0 ...)";
}

// Whether a file's record may hold it; what a readout tells as unknown stands there too.
bool MayStand(const ProbeMemberRow& row, const Json& value) {
  if (value.is_null()) return row.maybenone || row.maybeunknown;
  return Allows(row.rule, value) || (row.infile && Allows(*row.infile, value));
}

std::string ExpectedInFile(const ProbeMemberRow& row) {
  const bool isother = row.infile && row.infile->expected != nullptr;
  return (isother ? row.infile->expected : ExpectedText(row.rule)) +
         (row.maybenone || row.maybeunknown ? ", or null" : "");
}

}  // namespace

std::span<const ProbeMemberRow> ProbeMembers() { return kMembers; }

void AssignProbeMember(Json& values, const std::string& name, const std::string& text) {
  for (const ProbeMemberRow& row : kMembers) {
    if (Folded(row.name) != Folded(name)) continue;
    if (values.contains(std::string(row.name))) {
      throw CUsageError(std::string(row.name) + " is given twice.");
    }
    values[std::string(row.name)] = MemberValue(row, text);
    return;
  }
  if (!IsCoefficient(Folded(name))) {
    throw CUsageError("\"" + name + "\" is nothing that a probe has. It has " + MemberNames() +
                      ".");
  }
  const std::optional<double> number = NumberOf(text);
  if (!number || !std::isfinite(*number)) Refuse(name, text, "a number");
  Json& coefficients = values["coefficients"];
  for (const auto& [other, value] : coefficients.items()) {
    if (Folded(other) == Folded(name)) throw CUsageError(other + " is given twice.");
  }
  coefficients[name] = *number;
}

std::vector<std::string> ProbeMemberAssignments() {
  std::vector<std::string> all;
  for (const ProbeMemberRow& row : kMembers) {
    std::ranges::move(AssignmentWords(row.name, row.rule), std::back_inserter(all));
  }
  return all;
}

bool HoldsConversion(const Json& values) {
  return values.contains("coefficients") || std::ranges::any_of(kMembers, [&](const auto& row) {
           return row.isconversion && values.contains(std::string(row.name));
         });
}

std::string ProblemOfRecord(const Json& record) {
  for (const ProbeMemberRow& row : kMembers) {
    const std::string name(row.name);
    // What only some conversions have may be left out; the conversion itself misses it then.
    if (!record.contains(name)) {
      if (row.ofsome) continue;
      return name + " is missing";
    }
    if (!MayStand(row, record[name])) {
      return name + " is " + record[name].dump() + " and not " + ExpectedInFile(row);
    }
  }
  if (!record.contains("coefficients") || !record["coefficients"].is_object()) {
    return "coefficients is missing or no object";
  }
  for (const auto& [name, value] : record["coefficients"].items()) {
    if (!value.is_number()) return "coefficients." + name + " is " + value.dump() + ", no number";
  }
  // The rest is what the conversion itself says.
  Channel scratch(InstalledComponents());
  try {
    StoreProbeRecord(scratch, record);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  const Json whole = ProbeRecord(scratch, 1);
  for (const auto& [name, value] : record.items()) {
    if (!whole.contains(name)) return name + " is nothing that a probe has";
  }
  for (const auto& [name, value] : whole.items()) {
    // What only another conversion has may be left out.
    if (!record.contains(name) && !value.is_null()) return name + " is missing";
    if (!value.is_object()) continue;
    for (const auto& [coefficient, number] : value.items()) {
      if (!record[name].contains(coefficient)) return name + "." + coefficient + " is missing";
    }
  }
  return {};
}

}  // namespace vane::thermoscribe
