#include "apps/thermoscribe/probe_set.h"

#include <stdexcept>

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_members.h"
#include "apps/thermoscribe/property_write.h"
#include "apps/thermoscribe/shown_record.h"
#include "apps/thermoscribe/stages.h"
#include "apps/thermoscribe/value_check.h"
#include "apps/thermoscribe/value_rule.h"
#include "vane/support/display_texts.h"

namespace vane::thermoscribe {
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

EExitCode ShowChanges(CHost& host, const Json& before, const Json& wanted, const Json& after) {
  Json changes = Json::object();
  std::string text;
  const auto add = [&](const std::string& name, const Json& old, const Json& now) {
    changes[name] = {{"before", old}, {"after", now}};
    text += (text.empty() ? "" : "\n") + name + ": " + TextOf(old) + " -> " + TextOf(now);
  };
  for (const auto& [name, value] : after.items()) {
    const Json old = ValueUnder(before, name);
    if (value != old) add(name, old, value);
  }
  for (const auto& [name, value] : before.items()) {
    if (!after.contains(name)) add(name, value, nullptr);
  }
  host.Output().Record("changes", changes, text.empty() ? "Nothing has changed." : text);
  EExitCode code = EExitCode::DONE;
  const auto check = [&](const std::string& name) {
    const CheckedValue value{.before = ValueUnder(before, name),
                             .wanted = ValueUnder(wanted, name),
                             .after = ValueUnder(after, name)};
    if (value.after == value.wanted) return;
    host.Say(WrongValueText(name, value, TextOf));
    code = EExitCode::FAILED;
  };
  for (const auto& [name, value] : wanted.items()) check(name);
  for (const auto& [name, value] : after.items()) {
    if (!wanted.contains(name)) check(name);
  }
  return code;
}

// A write rewrites the record, so what it does not change has to be known. Empty: it is.
std::string UnknownPart(const Json& record, bool conversiontoo) {
  if (record["reference"] == RefResistorText(ET312BProbeRefResistor::PRR_NONE)) {
    return "reference";
  }
  return conversiontoo && record["conversion"].is_null() ? "conversion" : "";
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

EExitCode Write(CHost& host, Target target, const Json& values, bool dryrun) {
  CVaneT312BPRTTHRMChannel& channel = target.channel;
  const bool assigns = values.contains("probe");
  if (assigns) target.number = values["probe"].get<std::int16_t>();
  if (const EExitCode code = ReadRecord(host, target); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  Json before = Flat(ProbeRecord(channel, target.number));
  if (target.ischannel) before["probe"] = channel.ProbeIndex();
  try {
    StoreProbeRecord(channel, values);
  } catch (const std::invalid_argument& error) {
    host.Say(error.what());
    return NothingWritten(host, EExitCode::USAGE);
  }
  const Json record = ProbeRecord(channel, target.number);
  const bool converts = HoldsConversion(values);
  if (const std::string part = UnknownPart(record, converts); !part.empty()) {
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
  if (assigns) {
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
  Json after = Flat(ProbeRecord(channel, target.number));
  if (target.ischannel) after["probe"] = channel.ProbeIndex();
  return ShowChanges(host, before, Flat(record), after);
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
  std::vector<std::string> words = ProbeMemberAssignments();
  if (takesprobe) words.insert(words.begin(), "probe=");
  return words;
}

EExitCode WriteProbe(CHost& host, std::int16_t number, const Json& values, bool dryrun) {
  if (const EExitCode code = host.ReadWell([&] { return host.ReadSettings(); });
      code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  CVaneT312BPRTTHRMChannel* const channel = host.Instrument().GetChannelReference(1);
  if (channel == nullptr) {
    host.Say("The readout reports no channels.");
    return EExitCode::FAILED;
  }
  return Write(host, {*channel, number, false}, values, dryrun);
}

EExitCode WriteChannel(CHost& host, std::int16_t number, const Json& values, bool dryrun) {
  if (const EExitCode code = host.ReadWell([&] { return host.ReadSettings(); });
      code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  CVaneT312BPRTTHRMChannel* const channel = host.Instrument().GetChannelReference(number);
  if (channel == nullptr) {
    host.Say("The readout has the channels 1 to " +
             std::to_string(host.Instrument().NumChannels()) + ".");
    return EExitCode::USAGE;
  }
  return Write(host, {*channel, 0, true}, values, dryrun);
}

}  // namespace vane::thermoscribe
