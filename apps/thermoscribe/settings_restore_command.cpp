// thermoscribe settings restore: a file's settings back into the readout, as far as they differ.

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/snapshots/json_text.h"
#include "apps/snapshots/property_write.h"
#include "apps/snapshots/snapshot_file.h"
#include "apps/thermoscribe/account.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/settings_file.h"
#include "vane/components/components.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

using enum SnapshotPlace::EPart;

class CRestore {
 public:
  CRestore(CHost& host, const Snapshot& file) : host_(host), file_(file) {}

  EExitCode Run(bool yes, bool dryrun);

 private:
  EExitCode RefuseUntypable() const;
  std::string WhyImpossible(const Difference& difference) const;
  bool Differs(SnapshotPlace::EPart part, std::int16_t number = 0) const;
  EExitCode AskUser() const;
  EExitCode OpenGates();
  std::vector<Stage> Stages();
  std::vector<PropertyValue> WantedSettings() const;
  bool WriteProbe(std::int16_t number);
  bool WriteChannels();
  EExitCode Verify();

  CHost& host_;
  const Snapshot& file_;
  Snapshot before_;
  std::vector<Difference> wanted_;      // what can be written
  std::vector<Difference> impossible_;  // what the readout can't have
};

// Empty: it can be written.
std::string CRestore::WhyImpossible(const Difference& difference) const {
  const SnapshotPlace& place = difference.place;
  if (difference.left.IsNone()) {
    // What only the older conversion has goes with it, and no subrange is one.
    const bool goes =
        place.part == PROBE && (place.probe.row == nullptr || !place.probe.row->maybeunknown);
    return goes ? "" : "the file has no value for it";
  }
  if (host_.Instrument().HasScanners()) return {};
  const bool isscanners =
      (place.part == SETTING && NeedsScanner(*place.setting, difference.left)) ||
      (place.part == CHANNEL && difference.right.IsNone());
  return isscanners ? "no scanner is attached" : "";
}

// What only a readout can have got is left alone where it is, and can't be written.
EExitCode CRestore::RefuseUntypable() const {
  for (const auto& [place, left, right] : wanted_) {
    const ProbeMemberRow* const row = place.probe.row;
    if (row == nullptr || !row->infile || left.IsNone() || Allows(row->rule, left)) continue;
    host_.Say(place.Text() + ": " + JsonText(left) + " can't be written. It is " +
              ExpectedText(row->rule) + ".");
    return EExitCode::FAILED;
  }
  return EExitCode::DONE;
}

bool CRestore::Differs(SnapshotPlace::EPart part, std::int16_t number) const {
  return std::ranges::any_of(wanted_,
                             [&](const Difference& one) { return one.place.IsIn(part, number); });
}

EExitCode CRestore::AskUser() const {
  if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) {
    host_.Say("Nothing was written: there is no terminal to ask on. --yes answers.");
    return EExitCode::USAGE;
  }
  const std::string question =
      "Write these " + std::to_string(wanted_.size()) + " values of the file into the readout?";
  const EBoxButton answer = InstalledComponents().platform.MessageBox(
      question, kCompanyName, kBoxQuestion + kBoxYesNo, {}, 0);
  if (answer == EBoxButton::YES) return EExitCode::DONE;
  host_.Say("Nothing was written.");
  return EExitCode::ABORTED;
}

EExitCode CRestore::OpenGates() {
  std::vector<EGate> gates = GatesOf(WantedSettings());
  for (const Difference& difference : wanted_) {
    if (difference.place.IsConversion()) gates.push_back(EGate::CONVERSION);
  }
  return host_.OpenGates(gates);
}

std::vector<PropertyValue> CRestore::WantedSettings() const {
  std::vector<PropertyValue> settings;
  for (const auto& [place, left, right] : wanted_) {
    if (place.part == SETTING) settings.push_back({place.setting, left});
  }
  return settings;
}

bool CRestore::WriteProbe(std::int16_t number) {
  CVaneT312B& instrument = host_.Instrument();
  CVaneT312BPRTTHRMChannel& carrier = *instrument.GetChannelReference(1);
  const bool converts = std::ranges::any_of(wanted_, [&](const Difference& one) {
    return one.place.IsIn(PROBE, number) && one.place.IsConversion();
  });
  instrument.SetConvPasscodeState(converts ? ET312BPasscodeState::PS_ENABLED
                                           : ET312BPasscodeState::PS_DISABLED);
  const auto index = static_cast<std::size_t>(number - 1);
  // What the file doesn't know stays as the readout has it.
  StoreProbeValues(carrier, before_.probes[index]);
  ProbeValues record = file_.probes[index];
  if (!KnowsConversion(record)) {
    std::erase_if(record, [](const ProbeValue& one) { return one.key.IsConversion(); });
  }
  StoreProbeValues(carrier, record);
  return carrier.UpdateProbeInfo(number, host_.ProgressWindow());
}

