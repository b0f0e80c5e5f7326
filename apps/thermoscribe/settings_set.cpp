// thermoscribe settings set: settings by the names of their properties.

#include <CLI/CLI.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/settings_write.h"

namespace vane {

void AddSettingsSet(CLI::App& program, CommandBody& chosen) {
  CLI::App* const command = program.add_subcommand("set", "Write settings and read them back");
  const auto texts = std::make_shared<std::vector<std::string>>();
  command->add_option("assignments", *texts, "a setting and its new value")
      ->required()
      ->option_text("NAME=VALUE ...");
  const auto dryrun = AddDryRun(*command);
  command->footer(
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
  thermoscribe settings set Resolution=3 --dry-run)");
  command->callback([&chosen, texts, dryrun] {
    std::vector<Assignment> assignments;
    for (const std::string& text : *texts) {
      const std::size_t sign = text.find('=');
      if (sign == text.npos) throw CLI::ValidationError("\"" + text + "\" is not NAME=VALUE.");
      try {
        assignments.push_back(AssignmentOf(text.substr(0, sign), text.substr(sign + 1)));
      } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError(error.what());
      }
    }
    chosen = [assignments, dryrun](CHost& host) {
      return WriteSettings(host, assignments, *dryrun);
    };
  });
}

}  // namespace vane
