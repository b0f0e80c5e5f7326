#include "apps/thermoscribe/snapshot.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
#include <utility>

#include "adapters/files/whole_file.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/instrument_properties.h"
#include "apps/thermoscribe/probe_members.h"
#include "apps/thermoscribe/property_write.h"
#include "apps/thermoscribe/shown_record.h"
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
const Json& Part(const Json& whole, const std::string& name, bool isarray) {
  const auto part = whole.find(name);
  if (part == whole.end() || !(isarray ? part->is_array() : part->is_object())) {
    Damaged(name, isarray ? "missing or no array" : "missing or no object");
  }
  return *part;
}

// What this program doesn't know it can't restore, and a slip of the pen must not pass for nothing.
void RefuseOthers(const Json& whole, const std::string& place,
                  const std::vector<std::string>& names) {
  for (const auto& [name, value] : whole.items()) {
    if (std::ranges::find(names, name) == names.end()) {
      Damaged(place.empty() ? name : place + "." + name, "unknown");
    }
  }
}

// Raises for a member that stands twice in its object: one of the two values would go unseen.
Json ParsedOnce(const std::string& text) {
  std::vector<std::set<std::string>> names;  // of the objects that are open
  const auto look = [&names](int, Json::parse_event_t event, const Json& part) {
    if (event == Json::parse_event_t::object_start) names.emplace_back();
    if (event == Json::parse_event_t::object_end) names.pop_back();
    if (event == Json::parse_event_t::key) {
      const auto name = part.get<std::string>();
      if (!names.back().insert(name).second) Damaged(name, "given twice in one object");
    }
    return true;
  };
  return Json::parse(text, look);
}

void CheckSettings(const Json& settings) {
  std::vector<std::string> names;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set != nullptr) names.emplace_back(row.name);
  }
  RefuseOthers(settings, "settings", names);
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set == nullptr) continue;
    const std::string name(row.name);
    const std::string place = "settings." + name;
    if (!settings.contains(name)) Damaged(place, "missing");
    const Json& value = settings[name];
    if (row.group == EPropertyGroup::SCAN && value.is_null()) continue;
    if (!Allows(*row.rule, value)) {
      Damaged(place, value.dump() + " is not " + ExpectedText(*row.rule));
    }
  }
}

bool IsWhole(const Json& object, const char* name, int minimum, int maximum) {
  if (!object.is_object() || !object.contains(name)) return false;
  return Allows(NumberRule{static_cast<double>(minimum), static_cast<double>(maximum), true},
                object[name]);
}

void Check(const Json& file) {
  if (!file.is_object() || !file.contains("format") || file["format"] != kFormat) {
    Damaged("format", "the file is no settings of a readout, \"" + std::string(kFormat) + "\"");
  }
  if (!file.contains("version") || file["version"] != kVersion) {
    Damaged("version", "this program reads version " + std::to_string(kVersion));
  }
  const Json& readout = Part(file, "readout", false);
  if (!readout.contains("Model") || readout["Model"] != kReadoutModel) {
    Damaged("readout.Model", "the settings are of another model");
  }
  RefuseOthers(file, {},
               {"format", "version", "taken", "readout", "settings", "channels", "probes"});
  CheckSettings(Part(file, "settings", false));
  const Json& channels = Part(file, "channels", true);
  for (std::size_t i = 0; i < channels.size(); ++i) {
    const std::string place = "channels[" + std::to_string(i) + "]";
    const int number = static_cast<int>(i) + 1;
    if (number > kHighestChannel || !IsWhole(channels[i], "channel", number, number + 1) ||
        channels[i]["channel"] != number) {
      Damaged(place + ".channel", "not " + std::to_string(number));
    }
    RefuseOthers(channels[i], place, {"channel", "name", "probe"});
    if (!IsWhole(channels[i], "probe", 1, CVaneT312B::NumProbes())) {
      Damaged(place + ".probe", "not a whole number, 1 to 16");
    }
  }
  const Json& probes = Part(file, "probes", true);
  if (std::ssize(probes) != CVaneT312B::NumProbes()) Damaged("probes", "not 16");
  for (std::size_t i = 0; i < probes.size(); ++i) {
    const std::string place = "probe " + std::to_string(i + 1);
    if (!probes[i].is_object() || !probes[i].contains("probe") || probes[i]["probe"] != i + 1) {
      Damaged(place, "missing, or not at its place");
    }
    if (const std::string problem = ProblemOfRecord(probes[i]); !problem.empty()) {
      Damaged(place, problem.back() == '.' ? problem.substr(0, problem.size() - 1) : problem);
    }
  }
}

// The value under `name`; null when it isn't there.
Json ValueUnder(const Json& object, const std::string& name) {
  const auto member = object.find(name);
  return member == object.end() ? Json() : *member;
}

void Compare(std::vector<Difference>& differences, Place place, Json left, Json right) {
  if (left == right) return;
  differences.push_back({std::move(place), std::move(left), std::move(right)});
}

