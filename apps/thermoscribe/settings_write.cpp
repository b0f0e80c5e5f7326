#include "apps/thermoscribe/settings_write.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <sstream>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"
#include "vane/topology/numbering.h"

namespace vane {
namespace {

constexpr std::size_t kMaxSteps = 100;  // of a scan sequence

// What can only be judged once the instrument is known. Empty: nothing is wrong.
std::string ProblemOf(const Assignment& assignment, const CVaneT312B& instrument) {
  const std::string name(assignment.row->name);
  if (!IsThere(assignment.row->group, instrument)) {
    return name + " can't be set: no scanner is attached.";
  }
  if (name == "ScanChannels" &&
      !IsScanSequence(assignment.value.get<std::string>(), instrument.NumChannels())) {
    return name + " is a list of channels from " + std::to_string(kNumInputs) + " to " +
           std::to_string(instrument.NumChannels()) + ", with \",\" between them.";
  }
  return {};
}

bool IsCalibration(const Assignment& assignment) {
  return assignment.row->group == EPropertyGroup::CALIBRATION;
}

// The scanner's come first, as in a write of everything.
bool Write(CHost& host, std::vector<Assignment> assignments) {
  CVaneT312B& instrument = host.Instrument();
  std::stable_partition(assignments.begin(), assignments.end(), [](const Assignment& assignment) {
    return assignment.row->group == EPropertyGroup::SCAN;
  });
  for (const auto& [row, value] : assignments) row->set(instrument, value);
  if (std::ranges::all_of(assignments,
                          [](const auto& one) { return one.row->update != nullptr; })) {
    return std::ranges::all_of(assignments,
                               [&](const auto& one) { return one.row->update(instrument); });
  }
  // Calibration is written with the digits of its formats; nothing of it may change unasked.
  if (std::ranges::none_of(assignments, IsCalibration)) {
    instrument.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  }
  return instrument.UpdateInfo(host.ProgressWindow());
}

std::string ChangeText(const std::string& name, const Json& before, const Json& after) {
  const PropertyRow& row = *FindProperty(name);
  return name + ": " + PropertyText(row, before) + " -> " + PropertyText(row, after);
}

// Shows what has changed, and tells of each value that is not what was asked for.
EExitCode ShowChanges(CHost& host, const std::vector<Assignment>& assignments, const Json& before) {
  const Json after = SettableValues(host.Instrument());
  Json changes = Json::object();
  std::string text;
  for (const auto& [name, value] : after.items()) {
    if (value == before[name]) continue;
    changes[name] = {{"before", before[name]}, {"after", value}};
    text += (text.empty() ? "" : "\n") + ChangeText(name, before[name], value);
  }
  host.Output().Record("changes", changes, text.empty() ? "Nothing has changed." : text);
  EExitCode code = EExitCode::DONE;
  for (const auto& [row, value] : assignments) {
    const std::string name(row->name);
    if (after[name] == value) continue;
    host.Say(name + ": " + PropertyText(*row, value) + " was written, but the readout has " +
             PropertyText(*row, after[name]) + ".");
    code = EExitCode::FAILED;
  }
  return code;
}

}  // namespace

bool IsScanSequence(const std::string& list, std::int32_t highest) {
  std::istringstream items(list);
  std::size_t count = 0;
  for (std::string item; std::getline(items, item, ',');) {
    const bool digits =
        !item.empty() && item.size() <= 2 && item.find_first_not_of("0123456789") == item.npos;
    if (!digits) return false;
    const int channel = std::stoi(item);
    if (channel < kNumInputs || channel > highest) return false;
    ++count;
  }
  return count > 0 && count <= kMaxSteps && list.back() != ',';
}

std::pair<std::string, std::string> AssignmentIn(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == text.npos) throw CUsageError("\"" + text + "\" is not NAME=VALUE.");
  return {text.substr(0, sign), text.substr(sign + 1)};
}

void AddAssignment(std::vector<Assignment>& assignments, std::string_view name,
                   std::string_view text) {
  const PropertyRow* const row = FindProperty(name);
  if (row == nullptr || row->set == nullptr) {
    std::string known;
    for (const PropertyRow& other : InstrumentProperties()) {
      if (other.set != nullptr) known += (known.empty() ? "" : ", ") + std::string(other.name);
    }
    throw CUsageError((row == nullptr ? "\"" + std::string(name) + "\" is no setting"
                                      : std::string(row->name) + " can't be set") +
                      ". The settings are " + known + ".");
  }
  if (std::ranges::find(assignments, row, &Assignment::row) != assignments.end()) {
    throw CUsageError(std::string(row->name) + " is given twice.");
  }
  std::optional<Json> value = ValueOf(row->Rule(), text);
  if (!value) {
    throw CUsageError(std::string(row->name) + " can't be \"" + std::string(text) + "\". It is " +
                      ExpectedText(row->Rule()) + ".");
  }
  assignments.push_back({row, std::move(*value)});
}

EExitCode WriteSettings(CHost& host, const std::vector<Assignment>& assignments, bool dryrun) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  std::vector<EGate> gates;
  for (const Assignment& assignment : assignments) {
    if (std::string problem = ProblemOf(assignment, host.Instrument()); !problem.empty()) {
      host.Say(problem);
      return EExitCode::USAGE;
    }
    gates.push_back(assignment.row->gate);
  }
  // The whole write takes the calibration as one group, the external resistor with it.
  if (std::ranges::any_of(assignments, IsCalibration)) gates.push_back(EGate::CALIBRATION);
  if (const EExitCode code = host.OpenGates(gates); code != EExitCode::DONE) return code;

  const Json before = SettableValues(host.Instrument());
  if (dryrun) host.StartDryRun();
  if (!Write(host, assignments)) return host.CodeOfStoppedRun();
  if (dryrun) return EExitCode::DONE;
  if (!host.Instrument().QueryInfo(host.ProgressWindow(), false)) return host.CodeOfStoppedRun();
  return ShowChanges(host, assignments, before);
}

}  // namespace vane
