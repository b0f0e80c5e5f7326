#include "apps/snapshots/restore.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "apps/snapshots/json_text.h"
#include "apps/snapshots/probe_sensor.h"
#include "apps/snapshots/property_write.h"
#include "apps/snapshots/value_check.h"
#include "apps/snapshots/value_text.h"

namespace vane::thermoscribe {

using enum SnapshotPlace::EPart;

std::string LostValue::Text() const {
  return difference.place.Text() + ": " + TextOf(difference.left) +
         " did not arrive, the readout has " + TextOf(difference.right) + ": " + reason + ".";
}

CRestore::CRestore(CVaneT312B& instrument, CAudience& audience, Snapshot file, Snapshot before)
    : instrument_(instrument),
      audience_(audience),
      gates_(instrument),
      file_(std::move(file)),
      before_(std::move(before)),
      all_(Differences(file_, before_)) {
  std::ranges::copy_if(all_, std::back_inserter(wanted_),
                       [this](const Difference& one) { return WhyImpossible(one).empty(); });
}

std::string CRestore::WhyImpossible(const Difference& difference) const {
  const SnapshotPlace& place = difference.place;
  if (difference.left.IsNone()) {
    // What only the older conversion has goes with it, and no subrange is one.
    const bool goes =
        place.part == PROBE && (place.probe.row == nullptr || !place.probe.row->maybeunknown);
    return goes ? "" : "the file has no value for it";
  }
  if (instrument_.HasScanners()) return {};
  const bool isscanners =
      (place.part == SETTING && NeedsScanner(*place.setting, difference.left)) ||
      (place.part == CHANNEL && difference.right.IsNone());
  return isscanners ? "no scanner is attached" : "";
}

std::string CRestore::Problem() const {
  for (const auto& [place, left, right] : wanted_) {
    const ProbeMemberRow* const row = place.probe.row;
    if (row == nullptr || !row->infile || left.IsNone() || Allows(row->rule, left)) continue;
    return place.Text() + ": " + JsonText(left) + " can't be written. It is " +
           ExpectedText(row->rule) + ".";
  }
  return {};
}

std::vector<std::string> CRestore::OddThings() const {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < file_.probes.size(); ++i) {
    const auto number = static_cast<std::int16_t>(i + 1);
    const bool converts = std::ranges::any_of(wanted_, [&](const Difference& one) {
      return one.place.IsIn(PROBE, number) && one.place.IsConversion();
    });
    if (!converts) continue;
    for (const std::string& text : OddThingsAbout(file_.probes[i])) {
      texts.push_back("probe " + std::to_string(number) + ": " + text);
    }
  }
  return texts;
}

bool CRestore::MissesScanner() const {
  return !instrument_.HasScanners() &&
         std::ranges::any_of(file_.settings, [](const PropertyValue& one) {
           return one.row->group == EPropertyGroup::SCAN && !one.value.IsNone();
         });
}

std::vector<EGate> CRestore::Gates() const {
  std::vector<EGate> gates = GatesOf(WantedSettings());
  for (const Difference& difference : wanted_) {
    if (difference.place.IsConversion()) gates.push_back(EGate::CONVERSION);
  }
  return gates;
}

bool CRestore::Differs(SnapshotPlace::EPart part, std::int16_t number) const {
  return std::ranges::any_of(wanted_,
                             [&](const Difference& one) { return one.place.IsIn(part, number); });
}

std::vector<PropertyValue> CRestore::WantedSettings() const {
  std::vector<PropertyValue> settings;
  for (const auto& [place, left, right] : wanted_) {
    if (place.part == SETTING) settings.push_back({place.setting, left});
  }
  return settings;
}

bool CRestore::WriteProbe(std::int16_t number) {
  CVaneT312BPRTTHRMChannel& carrier = *instrument_.GetChannelReference(1);
  const bool converts = std::ranges::any_of(wanted_, [&](const Difference& one) {
    return one.place.IsIn(PROBE, number) && one.place.IsConversion();
  });
  instrument_.SetConvPasscodeState(converts ? ET312BPasscodeState::PS_ENABLED
                                            : ET312BPasscodeState::PS_DISABLED);
  const auto index = static_cast<std::size_t>(number - 1);
  // What the file doesn't know stays as the readout has it.
  StoreProbeValues(carrier, before_.probes[index]);
  ProbeValues record = file_.probes[index];
  if (!KnowsConversion(record)) {
    std::erase_if(record, [](const ProbeValue& one) { return one.key.IsConversion(); });
  }
  StoreProbeValues(carrier, record);
  return carrier.UpdateProbeInfo(number, audience_.ProgressWindow());
}

bool CRestore::WriteChannels() {
  // With its assignment a channel writes its probe's record, but not the conversion.
  instrument_.SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  for (const ChannelEntry& entry : file_.channels) {
    if (!Differs(CHANNEL, entry.number)) continue;
    CVaneT312BPRTTHRMChannel& channel = *instrument_.GetChannelReference(entry.number);
    const std::int16_t probe = entry.probe;
    const EEnd end = audience_.ReadWell(
        [&] { return channel.QueryProbeInfo(probe, audience_.ProgressWindow()); });
    if (end != EEnd::DONE) return false;
    channel.SetProbeIndex(probe);
    if (!channel.UpdateInfo(audience_.ProgressWindow())) return false;
  }
  return true;
}

std::vector<Stage> CRestore::Stages() {
  std::vector<Stage> stages;
  if (Differs(SETTING, 0)) {
    stages.push_back({instrument_.HasScanners() ? "scanner and settings" : "settings", [this] {
                        return WriteAllSettings(instrument_, audience_, WantedSettings());
                      }});
  }
  for (std::int16_t number = 1; number <= CVaneT312B::NumProbes(); ++number) {
    if (!Differs(PROBE, number)) continue;
    stages.push_back(
        {"probe " + std::to_string(number), [this, number] { return WriteProbe(number); }});
  }
  const bool assigns =
      std::ranges::any_of(wanted_, [](const Difference& one) { return one.place.part == CHANNEL; });
  if (assigns) stages.push_back({"channel assignments", [this] { return WriteChannels(); }});
  return stages;
}

std::vector<LostValue> CRestore::LostIn(const Snapshot& after) const {
  std::vector<LostValue> lost;
  for (Difference& difference : Differences(file_, after)) {
    std::string reason = WhyImpossible(difference);
    if (reason.empty()) {
      const auto old = std::ranges::find(wanted_, difference.place, &Difference::place);
      reason = WhyWrong({.name = {},
                         .before = old == wanted_.end() ? difference.left : old->right,
                         .wanted = difference.left,
                         .after = difference.right});
    }
    lost.push_back({std::move(difference), std::move(reason)});
  }
  return lost;
}

}  // namespace vane::thermoscribe
