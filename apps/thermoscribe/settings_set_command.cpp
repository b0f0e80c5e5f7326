// thermoscribe settings set: settings by the names of their properties.

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/thermoscribe/assignments.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {

Command SettingsSetCommand() {
  struct Options {
    std::vector<PropertyValue> assignments;
    bool dryrun = false;
  };
  const auto options = std::make_shared<Options>();
  Option assignments{"assignments", "NAME=VALUE...", "a setting and its new value", {}};
  assignments.take = [options](const std::string& text) {
    const auto [name, value] = AssignmentIn(text);
    AddAssignment(options->assignments, name, value);
  };
  assignments.isrequired = true;
  assignments.takesmany = true;
  assignments.offer = EOffer::WORDS;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.set == nullptr) continue;
    std::ranges::copy(AssignmentWords(row.name, *row.rule), std::back_inserter(assignments.words));
  }
  return {
      .name = "set",
      .brief = "Write settings and read them back",
      .footer =
          R"(The names are those of "settings show --json", in letters of either case; a value is a
number with "." or one of the words that "settings show" lists. A name or a value that can't
be is refused before anything is sent. The passcode is asked for where the readout protects
a setting. Behind the writing all settings are read again, and what has changed is shown.

Filter settings and calibration can be written with all other settings only, which takes
some seconds; other calibration values are then written with the digits of their formats.

Examples:
  thermoscribe settings set Units=K Interval=5
  thermoscribe settings set "SampleAction=Sample n" SampleN=100
  thermoscribe settings set ADC=0.15 --passcode-file ~/.thermoscribe-passcode
  thermoscribe settings set Resolution=3 --dry-run)",
      .options = {std::move(assignments), DryRun(options->dryrun)},
      .body = [options](CHost& host) {
        return WriteSettings(host, options->assignments, options->dryrun);
      }};
}

}  // namespace vane::thermoscribe
