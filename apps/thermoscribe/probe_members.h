// The members of a probe's record as a person or a file gives them.
#pragma once

#include <string>
#include <string_view>

#include "apps/thermoscribe/output.h"

namespace vane {

/// Puts an assignment that a person has typed into `values`, whose members are those of a probe's
/// record; a coefficient goes under "coefficients". Raises `std::invalid_argument` with a text for
/// the user, which tells what is allowed. Whether the probe's conversion has the member remains to
/// be seen.
void AssignProbeMember(Json& values, const std::string& name, const std::string& text);

/// Whether `values` touches the conversion, which may be behind the passcode.
bool HoldsConversion(const Json& values);

/// What is wrong with a record out of a file, with the member's name at its head; empty when all of
/// it can be stored.
std::string ProblemOfRecord(const Json& record);

}  // namespace vane
