// thermoscribe settings diff: what a file and the readout, or two files, differ in.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/snapshot.h"

namespace vane {
namespace {

EExitCode RunDiff(CHost& host, const std::string& path, const std::string& otherpath) {
  Json left;
  Json right;
  try {
    left = ReadSnapshotFile(path);
    if (!otherpath.empty()) right = ReadSnapshotFile(otherpath);
  } catch (const std::runtime_error& error) {
    CHost::Say(error.what());
    return EExitCode::FAILED;
  }
  if (otherpath.empty()) {
    if (const EExitCode code = TakeSnapshot(host, right); code != EExitCode::DONE) return code;
  }
  const std::vector<Difference> differences = Differences(left, right);
  ShowDifferences(host, differences, "File", otherpath.empty() ? "Readout" : "File 2");
  return differences.empty() ? EExitCode::DONE : EExitCode::DIFFERS;
}

}  // namespace

void AddSettingsDiff(CLI::App& program, CommandBody& chosen) {
  CLI::App* const command =
      program.add_subcommand("diff", "Compare a file with the readout or with another file");
  const auto path = std::make_shared<std::string>();
  const auto otherpath = std::make_shared<std::string>();
  command->add_option("file", *path, "file of \"settings save\"")->required()->option_text("FILE");
  command->add_option("file2", *otherpath, "another one; without it, the readout")
      ->option_text("[FILE2]");
  command->footer(
      R"(Shows each setting, channel and probe's value that differs, with its place and both values.
The exit code is 10 when there is one. Comparing two files takes no readout. The time and
what the readout says of itself are not compared.

Examples:
  thermoscribe settings diff bath.json --port /dev/ttyUSB0
  thermoscribe settings diff bath.json bath-new.json)");
  command->callback([&chosen, path, otherpath] {
    chosen = [path, otherpath](CHost& host) { return RunDiff(host, *path, *otherpath); };
  });
}

}  // namespace vane
