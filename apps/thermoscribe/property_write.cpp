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
std::string ProblemOf(const Assignment& assignment, const CVaneT312B& instrument) {
  const std::string name(assignment.row->name);
  if (NeedsScanner(*assignment.row, assignment.value) && !instrument.HasScanners()) {
    return name + " can't be " + TextOf(assignment.value) + ": no scanner is attached.";
  }
  if (assignment.row->issequence &&
      !ScanSequence(assignment.value.get<std::string>(), instrument.NumChannels())) {
    return name + " is a list of channels from " + std::to_string(kNumInputs) + " to " +
           std::to_string(instrument.NumChannels()) + ", with \",\" between them.";
  }
  return {};
}

bool IsCalibration(const Assignment& assignment) {
  return assignment.row->group == EPropertyGroup::CALIBRATION;
}

// One by one where every value can be, else all in one run. The scanner's come first, as in that.
std::vector<Stage> Stages(CHost& host, std::vector<Assignment> assignments) {
  CVaneT312B& instrument = host.Instrument();
  std::ranges::stable_partition(assignments, [](const Assignment& assignment) {
    return assignment.row->group == EPropertyGroup::SCAN;
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
  for (const auto& one : assignments) {
    names += (names.empty() ? "" : ", ") + std::string(one.row->name);
  }
  const bool calibrates = std::ranges::any_of(assignments, IsCalibration);
  stages.push_back({names + " (with all other settings as they were)", [&host, calibrates] {
                      CVaneT312B& it = host.Instrument();
                      // Calibration is written with the digits of its formats; nothing of it may
                      // change unasked.
                      if (!calibrates) {
                        it.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
                      }
                      return it.UpdateInfo(host.ProgressWindow());
                    }});
  return stages;
}

std::string ChangeText(const std::string& name, const Json& before, const Json& after) {
  const PropertyRow& row = *FindProperty(name);
  return name + ": " + PropertyText(row, before) + " -> " + PropertyText(row, after);
}

// Shows what has changed, and tells of each value that is not what it should be.
EExitCode ShowChanges(CHost& host, const Json& before, const Json& wanted) {
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
  for (const auto& [name, value] : wanted.items()) {
    if (after[name] == value) continue;
    const PropertyRow& row = *FindProperty(name);
    host.Say(WrongValueText(name, {.before = before[name], .wanted = value, .after = after[name]},
                            [&row](const Json& one) { return PropertyText(row, one); }));
    code = EExitCode::FAILED;
  }
  return code;
}

}  // namespace

std::pair<std::string, std::string> AssignmentIn(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == text.npos) throw CUsageError("\"" + text + "\" is not NAME=VALUE.");
  return {text.substr(0, sign), text.substr(sign + 1)};
}

void AddAssignment(std::vector<Assignment>& assignments, std::string_view name,
                   std::string_view text, std::string_view label) {
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
  std::optional<Json> value = ValueOf(*row->rule, text);
  if (!value) {
    throw CUsageError((label.empty() ? std::string(row->name) : std::string(label)) +
                      " can't be \"" + std::string(text) + "\". It is " + ExpectedText(*row->rule) +
                      ".");
  }
  assignments.push_back({row, std::move(*value)});
}

EExitCode WriteSettings(CHost& host, const std::vector<Assignment>& assignments, bool dryrun) {
  if (const EExitCode code = host.ReadWell([&] { return host.ReadSettings(); });
      code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  CVaneT312B& instrument = host.Instrument();
  std::vector<EGate> gates;
  for (const Assignment& assignment : assignments) {
    if (std::string problem = ProblemOf(assignment, instrument); !problem.empty()) {
      host.Say(problem);
      return NothingWritten(host, EExitCode::USAGE);
    }
    gates.push_back(assignment.row->gate);
  }
  // The whole write takes the calibration as one group, the external resistor with it.
  if (std::ranges::any_of(assignments, IsCalibration)) gates.push_back(EGate::CALIBRATION);
  if (const EExitCode code = host.OpenGates(gates); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  const Json before = SettableValues(instrument);
  for (const auto& [row, value] : assignments) row->set(instrument, value);
  const Json wanted = SettableValues(instrument);
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
  return ShowChanges(host, before, wanted);
}

}  // namespace vane::thermoscribe
