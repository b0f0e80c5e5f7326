#include "apps/thermoscribe/probe_input.h"

#include <algorithm>
#include <iterator>

#include "apps/thermoscribe/assignments.h"
#include "apps/thermoscribe/command.h"
#include "vane/instrument/t312b.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kProbe = "probe";

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

// Of a coefficient, under the name that was typed.
ProbeKey KeyOf(const std::string& name) {
  std::string names;
  for (const ProbeMemberRow& row : ProbeMembers()) {
    if (Folded(row.name) == Folded(name)) return ProbeKey(row);
    names += std::string(row.name) + ", ";
  }
  if (IsCoefficient(Folded(name))) return ProbeKey(name);
  throw CUsageError("\"" + name + "\" is nothing that a probe has. It has " + names +
                    "and the coefficients of the conversion (RTPW, R0, alpha, delta, beta, a4, c1, "
                    "d, A0, B0, c0 ...).");
}

Value TypedValue(const ProbeKey& key, const std::string& text) {
  const ProbeMemberRow* const row = key.row;
  if (row != nullptr && row->maybenone && Folded(text) == "none") return {};
  const std::optional<Value> value = row != nullptr ? ValueOf(row->rule, text) : NumberOf(text);
  if (value) return *value;
  throw CUsageError(key.Name() + " can't be \"" + text + "\". It is " +
                    (row != nullptr ? ExpectedText(row->rule) : "a number") +
                    (row != nullptr && row->maybenone ? ", or none" : "") + ".");
}

}  // namespace

void AddProbeAssignment(ProbeAssignments& assignments, const std::string& text, bool takesprobe) {
  const auto [name, value] = AssignmentIn(text);
  if (takesprobe && Folded(name) == kProbe) {
    if (assignments.probe) throw CUsageError("probe is given twice.");
    assignments.probe =
        static_cast<std::int16_t>(WholeNumberIn(kProbe, value, 1, CVaneT312B::NumProbes()));
    return;
  }
  ProbeKey key = KeyOf(name);
  for (const ProbeValue& other : assignments.values) {
    if (other.key.row == key.row && Folded(other.key.coefficient) == Folded(key.coefficient)) {
      throw CUsageError(other.key.Name() + " is given twice.");
    }
  }
  Value typed = TypedValue(key, value);
  assignments.values.push_back({std::move(key), std::move(typed)});
}

std::vector<std::string> ProbeAssignmentWords(bool takesprobe) {
  std::vector<std::string> words;
  if (takesprobe) words.push_back(std::string(kProbe) + "=");
  for (const ProbeMemberRow& row : ProbeMembers()) {
    std::ranges::move(AssignmentWords(row.name, row.rule), std::back_inserter(words));
  }
  return words;
}

}  // namespace vane::thermoscribe
