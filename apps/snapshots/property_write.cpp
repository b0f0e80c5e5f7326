#include "apps/snapshots/property_write.h"

#include <algorithm>

#include "apps/snapshots/value_text.h"

namespace vane::thermoscribe {
namespace {

bool IsCalibration(const PropertyValue& value) {
  return value.row->group == EPropertyGroup::CALIBRATION;
}

}  // namespace

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

std::vector<EGate> GatesOf(const std::vector<PropertyValue>& values) {
  std::vector<EGate> gates;
  for (const PropertyValue& value : values) {
    gates.push_back(value.row->gate);
    // The whole write takes the calibration as one group, the external resistor with it.
    if (IsCalibration(value)) gates.push_back(EGate::CALIBRATION);
  }
  return gates;
}

bool WriteAllSettings(CVaneT312B& instrument, CAudience& audience,
                      const std::vector<PropertyValue>& values) {
  for (const auto& [row, value] : values) row->set(instrument, value);
  // Calibration is written with the digits of its formats; nothing of it may change unasked.
  if (std::ranges::none_of(values, IsCalibration)) {
    instrument.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  }
  return instrument.UpdateInfo(audience.ProgressWindow());
}

std::vector<Stage> PropertyStages(CVaneT312B& instrument, CAudience& audience,
                                  std::vector<PropertyValue> assignments) {
  // The scanner's come first, as in the one run.
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
  stages.push_back(
      {names + " (with all other settings as they were)", [&instrument, &audience, assignments] {
         return WriteAllSettings(instrument, audience, assignments);
       }});
  return stages;
}

}  // namespace vane::thermoscribe
