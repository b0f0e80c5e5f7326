// thermoscribe settings: the commands on the instrument's settings.

#include <CLI/CLI.hpp>

#include "apps/thermoscribe/commands.h"

namespace vane {

void AddSettings(CLI::App& program, CommandBody& chosen) {
  CLI::App& group = AddGroup(program, "settings", "Read and write the settings of the readout");
  AddSettingsShow(group, chosen);
  AddSettingsSet(group, chosen);
  AddSettingsSave(group, chosen);
  AddSettingsRestore(group, chosen);
  AddSettingsDiff(group, chosen);
}

}  // namespace vane
