// The members of a probe's record as a person or a file gives them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/output.h"

namespace vane {

/// Puts an assignment that a person has typed into `values`, whose members are those of a probe's
/// record; a coefficient goes under "coefficients". Raises `CUsageError` with a text that tells
/// what is allowed, and for a member that is there already. Whether the probe's conversion has the
/// member remains to be seen.
void AssignProbeMember(Json& values, const std::string& name, const std::string& text);

/// What can be typed for the members but the coefficients: "serial=", "scale=90".
std::vector<std::string> ProbeMemberAssignments();

/// Whether `values` touches the conversion, which may be behind the passcode.
bool HoldsConversion(const Json& values);

/// Whether `serial` can be written: 1 to 8 letters, digits and "-".
bool IsSerial(const std::string& serial);
inline constexpr const char* kSerialRule = "1 to 8 letters, digits and \"-\"";

/// What is wrong with a record out of a file, with the member's name at its head; empty when all of
/// it can be stored.
std::string ProblemOfRecord(const Json& record);

}  // namespace vane
