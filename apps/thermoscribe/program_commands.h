// The commands of the program. Each has a file of its own, which describes it; a new one needs that
// file, a line here, and one in `Program`.
#pragma once

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host_options.h"

namespace vane::thermoscribe {

Command PortsCommand();
Command IdentifyCommand();
Command ChannelsCommand();
Command MeasureCommand();
Command RecordCommand();
Command WatchCommand();
Command ExportCommand();
Command ReportCommand();
Command PublishCommand();
Command CollectCommand();
Command ChannelCommand();
Command ProbeCommand();
Command ConvertCommand();
Command TableCommand();
Command VerifyCommand();
Command SettingsCommand();
Command ScanCommand();
Command ProtectionCommand();
Command ClockCommand();
Command DownloadCommand();
Command CompletionCommand();

/// `options` has what the command line gives once the command runs.
Command ConfigCommand(const HostOptions& options);

/// The members of `settings`, in the order of its help.
Command SettingsShowCommand();
Command SettingsSetCommand();
Command SettingsSaveCommand();
Command SettingsRestoreCommand();
Command SettingsDiffCommand();

}  // namespace vane::thermoscribe
