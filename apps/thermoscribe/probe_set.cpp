#include "apps/thermoscribe/probe_set.h"

#include <stdexcept>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_members.h"
#include "apps/thermoscribe/probe_record.h"
#include "apps/thermoscribe/settings_write.h"
#include "apps/thermoscribe/snapshot.h"
#include "apps/thermoscribe/value_rule.h"

namespace vane {
namespace {

// With the coefficients beside the other members.
Json Flat(const Json& record) {
  Json flat = Json::object();
  for (const auto& [name, value] : record.items()) {
    if (name == "coefficients") {
      flat.update(value);
    } else {
      flat[name] = value;
    }
  }
  return flat;
}

// The value under `name` in letters of either case; null when it isn't there.
Json ValueUnder(const Json& flat, const std::string& name) {
  for (const auto& [other, value] : flat.items()) {
    if (Folded(other) == Folded(name)) return value;
  }
  return nullptr;
}

EExitCode ShowChanges(CHost& host, const Json& values, const Json& before, const Json& after) {
  Json changes = Json::object();
  std::string text;
  const auto add = [&](const std::string& name, const Json& old, const Json& now) {
    changes[name] = {{"before", old}, {"after", now}};
    text += (text.empty() ? "" : "\n") + name + ": " + TextOf(old) + " -> " + TextOf(now);
  };
  for (const auto& [name, value] : after.items()) {
    const Json old = before.contains(name) ? before[name] : Json();
    if (value != old) add(name, old, value);
  }
  for (const auto& [name, value] : before.items()) {
    if (!after.contains(name)) add(name, value, nullptr);
  }
  host.Output().Record("changes", changes, text.empty() ? "Nothing has changed." : text);
  EExitCode code = EExitCode::DONE;
  const Json wanted = Flat(values);
  for (const auto& [name, value] : wanted.items()) {
    const Json now = ValueUnder(after, name);
    if (now == value) continue;
    host.Say(name + ": " + TextOf(value) + " was written, but the readout has " + TextOf(now) +
             ": " + WhyNotArrived(value, now, ValueUnder(before, name)) + ".");
    code = EExitCode::FAILED;
  }
  return code;
}

// `ischannel`: the probe of the channel; otherwise the channel's object only carries the record.
EExitCode Write(CHost& host, CVaneT312BPRTTHRMChannel& channel, std::int16_t number, bool ischannel,
                const Json& values, bool dryrun) {
  CVaneT312B& instrument = host.Instrument();
  ui::CWindow* const window = host.ProgressWindow();
  if (ischannel) {
    channel.QueryProbeIndex();
    number = channel.ProbeIndex();
  }
  const Json assigned = number;
  const bool assigns = values.contains("probe");
  if (assigns) number = values["probe"].get<std::int16_t>();
  if (!channel.QueryProbeInfo(number, window)) return host.CodeOfStoppedRun();
  Json before = Flat(ProbeRecord(channel, number));
  before["probe"] = assigned;
  try {
    StoreProbeRecord(channel, values);
  } catch (const std::invalid_argument& error) {
    host.Say(error.what());
    return EExitCode::USAGE;
  }
  if (HoldsConversion(values)) {
    static constexpr EGate kGates[] = {EGate::CONVERSION};
    if (const EExitCode code = host.OpenGates(kGates); code != EExitCode::DONE) return code;
  } else {
    // A conversion is written with the digits of its formats; nothing of it may change unasked.
    instrument.SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  }
  if (dryrun) host.StartDryRun();
  if (assigns) channel.SetProbeIndex(number);
  if (!(assigns ? channel.UpdateInfo(window) : channel.UpdateProbeInfo(number, window))) {
    return host.CodeOfStoppedRun();
  }
  if (dryrun) return EExitCode::DONE;
  if (!channel.QueryProbeInfo(number, window)) return host.CodeOfStoppedRun();
  Json after = Flat(ProbeRecord(channel, number));
  if (ischannel) {
    channel.QueryProbeIndex();
    after["probe"] = channel.ProbeIndex();
  }
  return ShowChanges(host, values, before, after);
}

}  // namespace

void AddProbeAssignment(Json& values, const std::string& text, bool takesprobe) {
  const auto [name, value] = AssignmentIn(text);
  if (!takesprobe || Folded(name) != "probe") {
    AssignProbeMember(values, name, value);
    return;
  }
  if (values.contains("probe")) throw CUsageError("probe is given twice.");
  values["probe"] = WholeNumberIn("probe", value, 1, CVaneT312B::NumProbes());
}

std::vector<std::string> ProbeMemberWords(bool takesprobe) {
  std::vector<std::string> words = ProbeMemberNames();
  if (takesprobe) words.insert(words.begin(), "probe");
  for (std::string& word : words) word += "=";
  return words;
}

EExitCode WriteProbe(CHost& host, std::int16_t number, const Json& values, bool dryrun) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = host.Instrument().GetChannelReference(1);
  if (channel == nullptr) {
    host.Say("The readout reports no channels.");
    return EExitCode::FAILED;
  }
  return Write(host, *channel, number, false, values, dryrun);
}

EExitCode WriteChannel(CHost& host, std::int16_t number, const Json& values, bool dryrun) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = host.Instrument().GetChannelReference(number);
  if (channel == nullptr) {
    host.Say("The readout has the channels 1 to " +
             std::to_string(host.Instrument().NumChannels()) + ".");
    return EExitCode::USAGE;
  }
  return Write(host, *channel, number, true, values, dryrun);
}

}  // namespace vane
