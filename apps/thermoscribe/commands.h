// The commands of the program. Each has a file of its own, which adds the command's name, options
// and help to the parser; a new one needs that file and a line here.
#pragma once

#include <array>
#include <functional>

#include "apps/thermoscribe/exit_codes.h"

namespace CLI {
class App;
}

namespace vane {

class CHost;

/// Does the work of a command, on a host that is not connected yet. Failures that the user has not
/// been told of are raised.
using CommandBody = std::function<EExitCode(CHost& host)>;

/// Adds one command to `program`; when the user gives it, `chosen` becomes what it does. `chosen`
/// outlives the parsing.
using AddCommand = void(CLI::App& program, CommandBody& chosen);

AddCommand AddPorts;
AddCommand AddIdentify;
AddCommand AddChannels;
AddCommand AddMeasure;
AddCommand AddChannel;
AddCommand AddProbe;
AddCommand AddSettings;
AddCommand AddScan;
AddCommand AddProtection;
AddCommand AddClock;
AddCommand AddDownload;

/// In the order of the help.
inline constexpr std::array kCommands = {AddPorts,      AddIdentify, AddChannels, AddMeasure,
                                         AddChannel,    AddProbe,    AddSettings, AddScan,
                                         AddProtection, AddClock,    AddDownload};

/// The commands of a group, in the order of its help.
AddCommand AddSettingsShow;
AddCommand AddSettingsSet;
AddCommand AddSettingsSave;
AddCommand AddSettingsRestore;
AddCommand AddSettingsDiff;

/// Adds a command that is a group of others, one of which must follow it.
CLI::App& AddGroup(CLI::App& program, const char* name, const char* brief);

}  // namespace vane