// The coefficients of both, in the order of the left.
void CompareCoefficients(std::vector<Difference>& differences, std::int16_t number,
                         const Json& left, const Json& right) {
  const auto compare = [&](const std::string& name) {
    Compare(differences, {.part = Place::EPart::PROBE, .number = number, .coefficient = name},
            ValueUnder(left, name), ValueUnder(right, name));
  };
  for (const auto& [name, value] : left.items()) compare(name);
  for (const auto& [name, value] : right.items()) {
    if (!left.contains(name)) compare(name);
  }
}

EExitCode ReadSnapshot(CHost& host, Json& snapshot, bool connect) {
  CVaneT312B& instrument = host.Instrument();
  if (connect) {
    if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  } else if (!instrument.QueryInfo(host.ProgressWindow(), false)) {
    return host.CodeOfStoppedRun();
  }
  snapshot = {{"format", kFormat}, {"version", kVersion}, {"taken", MomentText(host.LocalTime())}};
  Json readout = Json::object();
  Json settings = Json::object();
  for (const PropertyRow& row : InstrumentProperties()) {
    const bool isreadout =
        row.group == EPropertyGroup::READOUT || row.group == EPropertyGroup::PROTECTION;
    if (!isreadout && row.set == nullptr) continue;
    (isreadout ? readout : settings)[std::string(row.name)] = PropertyValue(row, instrument);
  }
  Json channels = Json::array();
  for (std::int16_t number = 1; number <= instrument.NumChannels(); ++number) {
    CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(number);
    if (channel == nullptr) break;
    if (host.IsInterrupted()) return EExitCode::ABORTED;
    channel->QueryProbeIndex();
    channels.push_back({{"channel", number},
                        {"name", instrument.GetScanSeqChannelName(number)},
                        {"probe", channel->ProbeIndex()}});
  }
  Json probes = Json::array();
  CVaneT312BPRTTHRMChannel* const carrier = instrument.GetChannelReference(1);
  if (carrier == nullptr) {
    host.Say("The readout reports no channels.");
    return EExitCode::FAILED;
  }
  for (std::int16_t number = 1; number <= CVaneT312B::NumProbes(); ++number) {
    if (!carrier->QueryProbeInfo(number, host.ProgressWindow())) return host.CodeOfStoppedRun();
    probes.push_back(ProbeRecord(*carrier, number));
  }
  snapshot["readout"] = std::move(readout);
  snapshot["settings"] = std::move(settings);
  snapshot["channels"] = std::move(channels);
  snapshot["probes"] = std::move(probes);
  return EExitCode::DONE;
}

}  // namespace

EExitCode TakeSnapshot(CHost& host, Json& snapshot, bool connect) {
  return host.ReadWell([&] { return ReadSnapshot(host, snapshot, connect); });
}

Json ReadSnapshotFile(CHost& host, const std::string& path) {
  const std::string text = ReadWholeFile(path, kMostBytes, host.UsersPatience());
  const std::string name = NameOfInput(path);
  Json file;
  try {
    file = ParsedOnce(text);
    Check(file);
  } catch (const Json::parse_error& error) {
    throw std::runtime_error(name + " is no JSON that can be read: damaged at character " +
                             std::to_string(error.byte) + ".");
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
  return file;
}

void WriteSnapshotFile(CHost& host, const std::string& path, const Json& snapshot) {
  // An instrument may send any byte; one that is no UTF-8 must not spoil the file.
  const std::string text = snapshot.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  host.Output().File(path, text, kPermissions);
}

std::string Place::Text() const {
  if (part == EPart::SETTING) return "settings." + std::string(setting->name);
  if (part == EPart::CHANNEL) return "channel " + std::to_string(number);
  return "probe " + std::to_string(number) + "." +
         (member != nullptr ? std::string(member->name) : "coefficients." + coefficient);
}

std::vector<Difference> Differences(const Json& left, const Json& right) {
  std::vector<Difference> differences;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set == nullptr) continue;
    const std::string name(row.name);
    Compare(differences, {.part = Place::EPart::SETTING, .setting = &row},
            ValueUnder(left["settings"], name), ValueUnder(right["settings"], name));
  }
  const Json& leftchannels = left["channels"];
  const Json& rightchannels = right["channels"];
  for (std::size_t i = 0; i < std::max(leftchannels.size(), rightchannels.size()); ++i) {
    const auto probe = [i](const Json& channels) {
      return i < channels.size() ? channels[i]["probe"] : Json();
    };
    Compare(differences,
            {.part = Place::EPart::CHANNEL, .number = static_cast<std::int16_t>(i + 1)},
            probe(leftchannels), probe(rightchannels));
  }
  for (std::size_t i = 0; i < left["probes"].size(); ++i) {
    const Json& leftprobe = left["probes"][i];
    const Json& rightprobe = right["probes"][i];
    const auto number = static_cast<std::int16_t>(i + 1);
    for (const ProbeMemberRow& row : ProbeMembers()) {
      const std::string name(row.name);
      Compare(differences, {.part = Place::EPart::PROBE, .number = number, .member = &row},
              ValueUnder(leftprobe, name), ValueUnder(rightprobe, name));
    }
    CompareCoefficients(differences, number, leftprobe["coefficients"], rightprobe["coefficients"]);
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
