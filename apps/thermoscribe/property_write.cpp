#include "apps/thermoscribe/property_write.h"

#include <algorithm>
#include <optional>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/stages.h"
#include "apps/thermoscribe/value_check.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

// What can only be judged once the instrument is known. Empty: nothing is wrong.
std::string ProblemOf(const PropertyValue& assignment, const std::string& name,
                      const CVaneT312B& instrument) {
  const auto& [row, value] = assignment;
  if (NeedsScanner(*row, value) && !instrument.HasScanners()) {
    return name + " can't be " + TextOf(value) + ": no scanner is attached.";
  }
  if (row->issequence && !ScanSequence(value.Text(), instrument.NumChannels())) {
    return name + " is a list of channels from " + std::to_string(kNumInputs) + " to " +
           std::to_string(instrument.NumChannels()) + ", with \",\" between them.";
  }
  return {};
}

bool IsCalibration(const PropertyValue& value) {
  return value.row->group == EPropertyGroup::CALIBRATION;
}

// One by one where every value can be, else all in one run. The scanner's come first, as in that.
std::vector<Stage> Stages(CHost& host, std::vector<PropertyValue> assignments) {
  CVaneT312B& instrument = host.Instrument();
  std::stable_partition(assignments.begin(), assignments.end(), [](const PropertyValue& one) {
    return one.row->group == EPropertyGroup::SCAN;
  });
  std::vector<Stage> stages;
  if (std::ranges::all_of(assignments,
                          [](const auto& one) { return one.row->update != nullptr; })) {
    for (const auto& [row, value] : assignments) {
      stages.push_back({std::string(row->name),
                        [&instrument, update = row->update] { return update(instrument); },
                        !row->issequence});
    }
    return stages;
  }
  std::string names;
  for (const auto& one : assignments) Append(names, ", ", one.row->name);
  stages.push_back({names + " (with all other settings as they were)",
                    [&host, assignments] { return WriteAllSettings(host, assignments); }});
  return stages;
}

}  // namespace

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

std::vector<EGate> GatesOf(const std::vector<PropertyValue>& values) {
  std::vector<EGate> gates;
  for (const PropertyValue& value : values) {
    gates.push_back(value.row->gate);
    // The whole write takes the calibration as one group, the external resistor with it.
    if (IsCalibration(value)) gates.push_back(EGate::CALIBRATION);
  }
  return gates;
}

bool WriteAllSettings(CHost& host, const std::vector<PropertyValue>& values) {
  CVaneT312B& instrument = host.Instrument();
  for (const auto& [row, value] : values) row->set(instrument, value);
  // Calibration is written with the digits of its formats; nothing of it may change unasked.
  if (std::ranges::none_of(values, IsCalibration)) {
    instrument.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  }
  return instrument.UpdateInfo(host.ProgressWindow());
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
  if (const EExitCode code = RunStages(host, Stages(host, assignments), {});
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
