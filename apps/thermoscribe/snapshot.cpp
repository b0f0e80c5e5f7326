#include "apps/thermoscribe/snapshot.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "adapters/files/whole_file.h"
#include "apps/snapshots/json_text.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_input.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kFormat = "thermoscribe settings";
constexpr int kVersion = 1;
constexpr mode_t kPermissions = 0644;
constexpr std::size_t kMostBytes = 4 << 20;  // of a file; what is saved has some 20 thousand

[[noreturn]] void Damaged(const std::string& place, const std::string& trouble) {
  throw std::runtime_error(place + ": " + trouble + ".");
}

// The part of `whole` that lies under `name`.
template <class Part>
const Part& PartOf(const Members& whole, const char* name) {
  const Value* const value = Find(whole, name);
  const Part* const part = value == nullptr ? nullptr : value->If<Part>();
  if (part == nullptr) {
    Damaged(name, std::is_same_v<Part, List> ? "missing or no array" : "missing or no object");
  }
  return *part;
}

// Whether `value` is an object in which `name` is `wanted`.
bool Has(const Value& value, const char* name, const Value& wanted) {
  const auto* const members = value.If<Members>();
  const Value* const found = members == nullptr ? nullptr : Find(*members, name);
  return found != nullptr && *found == wanted;
}

// What this program doesn't know it can't restore, and a slip of the pen must not pass for nothing.
void RefuseOthers(const Members& whole, const std::string& place,
                  const std::vector<std::string_view>& names) {
  for (const auto& [name, value] : whole) {
    if (std::ranges::find(names, name) == names.end()) {
      Damaged(place.empty() ? name : place + "." + name, "unknown");
    }
  }
}

std::vector<PropertyValue> SettingsIn(const Members& settings) {
  std::vector<std::string_view> names;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set != nullptr) names.push_back(row.name);
  }
  RefuseOthers(settings, "settings", names);
  std::vector<PropertyValue> values;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set == nullptr) continue;
    const std::string place = "settings." + std::string(row.name);
    const Value* const value = Find(settings, row.name);
    if (value == nullptr) Damaged(place, "missing");
    const bool isnone = row.group == EPropertyGroup::SCAN && value->IsNone();
    if (!isnone && !Allows(*row.rule, *value)) {
      Damaged(place, JsonText(*value) + " is not " + ExpectedText(*row.rule));
    }
    values.push_back({&row, *value});
  }
  return values;
}

ChannelEntry ChannelIn(const Value& value, std::int16_t number) {
  const std::string place = "channels[" + std::to_string(number - 1) + "]";
  if (number > kHighestChannel || !Has(value, "channel", number)) {
    Damaged(place + ".channel", "not " + std::to_string(number));
  }
  const auto& entry = *value.If<Members>();
  RefuseOthers(entry, place, {"channel", "name", "probe"});
  const NumberRule rule{1, CVaneT312B::NumProbes(), true};
  const Value* const probe = Find(entry, "probe");
  if (probe == nullptr || !Allows(rule, *probe)) {
    Damaged(place + ".probe", "not " + ExpectedText(rule));
  }
  return {number, {}, static_cast<std::int16_t>(probe->Number())};
}

ProbeValues ProbeIn(const Value& value, std::int16_t number) {
  const std::string place = "probe " + std::to_string(number);
  if (!Has(value, "probe", number)) Damaged(place, "missing, or not at its place");
  try {
    return ProbeValuesIn(*value.If<Members>());
  } catch (const std::invalid_argument& error) {
    std::string problem = error.what();
    if (problem.ends_with('.')) problem.pop_back();
    Damaged(place, problem);
  }
}

