// thermoscribe settings save: everything that the readout keeps, into a file.

#include <memory>
#include <string>

#include "adapters/files/replacing_file.h"
#include "apps/snapshots/snapshot_file.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/line_output.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/settings_file.h"

namespace vane::thermoscribe {
namespace {

EExitCode RunSave(CHost& host, const std::string& path) {
  CheckFolder(path);
  Snapshot snapshot;
  if (const EExitCode code = ConnectAndTake(host, snapshot); code != EExitCode::DONE) return code;
  host.Output().File(path, SnapshotText(snapshot), kSnapshotPermissions);
  // With the snapshot itself on standard output, nothing else may stand there.
  if (IsStandardOutput(path)) return EExitCode::DONE;
  host.Output().Record("saved", {{"file", path}, {"taken", snapshot.taken}},
                       "The settings were saved in " + path + ".");
  return EExitCode::DONE;
}

}  // namespace

Command SettingsSaveCommand() {
  const auto path = std::make_shared<std::string>();
  Option file = PathOption("file", "FILE", *path, "file to be written; an older one is replaced");
  file.isrequired = true;
  return {.name = "save",
          .brief = "Save all settings, channels and probes in a file",
          .footer = R"(Reads all settings, the probe of each channel and the records of all )" +
                    std::to_string(CVaneT312B::NumProbes()) + R"( probes, and writes
them as indented JSON with all their digits. The file is there as a whole or not at all; a
pipe or a device is written to, "-" is standard output.

Examples:
  thermoscribe settings save bath.json --port /dev/ttyUSB0
  thermoscribe settings save - | gzip > bath.json.gz)",
          .options = {std::move(file)},
          .body = [path](CHost& host) { return RunSave(host, *path); }};
}

}  // namespace vane::thermoscribe
