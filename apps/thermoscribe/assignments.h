// Assignments to properties of the instrument: what `settings set` and `scan set` share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/snapshots/instrument_properties.h"
#include "apps/thermoscribe/exit_codes.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {

class CHost;

/// "NAME=VALUE" as a person types it, cut at the first "=". Raises `CUsageError` without one.
std::pair<std::string, std::string> AssignmentIn(const std::string& text);

/// Adds an assignment of what a person has typed. Raises `CUsageError`, with a text that tells what
/// is allowed, for an unknown name, one that is there already, or a value that can't be. `label` is
/// what the user has called it, where that is another name.
void AddAssignment(std::vector<PropertyValue>& assignments, std::string_view name,
                   std::string_view text, std::string_view label = {});

/// Reads all settings, asks for the passcode where it takes one, writes the assignments, reads all
/// settings again, and shows what has changed. A value that did not arrive is told, and so is one
/// that has changed and should not have. Nothing is written unless everything was read well.
/// `label` gives what the user has called a property; null where that is its name.
EExitCode WriteSettings(CHost& host, const std::vector<PropertyValue>& assignments, bool dryrun,
                        std::string (*label)(const PropertyRow& row) = nullptr);

}  // namespace vane::thermoscribe
