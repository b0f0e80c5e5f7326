// thermoscribe settings restore: a file's settings back into the readout, as far as they differ.

#include <unistd.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "apps/snapshots/restore.h"
#include "apps/snapshots/snapshot_file.h"
#include "apps/thermoscribe/account.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/settings_file.h"
#include "vane/components/components.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

EExitCode AskUser(CHost& host, std::size_t values) {
  if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) {
    host.Say("Nothing was written: there is no terminal to ask on. --yes answers.");
    return EExitCode::USAGE;
  }
  const std::string question =
      "Write these " + std::to_string(values) + " values of the file into the readout?";
  const EBoxButton answer = InstalledComponents().platform.MessageBox(
      question, kCompanyName, kBoxQuestion + kBoxYesNo, {}, 0);
  if (answer == EBoxButton::YES) return EExitCode::DONE;
  host.Say("Nothing was written.");
  return EExitCode::ABORTED;
}

EExitCode Verify(CHost& host, const CRestore& restore) {
  Snapshot after;
  if (const EEnd end = TakeSnapshot(host.Instrument(), host, after); end != EEnd::DONE) {
    return NotReadBack(host, host.CodeOf(end));
  }
  List missing;
  const std::vector<LostValue> lost = restore.LostIn(after);
  for (const LostValue& one : lost) {
    const auto& [place, left, right] = one.difference;
    missing.emplace_back(Members{
        {"place", place.Text()}, {"file", left}, {"readout", right}, {"reason", one.reason}});
    host.Say(one.Text());
  }
  const std::size_t values = restore.Wanted().size();
  host.Output().Record("restored", {{"values", values}, {"missing", missing}},
                       "Restored " + std::to_string(values) + " values.");
  return lost.empty() ? EExitCode::DONE : EExitCode::FAILED;
}

EExitCode Restore(CHost& host, Snapshot file, bool yes, bool dryrun) {
  Snapshot before;
  if (const EExitCode code = ConnectAndTake(host, before); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  CRestore restore(host.Instrument(), host, std::move(file), std::move(before));
  ShowDifferences(host, restore.All(), "File", "Readout");
  if (const std::string problem = restore.Problem(); !problem.empty()) {
    host.Say(problem);
    return NothingWritten(host, EExitCode::FAILED);
  }
  if (restore.MissesScanner()) {
    host.Note(
        "The file has a scanner's settings, and no scanner is attached: the rest is restored.");
  }
  for (const std::string& text : restore.OddThings()) host.Note("Odd, " + text);
  if (restore.Wanted().empty()) {
    return restore.All().empty() || dryrun ? EExitCode::DONE : Verify(host, restore);
  }
  if (!yes && !dryrun) {
    if (const EExitCode code = AskUser(host, restore.Wanted().size()); code != EExitCode::DONE) {
      return code;
    }
  }
  if (const EExitCode code = host.OpenGates(restore.Gates()); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  if (dryrun) host.StartDryRun();
  if (const EExitCode code = RunStages(host, restore.Stages(), "Restore again to complete it.");
      code != EExitCode::DONE) {
    return code;
  }
  return dryrun ? EExitCode::DONE : Verify(host, restore);
}

EExitCode RunRestore(CHost& host, const std::string& path, bool yes, bool dryrun) {
  Snapshot file;
  try {
    file = ReadSnapshotFile(path, host.UsersPatience());
  } catch (const std::runtime_error& error) {
    host.Say(error.what());
    return NothingWritten(host, host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED);
  }
  return Restore(host, std::move(file), yes, dryrun);
}

}  // namespace

Command SettingsRestoreCommand() {
  struct Options {
    std::string path;
    bool yes = false;
    bool dryrun = false;
  };
  const auto options = std::make_shared<Options>();
  Option file = PathOption("file", "FILE", options->path, "file of \"settings save\"");
  file.isrequired = true;
  return {
      .name = "restore",
      .brief = "Write what a file has and the readout has otherwise",
      .footer =
          R"(Checks the whole file first, shows what differs, asks, and writes what differs: the settings,
each probe's record, the probes of the channels. Then everything is read again, and each
value that did not arrive is told. The passcode is asked for where the readout protects what
differs. When it stops half way, the message says what was written; restoring again
completes it.

Examples:
  thermoscribe settings restore bath.json --port /dev/ttyUSB0
  thermoscribe settings restore bath.json --yes --passcode-file ~/.thermoscribe-passcode
  thermoscribe settings restore bath.json --dry-run)",
      .options = {std::move(file), Flag("--yes", options->yes, "write without asking"),
                  DryRun(options->dryrun)},
      .body = [options](CHost& host) {
        return RunRestore(host, options->path, options->yes, options->dryrun);
      }};
}

}  // namespace vane::thermoscribe