bool CRestore::WriteChannels() {
  CVaneT312B& instrument = host_.Instrument();
  // With its assignment a channel writes its probe's record, but not the conversion.
  instrument.SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  for (const ChannelEntry& entry : file_.channels) {
    if (!Differs(CHANNEL, entry.number)) continue;
    CVaneT312BPRTTHRMChannel& channel = *instrument.GetChannelReference(entry.number);
    const std::int16_t probe = entry.probe;
    const EExitCode code = host_.ReadWell([&] {
      return channel.QueryProbeInfo(probe, host_.ProgressWindow()) ? EExitCode::DONE
                                                                   : host_.CodeOfStoppedRun();
    });
    if (code != EExitCode::DONE) return false;
    channel.SetProbeIndex(probe);
    if (!channel.UpdateInfo(host_.ProgressWindow())) return false;
  }
  return true;
}

std::vector<Stage> CRestore::Stages() {
  std::vector<Stage> stages;
  if (Differs(SETTING)) {
    stages.push_back(
        {host_.Instrument().HasScanners() ? "scanner and settings" : "settings",
         [this] { return WriteAllSettings(host_.Instrument(), host_, WantedSettings()); }});
  }
  for (std::int16_t number = 1; number <= CVaneT312B::NumProbes(); ++number) {
    if (!Differs(PROBE, number)) continue;
    stages.push_back(
        {"probe " + std::to_string(number), [this, number] { return WriteProbe(number); }});
  }
  const bool assigns =
      std::ranges::any_of(wanted_, [](const Difference& one) { return one.place.part == CHANNEL; });
  if (assigns) stages.push_back({"channel assignments", [this] { return WriteChannels(); }});
  return stages;
}

EExitCode CRestore::Verify() {
  Snapshot after;
  if (const EEnd end = TakeSnapshot(host_.Instrument(), host_, after); end != EEnd::DONE) {
    return NotReadBack(host_, host_.CodeOf(end));
  }
  List missing;
  const auto tell = [&](const Difference& difference, const std::string& reason) {
    missing.emplace_back(Members{{"place", difference.place.Text()},
                                 {"file", difference.left},
                                 {"readout", difference.right},
                                 {"reason", reason}});
    host_.Say(difference.place.Text() + ": " + TextOf(difference.left) +
              " did not arrive, the readout has " + TextOf(difference.right) + ": " + reason + ".");
  };
  for (const Difference& difference : Differences(file_, after)) {
    const std::string impossible = WhyImpossible(difference);
    const auto old = std::ranges::find(wanted_, difference.place, &Difference::place);
    tell(difference, !impossible.empty()
                         ? impossible
                         : WhyWrong({.name = {},
                                     .before = old == wanted_.end() ? difference.left : old->right,
                                     .wanted = difference.left,
                                     .after = difference.right}));
  }
  host_.Output().Record("restored", {{"values", wanted_.size()}, {"missing", missing}},
                        "Restored " + std::to_string(wanted_.size()) + " values.");
  return missing.empty() ? EExitCode::DONE : EExitCode::FAILED;
}

EExitCode CRestore::Run(bool yes, bool dryrun) {
  if (const EExitCode code = ConnectAndTake(host_, before_); code != EExitCode::DONE) {
    return NothingWritten(host_, code);
  }
  const std::vector<Difference> differences = Differences(file_, before_);
  for (const Difference& difference : differences) {
    (WhyImpossible(difference).empty() ? wanted_ : impossible_).push_back(difference);
  }
  ShowDifferences(host_, differences, "File", "Readout");
  if (const EExitCode code = RefuseUntypable(); code != EExitCode::DONE) {
    return NothingWritten(host_, code);
  }
  const bool isscannerinfile = std::ranges::any_of(file_.settings, [](const PropertyValue& one) {
    return one.row->group == EPropertyGroup::SCAN && !one.value.IsNone();
  });
  if (isscannerinfile && !host_.Instrument().HasScanners()) {
    host_.Note(
        "The file has a scanner's settings, and no scanner is attached: the rest is restored.");
  }
  if (wanted_.empty()) {
    if (impossible_.empty()) return EExitCode::DONE;
    return dryrun ? EExitCode::DONE : Verify();
  }
  if (!yes && !dryrun) {
    if (const EExitCode code = AskUser(); code != EExitCode::DONE) return code;
  }
  if (const EExitCode code = OpenGates(); code != EExitCode::DONE) {
    return NothingWritten(host_, code);
  }
  if (dryrun) host_.StartDryRun();
  if (const EExitCode code = RunStages(host_, Stages(), "Restore again to complete it.");
      code != EExitCode::DONE) {
    return code;
  }
  return dryrun ? EExitCode::DONE : Verify();
}

EExitCode RunRestore(CHost& host, const std::string& path, bool yes, bool dryrun) {
  Snapshot file;
  try {
    file = ReadSnapshotFile(path, host.UsersPatience());
  } catch (const std::runtime_error& error) {
    host.Say(error.what());
    return NothingWritten(host, host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED);
  }
  return CRestore(host, file).Run(yes, dryrun);
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
