// thermoscribe settings diff: what a file and the readout, or two files, differ in.

#include <memory>
#include <string>

#include "apps/snapshots/snapshot_file.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/settings_file.h"

namespace vane::thermoscribe {
namespace {

EExitCode RunDiff(CHost& host, const std::string& path, const std::string& otherpath) {
  Snapshot left;
  Snapshot right;
  try {
    left = ReadSnapshotFile(path, host.UsersPatience());
    if (!otherpath.empty()) right = ReadSnapshotFile(otherpath, host.UsersPatience());
  } catch (const std::runtime_error& error) {
    host.Say(error.what());
    return host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED;
  }
  if (otherpath.empty()) {
    if (const EExitCode code = ConnectAndTake(host, right); code != EExitCode::DONE) return code;
  }
  const std::vector<Difference> differences = Differences(left, right);
  ShowDifferences(host, differences, "File", otherpath.empty() ? "Readout" : "File 2");
  return differences.empty() ? EExitCode::DONE : EExitCode::DIFFERS;
}

}  // namespace

Command SettingsDiffCommand() {
  struct Paths {
    std::string file;
    std::string other;
  };
  const auto paths = std::make_shared<Paths>();
  Option file = PathOption("file", "FILE", paths->file, "file of \"settings save\"");
  file.isrequired = true;
  Option other =
      PathOption("file2", "[FILE2]", paths->other, "another one; without it, the readout");
  return {
      .name = "diff",
      .brief = "Compare a file with the readout or with another file",
      .footer =
          R"(Shows each setting, channel and probe's value that differs, with its place and both values.
The exit code is 10 when there is one. Comparing two files takes no readout. The time and
what the readout says of itself are not compared.

Examples:
  thermoscribe settings diff bath.json --port /dev/ttyUSB0
  thermoscribe settings diff bath.json bath-new.json)",
      .options = {std::move(file), std::move(other)},
      .body = [paths](CHost& host) { return RunDiff(host, paths->file, paths->other); },
      .check =
          [paths] {
            if (paths->file == "-" && paths->other == "-") {
              throw CUsageError("Standard input can't be both files.");
            }
          }};
}

}  // namespace vane::thermoscribe
