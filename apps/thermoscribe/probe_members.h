// The members of a probe's record as a person or a file gives them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/output.h"
#include "apps/thermoscribe/value_rule.h"

namespace vane::thermoscribe {

/// A member of a probe's record other than its coefficients.
struct ProbeMemberRow {
  std::string_view name;
  ValueRule rule;
  bool isconversion = true;   ///< may be behind the passcode
  bool ofsome = false;        ///< only some conversions have it
  bool maybenone = false;     ///< null is a value of it, and "none" its word
  bool maybeunknown = false;  ///< null is what a readout doesn't tell; it can't be written
  /// What else a file may hold: what a readout can have got, and nobody can write.
  std::optional<TextRule> infile = std::nullopt;
};

/// In the order of the record.
std::span<const ProbeMemberRow> ProbeMembers();

/// Puts an assignment that a person has typed into `values`, whose members are those of a probe's
/// record; a coefficient goes under "coefficients". Raises `CUsageError` with a text that tells
/// what is allowed, and for a member that is there already. Whether the probe's conversion has the
/// member remains to be seen.
void AssignProbeMember(Json& values, const std::string& name, const std::string& text);

/// What can be typed for the members but the coefficients: "serial=", "scale=90".
std::vector<std::string> ProbeMemberAssignments();

/// Whether `values` touches the conversion, which may be behind the passcode.
bool HoldsConversion(const Json& values);

/// What is wrong with a record out of a file, with the member's name at its head; empty when all of
/// it can be stored.
std::string ProblemOfRecord(const Json& record);

}  // namespace vane::thermoscribe
