// thermoscribe settings: the commands on the instrument's settings.

#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {

Command SettingsCommand() {
  return {.name = "settings",
          .brief = "Read and write the settings of the readout",
          .members = {SettingsShowCommand(), SettingsSetCommand(), SettingsSaveCommand(),
                      SettingsRestoreCommand(), SettingsDiffCommand()}};
}

}  // namespace vane::thermoscribe
