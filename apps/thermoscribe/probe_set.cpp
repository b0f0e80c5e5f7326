#include "apps/thermoscribe/probe_set.h"

#include <algorithm>
#include <stdexcept>

#include "apps/thermoscribe/account.h"
#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {
namespace {

// A write rewrites the record, so what it does not change has to be known. Empty: it is.
std::string UnknownPart(const CVaneT312BPRTTHRMChannel& channel, bool conversiontoo) {
  if (channel.ProbeRefResistor() == ET312BProbeRefResistor::PRR_NONE) return "reference";
  const bool isunknown = channel.Probe()->ConversionType() == EVaneConversionType::CONV_NONE;
  return conversiontoo && isunknown ? "conversion" : "";
}

// Each value of the three records, none where one doesn't have it.
std::vector<CheckedValue> Checked(const ProbeValues& before, const ProbeValues& wanted,
                                  const ProbeValues& after) {
  std::vector<CheckedValue> checked;
  std::vector<ProbeKey> keys;
  for (const ProbeValues* const record : {&wanted, &after, &before}) {
    for (const auto& [key, value] : *record) {
      if (std::ranges::find(keys, key) != keys.end()) continue;
      keys.push_back(key);
      checked.push_back({.name = key.Name(),
                         .before = ValueIn(before, key),
                         .wanted = ValueIn(wanted, key),
                         .after = ValueIn(after, key)});
    }
  }
  return checked;
}

// Where a record is written, and as what.
struct Target {
  CVaneT312BPRTTHRMChannel& channel;
  std::int16_t number;  // of the probe; 0: not known yet
  bool ischannel;       // the probe of the channel; otherwise its object only carries the record
};

// With `number` 0, that of the channel's own probe.
EExitCode ReadRecord(CHost& host, Target& target) {
  return host.ReadWell([&] {
    if (target.ischannel) target.channel.QueryProbeIndex();
    if (target.number == 0) target.number = target.channel.ProbeIndex();
    return target.channel.QueryProbeInfo(target.number, host.ProgressWindow())
               ? EExitCode::DONE
               : host.CodeOfStoppedRun();
  });
}

EExitCode Write(CHost& host, Target target, const ProbeAssignments& assignments, bool dryrun) {
  CVaneT312BPRTTHRMChannel& channel = target.channel;
  const auto& [values, assigned] = assignments;
  if (assigned) target.number = *assigned;
  if (const EExitCode code = ReadRecord(host, target); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  const ProbeValues before = ProbeRecord(channel);
  const std::int16_t probebefore = channel.ProbeIndex();
  try {
    StoreProbeValues(channel, values);
  } catch (const std::invalid_argument& error) {
    host.Say(error.what());
    return NothingWritten(host, EExitCode::USAGE);
  }
  const ProbeValues wanted = ProbeRecord(channel);
  const bool converts = HoldsConversion(values);
  if (const std::string part = UnknownPart(channel, converts); !part.empty()) {
    host.Say("The " + part + " of probe " + std::to_string(target.number) +
             " is none that can be written again. Set it too.");
    return NothingWritten(host, EExitCode::FAILED);
  }
  if (converts) {
    static constexpr EGate kGates[] = {EGate::CONVERSION};
    if (const EExitCode code = host.OpenGates(kGates); code != EExitCode::DONE) {
      return NothingWritten(host, code);
    }
  } else {
    // A conversion is written with the digits of its formats; nothing of it may change unasked.
    host.Instrument().SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  }
  if (dryrun) host.StartDryRun();
  ui::CWindow* const window = host.ProgressWindow();
  std::vector<Stage> stages;
  if (assigned) {
    channel.SetProbeIndex(target.number);
    stages.push_back({"assignment and record of probe " + std::to_string(target.number),
                      [&] { return channel.UpdateInfo(window); }});
  } else {
    stages.push_back({"record of probe " + std::to_string(target.number),
                      [&] { return channel.UpdateProbeInfo(target.number, window); }});
  }
  if (const EExitCode code = RunStages(host, stages, {}); code != EExitCode::DONE) return code;
  if (dryrun) return EExitCode::DONE;
  if (const EExitCode code = ReadRecord(host, target); code != EExitCode::DONE) {
    return NotReadBack(host, code);
  }
  std::vector<CheckedValue> checked = Checked(before, wanted, ProbeRecord(channel));
  if (target.ischannel) {
    checked.insert(checked.begin(), {.name = "probe",
                                     .before = probebefore,
                                     .wanted = target.number,
                                     .after = channel.ProbeIndex()});
  }
  return ShowChanges(host, checked);
}

}  // namespace

EExitCode WriteProbe(CHost& host, std::int16_t number, const ProbeAssignments& assignments,
                     bool dryrun) {
  if (const EExitCode code = ReadBeforeWriting(host); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = ProbeCarrier(host.Instrument(), host);
  if (channel == nullptr) return EExitCode::FAILED;
  return Write(host, {*channel, number, false}, assignments, dryrun);
}

EExitCode WriteChannel(CHost& host, std::int16_t number, const ProbeAssignments& assignments,
                       bool dryrun) {
  if (const EExitCode code = ReadBeforeWriting(host); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = host.FindChannel(number);
  if (channel == nullptr) return EExitCode::USAGE;
  return Write(host, {*channel, 0, true}, assignments, dryrun);
}

}  // namespace vane::thermoscribe
