// A probe's record as rows: what the commands that show, compare, keep and write one work from.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/snapshots/value.h"
#include "apps/snapshots/value_rule.h"
#include "vane/channels/channel.h"
#include "vane/components/conversion.h"

namespace vane {
class CVaneT312B;
}  // namespace vane

namespace vane::thermoscribe {

class CAudience;

/// A member of a probe's record other than its coefficients.
struct ProbeMemberRow {
  std::string_view name;
  std::string_view title;  ///< for people
  ValueRule rule;

  /// What the record in the channel's object holds, as the rule has it; what that object can't say
  /// is none, or a word that stands for something unknown.
  Value (*get)(const CVaneT312BPRTTHRMChannel& channel);
  /// Takes what `get` gives. None, or such a word, becomes the library's code for none or changes
  /// nothing.
  void (*set)(CVaneT312BPRTTHRMChannel& channel, const Value& value);

  bool isconversion = true;                      ///< may be behind the passcode
  std::optional<EVaneConversionType> only = {};  ///< the only conversion that has it
  bool maybenone = false;                        ///< none is a value of it, and "none" its word
  bool maybeunknown = false;  ///< none is what a readout doesn't tell; it can't be written
  /// What else a file may hold: what a readout can have got, and nobody can write.
  std::optional<TextRule> infile = std::nullopt;
};

/// In the order of the record.
std::span<const ProbeMemberRow> ProbeMembers();

/// A value within a record: a member, or a coefficient by its name.
struct ProbeKey {
  ProbeKey() = default;
  explicit ProbeKey(const ProbeMemberRow& member) : row(&member) {}
  explicit ProbeKey(std::string name) : coefficient(std::move(name)) {}

  const ProbeMemberRow* row = nullptr;
  std::string coefficient;  ///< where there is no row

  std::string Name() const { return row != nullptr ? std::string(row->name) : coefficient; }
  /// "serial", "coefficients.R0".
  std::string Path() const { return (row != nullptr ? "" : "coefficients.") + Name(); }
  bool IsConversion() const { return row == nullptr || row->isconversion; }

  friend bool operator==(const ProbeKey&, const ProbeKey&) = default;
};

struct ProbeValue {
  ProbeKey key;
  Value value;

  friend bool operator==(const ProbeValue&, const ProbeValue&) = default;
};

/// A record, or some values of one.
using ProbeValues = std::vector<ProbeValue>;

bool Holds(const ProbeValues& values, const ProbeKey& key);
/// None when it isn't there.
Value ValueIn(const ProbeValues& values, const ProbeKey& key);

/// Whether a record that holds a conversion's values tells which one it is.
bool KnowsConversion(const ProbeValues& values);

/// Whether one of them may be behind the passcode.
bool HoldsConversion(const ProbeValues& values);

/// The first channel's object: a probe need not be assigned to any, and this one carries the record
/// of each. Null when there is none, which has been told then.
CVaneT312BPRTTHRMChannel* ProbeCarrier(const CVaneT312B& instrument, CAudience& audience);

/// The whole record that `channel` holds. The members are the same for every conversion; none is
/// what it doesn't have.
ProbeValues ProbeRecord(const CVaneT312BPRTTHRMChannel& channel);

/// Puts values into the record that `channel` holds: the inverse of `ProbeRecord`. A new conversion
/// starts with the library's defaults. Raises `std::invalid_argument`, with a text for the user,
/// for a member or a coefficient that the conversion doesn't have.
void StoreProbeValues(CVaneT312BPRTTHRMChannel& channel, const ProbeValues& values);

/// A record as that of probe `number`, with the coefficients in an object of their own.
Members MembersOf(std::int16_t number, const ProbeValues& record);

/// Adds the record that `channel` holds to a text for people, as that of probe `number`, one line
/// per value.
void AddProbeRecord(std::string& text, std::int16_t number,
                    const CVaneT312BPRTTHRMChannel& channel);

/// `AddLine` for all lines of such a text.
void AddRecordLine(std::string& text, const std::string& title, const Value& value);

}  // namespace vane::thermoscribe
