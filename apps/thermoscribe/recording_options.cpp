#include "apps/thermoscribe/recording_options.h"

#include <optional>
#include <utility>

#include "apps/thermoscribe/channel_list.h"
#include "apps/thermoscribe/host.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

void TakeTime(const std::string& name, const std::string& text,
              std::optional<std::int64_t>& target) {
  target = recorder::TimeOfText(text);
  if (!target) throw CUsageError(name + ": \"" + text + "\" is no time.");
}

Value SerialOf(const recorder::RecordingHead& head,
               const recorder::RecordingHead::Channel& channel) {
  if (!channel.probe || !head.probes.contains(*channel.probe)) return {};
  return head.probes.at(*channel.probe);
}

}  // namespace

std::vector<Option> RecordingChoiceOptions(RecordingOptions& options) {
  Option file = PathOption("file", "FILE", options.file, "the recording, also while it goes on");
  file.isrequired = true;
  Option from{"--from",
              "T",
              "from that time on: 2026-03-01, 2026-03-01T09:30,\n"
              "with a Z for UTC or without for the user's own time",
              {}};
  from.take = [&options](const std::string& text) {
    TakeTime("--from", text, options.choice.from);
  };
  Option to{"--to", "T", "up to that time, which isn't part of it", {}};
  to.take = [&options](const std::string& text) { TakeTime("--to", text, options.choice.to); };
  Option channels{"--channels", "LIST", "these channels alone, such as 1,3-12", {}};
  channels.take = [&options](const std::string& text) {
    for (const std::int16_t channel : ChannelList("--channels", text)) {
      options.choice.channels.insert(channel);
    }
  };
  return {std::move(file), std::move(from), std::move(to), std::move(channels)};
}

EExitCode WithRecording(CHost& host, const RecordingOptions& options,
                        const std::function<EExitCode(recorder::CRecordingReader&)>& work) {
  try {
    recorder::CRecordingReader reader(options.file);
    return work(reader);
  } catch (const recorder::CStoreError& error) {
    host.Say(error.what());
    return EExitCode::FAILED;
  }
}

Members RecordingMembers(const recorder::AboutRecording& about) {
  List channels;
  for (const auto& channel : about.head.channels) {
    channels.push_back(Members{{"channel", channel.channel},
                               {"name", channel.name},
                               {"probe", channel.probe ? Value(*channel.probe) : Value()},
                               {"serial", SerialOf(about.head, channel)}});
  }
  List sessions;
  for (const auto& session : about.sessions) {
    sessions.push_back(Members{{"started", recorder::TimeText(session.started)},
                               {"program", session.head.program},
                               {"host", session.head.host},
                               {"port", session.head.port}});
  }
  return {{"uuid", about.uuid},
          {"started", recorder::TimeText(about.started)},
          {"ended", about.ended ? Value(recorder::TimeText(*about.ended)) : Value()},
          {"identification", about.head.identification},
          {"channels", std::move(channels)},
          {"sessions", std::move(sessions)}};
}

std::vector<std::pair<std::string, std::string>> RecordingFacts(
    const recorder::AboutRecording& about, bool islocal) {
  std::vector<std::pair<std::string, std::string>> facts = {
      {"Recording", about.uuid},
      {"Started", recorder::TimeText(about.started, islocal)},
      {"Ended", about.ended ? recorder::TimeText(*about.ended, islocal) : "not ended"},
      {"Readout", PrintableText(about.head.identification)}};
  for (const auto& channel : about.head.channels) {
    std::string text = channel.name;
    if (channel.probe) {
      text += ", probe " + std::to_string(*channel.probe) + " " +
              PrintableText(TextOf(SerialOf(about.head, channel)));
    }
    facts.emplace_back("Channel " + std::to_string(channel.channel), text);
  }
  if (!about.sessions.empty()) {
    const auto& last = about.sessions.back().head;
    facts.emplace_back("Recorded by", last.program + " on " + last.host + ", port " + last.port);
    if (about.sessions.size() > 1) {
      facts.emplace_back("Sessions", std::to_string(about.sessions.size()));
    }
  }
  return facts;
}

Members EventMembers(const recorder::Event& event) {
  return {{"time", recorder::TimeText(event.time.utc)},
          {"event", event.kind},
          {"channel", event.channel ? Value(*event.channel) : Value()},
          {"number", event.number ? Value(*event.number) : Value()},
          {"text", event.text}};
}

}  // namespace vane::thermoscribe
