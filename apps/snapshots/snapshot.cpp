#include "apps/snapshots/snapshot.h"

#include <algorithm>
#include <utility>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/value_text.h"
#include "vane/components/components.h"

namespace vane::thermoscribe {
namespace {

void Compare(std::vector<Difference>& differences, SnapshotPlace place, Value left, Value right) {
  if (left == right) return;
  differences.push_back({std::move(place), std::move(left), std::move(right)});
}

// The members of the record, then the coefficients of both, in the order of the left.
void CompareProbes(std::vector<Difference>& differences, std::int16_t number,
                   const ProbeValues& left, const ProbeValues& right) {
  const auto compare = [&](const ProbeKey& key) {
    Compare(differences, {.part = SnapshotPlace::EPart::PROBE, .number = number, .probe = key},
            ValueIn(left, key), ValueIn(right, key));
  };
  for (const ProbeMemberRow& row : ProbeMembers()) compare(ProbeKey(row));
  for (const auto& [key, value] : left) {
    if (key.row == nullptr) compare(key);
  }
  for (const auto& [key, value] : right) {
    if (key.row == nullptr && !Holds(left, key)) compare(key);
  }
}

// Behind the settings; false when it was stopped.
bool ReadRecords(CVaneT312B& instrument, CAudience& audience, Snapshot& snapshot) {
  snapshot = {.taken = MomentText(InstalledComponents().platform.LocalTime()),
              .settings = SettableValues(instrument)};
  for (const PropertyRow& row : InstrumentProperties()) {
    const bool isreadout =
        row.group == EPropertyGroup::READOUT || row.group == EPropertyGroup::PROTECTION;
    if (isreadout) snapshot.readout.push_back({&row, row.get(instrument)});
  }
  for (std::int16_t number = 1; number <= instrument.NumChannels(); ++number) {
    CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(number);
    if (channel == nullptr) break;
    if (audience.IsInterrupted()) return false;
    channel->QueryProbeIndex();
    snapshot.channels.push_back(
        {number, instrument.GetScanSeqChannelName(number), channel->ProbeIndex()});
  }
  CVaneT312BPRTTHRMChannel* const carrier = ProbeCarrier(instrument, audience);
  if (carrier == nullptr) return false;
  for (std::int16_t number = 1; number <= CVaneT312B::NumProbes(); ++number) {
    if (!carrier->QueryProbeInfo(number, audience.ProgressWindow())) return false;
    snapshot.probes.push_back(ProbeRecord(*carrier));
  }
  return true;
}

}  // namespace

EEnd TakeSnapshot(CVaneT312B& instrument, CAudience& audience,
                  const std::function<bool()>& readsettings, Snapshot& snapshot) {
  return audience.ReadWell(
      [&] { return readsettings() && ReadRecords(instrument, audience, snapshot); });
}

EEnd TakeSnapshot(CVaneT312B& instrument, CAudience& audience, Snapshot& snapshot) {
  const auto readsettings = [&] { return instrument.QueryInfo(audience.ProgressWindow(), false); };
  return TakeSnapshot(instrument, audience, readsettings, snapshot);
}

std::string SnapshotPlace::Text() const {
  if (part == EPart::SETTING) return "settings." + std::string(setting->name);
  if (part == EPart::CHANNEL) return "channel " + std::to_string(number);
  return "probe " + std::to_string(number) + "." + probe.Path();
}

std::vector<Difference> Differences(const Snapshot& left, const Snapshot& right) {
  using enum SnapshotPlace::EPart;
  std::vector<Difference> differences;
  // Both hold all settings.
  for (std::size_t i = 0; i < left.settings.size(); ++i) {
    const auto& [row, value] = left.settings[i];
    Compare(differences, {.part = SETTING, .setting = row}, value, right.settings[i].value);
  }
  for (std::size_t i = 0; i < std::max(left.channels.size(), right.channels.size()); ++i) {
    const auto probe = [i](const Snapshot& one) {
      return i < one.channels.size() ? Value(one.channels[i].probe) : Value();
    };
    Compare(differences, {.part = CHANNEL, .number = static_cast<std::int16_t>(i + 1)}, probe(left),
            probe(right));
  }
  for (std::size_t i = 0; i < left.probes.size(); ++i) {
    CompareProbes(differences, static_cast<std::int16_t>(i + 1), left.probes[i], right.probes[i]);
  }
  return differences;
}

}  // namespace vane::thermoscribe
