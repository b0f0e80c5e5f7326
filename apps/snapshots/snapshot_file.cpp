#include "apps/snapshots/snapshot_file.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/files/whole_file.h"
#include "apps/snapshots/json_text.h"
#include "vane/components/components.h"
#include "vane/instrument/t312b.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kFormat = "thermoscribe settings";
constexpr int kVersion = 1;
constexpr const char* kProbe = "probe";
constexpr const char* kCoefficients = "coefficients";
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

// Whether a file's record may hold it; what a readout tells as unknown stands there too.
bool MayStand(const ProbeMemberRow& row, const Value& value) {
  if (value.IsNone()) return row.maybenone || row.maybeunknown;
  return Allows(row.rule, value) || (row.infile && Allows(*row.infile, value));
}

std::string ExpectedInFile(const ProbeMemberRow& row) {
  const bool isother = row.infile && !row.infile->expected.empty();
  return (isother ? row.infile->expected : ExpectedText(row.rule)) +
         (row.maybenone || row.maybeunknown ? ", or null" : "");
}

[[noreturn]] void Misfit(const std::string& name, const std::string& trouble) {
  throw std::invalid_argument(name + " is " + trouble);
}

const Members& CoefficientsIn(const Members& record) {
  const Value* const part = Find(record, kCoefficients);
  const Members* const coefficients = part == nullptr ? nullptr : part->If<Members>();
  if (coefficients == nullptr) Misfit(kCoefficients, "missing or no object");
  return *coefficients;
}

// The record of a probe. Raises `std::invalid_argument`, with the member's name at the head of the
// text, where not all of it can be stored.
ProbeValues ProbeValuesIn(const Members& record) {
  ProbeValues values;
  for (const ProbeMemberRow& row : ProbeMembers()) {
    const std::string name(row.name);
    const Value* const value = Find(record, name);
    // What only one conversion has may be left out; the conversion itself misses it then.
    if (value == nullptr && row.only) continue;
    if (value == nullptr) Misfit(name, "missing");
    if (!MayStand(row, *value)) {
      Misfit(name, JsonText(*value) + " and not " + ExpectedInFile(row));
    }
    values.push_back({ProbeKey(row), *value});
  }
  const Members& coefficients = CoefficientsIn(record);
  for (const auto& [name, value] : coefficients) {
    ProbeKey key(name);
    if (!value.IsNumber()) Misfit(key.Path(), JsonText(value) + ", no number");
    values.push_back({std::move(key), value});
  }
  // The rest is what the conversion itself says.
  CVaneT312BPRTTHRMChannel scratch(InstalledComponents());
  StoreProbeValues(scratch, values);
  const ProbeValues whole = ProbeRecord(scratch);
  for (const auto& [name, value] : record) {
    const bool isknown =
        name == kProbe || name == kCoefficients ||
        std::ranges::find(ProbeMembers(), name, &ProbeMemberRow::name) != ProbeMembers().end();
    if (!isknown) Misfit(name, "nothing that a probe has");
  }
  for (const auto& [key, value] : whole) {
    const Members& part = key.row != nullptr ? record : coefficients;
    // What only another conversion has may be left out.
    if (Find(part, key.Name()) == nullptr && !value.IsNone()) Misfit(key.Path(), "missing");
  }
  return values;
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
  // These two are for people, so whatever stands there may.
  const Value* const taken = Find(whole, "taken");
  if (taken != nullptr && taken->If<std::string>() != nullptr) snapshot.taken = taken->Text();
  for (const auto& [name, value] : PartOf<Members>(whole, "readout")) {
    const PropertyRow* const row = FindProperty(name);
    if (row != nullptr) snapshot.readout.push_back({row, value});
  }
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

// What `read` makes of the file's content.
template <class Read>
auto ReadFile(const std::filesystem::path& path, const Patience& patience, Read read) {
  const std::string text = ReadWholeFile(path, kMostBytes, patience);
  const std::string name = NameOfInput(path);
  try {
    return read(ValueOfJson(text));
  } catch (const CJsonDamage& error) {
    throw std::runtime_error(name + " is no JSON that can be read: " + error.what() + ".");
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
}

}  // namespace

std::string SnapshotText(const Snapshot& snapshot) {
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
  return JsonText(file, 2) + "\n";
}

Snapshot ReadSnapshotFile(const std::filesystem::path& path, const Patience& patience) {
  return ReadFile(path, patience, SnapshotIn);
}

ProbeValues ReadProbeFile(const std::filesystem::path& path, std::int16_t number,
                          const Patience& patience) {
  return ReadFile(path, patience, [number](const Value& file) {
    if (!Has(file, "kind", "proberecord")) {
      if (number == 0) throw std::runtime_error("it has several probes: name one by --probe");
      return SnapshotIn(file).probes.at(static_cast<std::size_t>(number - 1));
    }
    Members record = *file.If<Members>();
    const Value* const own = Find(record, "probe");
    if (own == nullptr || !own->IsWhole()) Damaged("probe", "not the number of a probe");
    const auto ownnumber = static_cast<std::int16_t>(own->Number());
    std::erase_if(record,
                  [](const Member& one) { return one.name == "version" || one.name == "kind"; });
    return ProbeIn(record, number == 0 ? ownnumber : number);
  });
}

void WriteSnapshotFile(const std::filesystem::path& path, const Snapshot& snapshot,
                       const Patience& patience) {
  WriteWholeFile(path, SnapshotText(snapshot), kSnapshotPermissions, patience);
}

}  // namespace vane::thermoscribe
