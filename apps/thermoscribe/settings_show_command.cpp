// thermoscribe settings show: every setting, for people in groups with unit and limits.

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/snapshots/instrument_properties.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kTitleColumns = 26;
constexpr std::size_t kNameColumns = 22;
constexpr std::size_t kValueColumns = 26;
constexpr std::size_t kAllowedColumns = 46;

// Lists longer than their column go on below their beginning.
std::string InColumn(std::string text) {
  std::string folded;
  while (text.size() > kAllowedColumns) {
    const std::size_t cut = text.rfind(", ", kAllowedColumns - 1);
    if (cut == text.npos) break;
    folded += text.substr(0, cut + 1) + "\n" +
              std::string(kTitleColumns + kNameColumns + kValueColumns, ' ');
    text.erase(0, cut + 2);
  }
  return folded + text;
}

std::string GroupText(const PropertyGroupRow& group, const CVaneT312B& instrument) {
  std::string text(group.title);
  if (!IsThere(group.group, instrument)) return text + "\n  No scanner is attached.";
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.group != group.group) continue;
    const std::string value = PropertyText(row, row.get(instrument));
    const std::string allowed = row.rule ? InColumn(AllowedText(*row.rule)) : std::string();
    text += "\n" + Padded("  " + std::string(row.words), kTitleColumns) +
            Padded(std::string(row.name), kNameColumns);
    text += allowed.empty() ? value : Padded(value, kValueColumns - 2) + "  " + allowed;
  }
  return text;
}

using ChosenGroup = std::optional<EPropertyGroup>;  // without a value, all

EExitCode RunSettingsShow(CHost& host, ChosenGroup chosengroup) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  const CVaneT312B& instrument = host.Instrument();
  const auto isshown = [&](EPropertyGroup group) { return !chosengroup || *chosengroup == group; };
  std::vector<PropertyValue> values;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (isshown(row.group)) values.push_back({&row, ValueIn(instrument, row)});
  }
  std::string text;
  for (const PropertyGroupRow& group : PropertyGroups()) {
    if (isshown(group.group)) Append(text, "\n\n", GroupText(group, instrument));
  }
  host.Output().Record("settings", MembersOf(values), text);
  return EExitCode::DONE;
}

}  // namespace

Command SettingsShowCommand() {
  const auto group = std::make_shared<std::string>();
  std::vector<std::string> words;
  for (const PropertyGroupRow& row : PropertyGroups()) words.emplace_back(row.word);
  return {
      .name = "show",
      .brief = "Read and show every setting",
      .footer =
          R"(Reads all settings of the readout and its scanner and shows each with its unit and what it
may be set to. With --json the members are the properties by their names, such as Units or
FilterRespTime; those of a scanner that isn't there are null. With --progress the reading
shows how far it is; Ctrl-C stops it between two settings.

Groups:
  )" + Listed(words) +
          R"(

Examples:
  thermoscribe settings show --port /dev/ttyUSB0
  thermoscribe settings show --group sampling
  thermoscribe --simulate settings show --json)",
      .options = {WordOption("--group", "GROUP", words, *group, "show one group only, see below")},
      .body = [group](CHost& host) {
        const auto row = std::ranges::find(PropertyGroups(), *group, &PropertyGroupRow::word);
        return RunSettingsShow(
            host, row == PropertyGroups().end() ? ChosenGroup() : ChosenGroup(row->group));
      }};
}

}  // namespace vane::thermoscribe
