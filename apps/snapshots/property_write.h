// Writing properties of the instrument.
#pragma once

#include <string>
#include <vector>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/instrument_properties.h"
#include "apps/snapshots/stages.h"

namespace vane::thermoscribe {

/// What can only be judged once the instrument is known, with `name` for the property. Empty:
/// nothing is wrong.
std::string ProblemOf(const PropertyValue& assignment, const std::string& name,
                      const CVaneT312B& instrument);

/// The groups of the passcode that a write of `values` needs open.
std::vector<EGate> GatesOf(const std::vector<PropertyValue>& values);

/// Puts `values` into the instrument's settings and writes all of these in one run; false when the
/// user has been told why not.
bool WriteAllSettings(CVaneT312B& instrument, CAudience& audience,
                      const std::vector<PropertyValue>& values);

/// For `assignments` that stand in the instrument's settings already: one by one where every value
/// can be written alone, else all settings in one run.
std::vector<Stage> PropertyStages(CVaneT312B& instrument, CAudience& audience,
                                  std::vector<PropertyValue> assignments);

}  // namespace vane::thermoscribe
