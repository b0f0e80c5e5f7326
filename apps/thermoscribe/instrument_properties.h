// The settings of the instrument as people and programs meet them on the command line: one row per
// property, which every command on settings works from.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/output.h"
#include "apps/thermoscribe/value_rule.h"
#include "vane/instrument/t312b.h"
#include "vane/support/numbering.h"

namespace vane::thermoscribe {

enum class EPropertyGroup : std::int32_t {
  READOUT,
  FILTER,
  SAMPLING,
  MEASUREMENT,
  SCAN,
  CALIBRATION,
  PROTECTION,
};

/// The group of the readout's passcode that a property belongs to.
enum class EGate : std::int32_t { NONE, UNITS_TIME, SAMPLING, CALIBRATION, CONVERSION };

struct PropertyGroupRow {
  EPropertyGroup group;
  std::string_view word;   ///< on the command line
  std::string_view title;  ///< for people
};

/// All groups, in the order in which they are shown.
std::span<const PropertyGroupRow> PropertyGroups();

/// False for the scanner's properties where there is no scanner: nothing reads them then.
bool IsThere(EPropertyGroup group, const CVaneT312B& instrument);

struct PropertyRow {
  std::string_view name;  ///< in JSON and on the command line
  EPropertyGroup group;
  std::string_view words;  ///< for people
  std::string_view unit;   ///< empty: none

  /// A number, a text, true or false; a member of an enumeration is its text.
  Json (*get)(const CVaneT312B& instrument);

  /// Takes what `get` gives, within the limits; null for what a host can't set.
  void (*set)(CVaneT312B& instrument, const Json& value) = nullptr;

  /// What it can be set to, of what can be set.
  std::optional<ValueRule> rule = std::nullopt;

  /// The library's operation that writes it alone; null for what only the whole write can write.
  bool (*update)(CVaneT312B& instrument) = nullptr;

  EGate gate = EGate::NONE;

  /// A list of channels, which is written step by step.
  bool issequence = false;

  /// Whether the readout can only have `value` with a scanner; null for what it can have without.
  bool (*needsscanner)(const Json& value) = nullptr;
};

/// Whether the readout can only have `value` with a scanner.
bool NeedsScanner(const PropertyRow& row, const Json& value);

/// `list` as the instrument's settings hold a scan sequence, if it names, with "," between,
/// channels of the instrument from Input 2 to `highest`.
std::optional<std::string> ScanSequence(std::string_view list, std::int32_t highest);

/// All properties, by group.
std::span<const PropertyRow> InstrumentProperties();

/// Null for a name that none has. Letters count in either case.
const PropertyRow* FindProperty(std::string_view name);

/// The values of all properties that are there and can be set, by name.
Json SettableValues(const CVaneT312B& instrument);

/// What `get` gives; null for what is not there.
Json PropertyValue(const PropertyRow& row, const CVaneT312B& instrument);

/// A value of `row` for people, with its unit.
std::string PropertyText(const PropertyRow& row, const Json& value);

}  // namespace vane::thermoscribe
