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

#include "apps/snapshots/value.h"
#include "apps/snapshots/value_rule.h"
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
  Value (*get)(const CVaneT312B& instrument);

  /// Takes what `get` gives, within the limits; null for what a host can't set.
  void (*set)(CVaneT312B& instrument, const Value& value) = nullptr;

  /// What it can be set to, of what can be set.
  std::optional<ValueRule> rule = std::nullopt;

  /// The library's operation that writes it alone; null for what only the whole write can write.
  bool (*update)(CVaneT312B& instrument) = nullptr;

  EGate gate = EGate::NONE;

  /// A list of channels, which is written step by step.
  bool issequence = false;

  /// Whether the readout can only have `value` with a scanner; null for what it can have without.
  bool (*needsscanner)(const Value& value) = nullptr;

  /// For people, in place of "no" and "yes".
  std::array<std::string_view, 2> flagwords = {};
};

/// Whether the readout can only have `value` with a scanner.
bool NeedsScanner(const PropertyRow& row, const Value& value);

/// `list` as the instrument's settings hold a scan sequence, if it names, with "," between,
/// channels of the instrument from Input 2 to `highest`.
std::optional<std::string> ScanSequence(std::string_view list, std::int32_t highest);

/// All properties, by group.
std::span<const PropertyRow> InstrumentProperties();

/// Null for a name that none has. Letters count in either case.
const PropertyRow* FindProperty(std::string_view name);

/// A property with a value of it.
struct PropertyValue {
  const PropertyRow* row;
  Value value;
};

/// What `get` gives; none for what is not there.
Value ValueIn(const CVaneT312B& instrument, const PropertyRow& row);

/// The values of all properties that can be set.
std::vector<PropertyValue> SettableValues(const CVaneT312B& instrument);

/// By their names.
Members MembersOf(const std::vector<PropertyValue>& values);

/// A value of `row` for people, with its unit.
std::string PropertyText(const PropertyRow& row, const Value& value);

}  // namespace vane::thermoscribe