Snapshot SnapshotIn(const Value& file) {
  if (!Has(file, "format", kFormat)) {
    Damaged("format", "the file is no settings of a readout, \"" + std::string(kFormat) + "\"");
  }
  if (!Has(file, "version", kVersion)) {
    Damaged("version", "this program reads version " + std::to_string(kVersion));
  }
  const auto& whole = *file.If<Members>();
  if (!Has(PartOf<Members>(whole, "readout"), "Model", kReadoutModel)) {
    Damaged("readout.Model", "the settings are of another model");
  }
  RefuseOthers(whole, {},
               {"format", "version", "taken", "readout", "settings", "channels", "probes"});
  Snapshot snapshot;
  snapshot.settings = SettingsIn(PartOf<Members>(whole, "settings"));
  std::int16_t number = 0;
  for (const Value& value : PartOf<List>(whole, "channels")) {
    snapshot.channels.push_back(ChannelIn(value, ++number));
  }
  const List& probes = PartOf<List>(whole, "probes");
  if (std::ssize(probes) != CVaneT312B::NumProbes()) {
    Damaged("probes", "not " + std::to_string(CVaneT312B::NumProbes()));
  }
  number = 0;
  for (const Value& value : probes) snapshot.probes.push_back(ProbeIn(value, ++number));
  return snapshot;
}

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

EExitCode ReadSnapshot(CHost& host, Snapshot& snapshot, bool connect) {
  CVaneT312B& instrument = host.Instrument();
  if (connect) {
    if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  } else if (!instrument.QueryInfo(host.ProgressWindow(), false)) {
    return host.CodeOfStoppedRun();
  }
  snapshot = {.taken = MomentText(host.LocalTime()), .settings = SettableValues(instrument)};
  for (const PropertyRow& row : InstrumentProperties()) {
    const bool isreadout =
        row.group == EPropertyGroup::READOUT || row.group == EPropertyGroup::PROTECTION;
    if (isreadout) snapshot.readout.push_back({&row, row.get(instrument)});
  }
  for (std::int16_t number = 1; number <= instrument.NumChannels(); ++number) {
    CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(number);
    if (channel == nullptr) break;
    if (host.IsInterrupted()) return EExitCode::ABORTED;
    channel->QueryProbeIndex();
    snapshot.channels.push_back(
        {number, instrument.GetScanSeqChannelName(number), channel->ProbeIndex()});
  }
  CVaneT312BPRTTHRMChannel* const carrier = host.ProbeCarrier();
  if (carrier == nullptr) return EExitCode::FAILED;
  for (std::int16_t number = 1; number <= CVaneT312B::NumProbes(); ++number) {
    if (!carrier->QueryProbeInfo(number, host.ProgressWindow())) return host.CodeOfStoppedRun();
    snapshot.probes.push_back(ProbeRecord(*carrier));
  }
  return EExitCode::DONE;
}

}  // namespace

EExitCode TakeSnapshot(CHost& host, Snapshot& snapshot, bool connect) {
  return host.ReadWell([&] { return ReadSnapshot(host, snapshot, connect); });
}

Snapshot ReadSnapshotFile(CHost& host, const std::string& path) {
  const std::string text = ReadWholeFile(path, kMostBytes, host.UsersPatience());
  const std::string name = NameOfInput(path);
  try {
    return SnapshotIn(ValueOfJson(text));
  } catch (const CJsonDamage& error) {
    throw std::runtime_error(name + " is no JSON that can be read: " + error.what() + ".");
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
}

void WriteSnapshotFile(CHost& host, const std::string& path, const Snapshot& snapshot) {
  List channels;
  for (const auto& [number, name, probe] : snapshot.channels) {
    channels.emplace_back(Members{{"channel", number}, {"name", name}, {"probe", probe}});
  }
  List probes;
  for (const ProbeValues& record : snapshot.probes) {
    probes.emplace_back(MembersOf(static_cast<std::int16_t>(probes.size() + 1), record));
  }
  const Members file = {{"format", kFormat},
                        {"version", kVersion},
                        {"taken", snapshot.taken},
                        {"readout", MembersOf(snapshot.readout)},
                        {"settings", MembersOf(snapshot.settings)},
                        {"channels", std::move(channels)},
                        {"probes", std::move(probes)}};
  host.Output().File(path, JsonText(file, 2) + "\n", kPermissions);
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

void ShowDifferences(CHost& host, const std::vector<Difference>& differences, const char* lefttitle,
                     const char* righttitle) {
  std::vector<Row> rows;
  for (const auto& [place, left, right] : differences) rows.push_back({place.Text(), left, right});
  host.Output().Table("difference",
                      {{"place", "Place"}, {"left", lefttitle}, {"right", righttitle}}, rows,
                      "Nothing differs.");
}

}  // namespace vane::thermoscribe
