#include "apps/thermoscribe/probe_members.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/probe_record.h"
#include "apps/thermoscribe/value_rule.h"
#include "vane/components/components.h"
#include "vane/support/display_texts.h"
#include "vane/support/field_editing.h"

namespace vane {
namespace {

using Channel = CVaneT312BPRTTHRMChannel;

struct MemberRow {
  std::string_view name;
  ValueRule rule;
  bool maybenone = false;  ///< null is a value of it
  bool isconversion = true;
};

constexpr MemberRow kMembers[] = {
    {.name = "serial", .rule = {}, .isconversion = false},
    {.name = "reference", .rule = {.choices = ReferenceWords}, .isconversion = false},
    {.name = "current",
     .rule = {.minimum = Channel::MinProbeCurrent(), .maximum = Channel::MaxProbeCurrent()},
     .isconversion = false},
    {.name = "offset3wire",
     .rule = {.minimum = Channel::MinProbe3WireOffset(), .maximum = Channel::MaxProbe3WireOffset()},
     .isconversion = false},
    {.name = "conversion", .rule = {.choices = ConversionWords}},
    {.name = "lowrange", .rule = {.minimum = 1, .maximum = 5, .whole = true}, .maybenone = true},
    {.name = "highrange", .rule = {.minimum = 6, .maximum = 11, .whole = true}, .maybenone = true},
    {.name = "scale",
     .rule = {.choices =
                  [] {
                    return std::vector<std::string>{"90", "68"};
                  }}},
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

Json MemberValue(const MemberRow& row, const std::string& text) {
  if (row.name == "serial") {
    if (!IsSerial(text)) Refuse(row.name, text, kSerialRule);
    // The readout's serial numbers are read in capital letters.
    std::string serial = text;
    std::ranges::transform(serial, serial.begin(), [](char c) {
      return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return serial;
  }
  if (row.maybenone && Folded(text) == "none") return nullptr;
  std::optional<Json> value = ValueOf(row.rule, text);
  if (!value) Refuse(row.name, text, ExpectedText(row.rule) + (row.maybenone ? ", or none" : ""));
  return row.name == "scale" ? Json(std::stoi(value->get<std::string>())) : *std::move(value);
}

std::string MemberNames() {
  std::string names;
  for (const MemberRow& row : kMembers) names += std::string(row.name) + ", ";
  return names +
         "and the coefficients of the conversion (RTPW, R0, alpha, delta, beta, a4, c1, d, A0, B0, "
         "c0 ...)";
}

// Whether a file's record may hold it; what a readout tells as unknown stands there too.
bool MayStand(const MemberRow& row, const Json& value) {
  if (row.name == "serial") {
    // A readout may hold one that nobody can write, but none with a control character.
    return value.is_string() &&
           value.get<std::string>().size() <=
               static_cast<std::size_t>(Channel::MaxSerialLength()) &&
           std::ranges::none_of(value.get<std::string>(),
                                [](unsigned char c) { return c < ' ' || c == 0x7F; });
  }
  if (row.name == "scale") return value.is_null() || value == 90 || value == 68;
  if (row.name == "reference" && value == RefResistorText(ET312BProbeRefResistor::PRR_NONE)) {
    return true;
  }
  if (value.is_null()) return row.maybenone || row.name == "conversion";
  return Allows(row.rule, value);
}

std::string ExpectedInFile(const MemberRow& row) {
  if (row.name == "serial") return "a text of up to 8 characters without control characters";
  if (row.name == "scale") return "90, 68 or null";
  return ExpectedText(row.rule) + (row.maybenone ? ", or null" : "");
}

}  // namespace

bool IsSerial(const std::string& text) {
  return !text.empty() && text.size() <= static_cast<std::size_t>(Channel::MaxSerialLength()) &&
         std::ranges::all_of(text, [](char character) {
           if (character <= ' ') return false;
           std::int16_t key = character;
           FilterSerialKey(key);
           return key != 0;
         });
}

void AssignProbeMember(Json& values, const std::string& name, const std::string& text) {
  for (const MemberRow& row : kMembers) {
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
  for (const MemberRow& row : kMembers) {
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
  for (const MemberRow& row : kMembers) {
    const std::string name(row.name);
    const bool isoptional = row.isconversion && row.name != "conversion";
    if (!record.contains(name)) {
      if (isoptional) continue;
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

}  // namespace vane
