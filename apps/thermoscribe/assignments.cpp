#include "apps/thermoscribe/assignments.h"

#include <algorithm>
#include <optional>

#include "apps/snapshots/property_write.h"
#include "apps/thermoscribe/account.h"
#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {

std::pair<std::string, std::string> AssignmentIn(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == text.npos) throw CUsageError("\"" + text + "\" is not NAME=VALUE.");
  return {text.substr(0, sign), text.substr(sign + 1)};
}

void AddAssignment(std::vector<PropertyValue>& assignments, std::string_view name,
                   std::string_view text, std::string_view label) {
  const PropertyRow* const row = FindProperty(name);
  if (row == nullptr || row->set == nullptr) {
    std::string known;
    for (const PropertyRow& other : InstrumentProperties()) {
      if (other.set != nullptr) Append(known, ", ", other.name);
    }
    throw CUsageError((row == nullptr ? "\"" + std::string(name) + "\" is no setting"
                                      : std::string(row->name) + " can't be set") +
                      ". The settings are " + known + ".");
  }
  if (std::ranges::find(assignments, row, &PropertyValue::row) != assignments.end()) {
    throw CUsageError(std::string(row->name) + " is given twice.");
  }
  std::optional<Value> value = ValueOf(*row->rule, text);
  if (!value) {
    throw CUsageError((label.empty() ? std::string(row->name) : std::string(label)) +
                      " can't be \"" + std::string(text) + "\". It is " + ExpectedText(*row->rule) +
                      ".");
  }
  assignments.push_back({row, std::move(*value)});
}

EExitCode WriteSettings(CHost& host, const std::vector<PropertyValue>& assignments, bool dryrun,
                        std::string (*label)(const PropertyRow& row)) {
  if (const EExitCode code = ReadBeforeWriting(host); code != EExitCode::DONE) return code;
  CVaneT312B& instrument = host.Instrument();
  for (const PropertyValue& assignment : assignments) {
    const PropertyRow& row = *assignment.row;
    const std::string name = label != nullptr ? label(row) : std::string(row.name);
    if (const std::string problem = ProblemOf(assignment, name, instrument); !problem.empty()) {
      host.Say(problem);
      return NothingWritten(host, EExitCode::USAGE);
    }
  }
  if (const EExitCode code = host.OpenGates(GatesOf(assignments)); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  const std::vector<PropertyValue> before = SettableValues(instrument);
  for (const auto& [row, value] : assignments) row->set(instrument, value);
  const std::vector<PropertyValue> wanted = SettableValues(instrument);
  if (dryrun) host.StartDryRun();
  if (const EExitCode code = RunStages(host, PropertyStages(instrument, host, assignments), {});
      code != EExitCode::DONE) {
    return code;
  }
  if (dryrun) return EExitCode::DONE;
  const EExitCode code = host.ReadWell([&] {
    return instrument.QueryInfo(host.ProgressWindow(), false) ? EExitCode::DONE
                                                              : host.CodeOfStoppedRun();
  });
  if (code != EExitCode::DONE) return NotReadBack(host, code);
  std::vector<CheckedValue> checked;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const PropertyRow& row = *before[i].row;
    checked.push_back({.name = std::string(row.name),
                       .before = before[i].value,
                       .wanted = wanted[i].value,
                       .after = ValueIn(instrument, row),
                       .unit = row.unit});
  }
  return ShowChanges(host, checked);
}

}  // namespace vane::thermoscribe
