// thermoscribe publish: sends a recording to a broker that is no longer recorded, or whose recorder
// doesn't publish.

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/thermoscribe/broker_options.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/recording_options.h"
#include "vane/support/timing.h"

namespace vane::thermoscribe {
namespace {

constexpr std::int32_t kPause = 250;  // ms
constexpr double kDay = 86400;        // s

struct PublishOptions {
  std::string file;
  std::optional<recorder::Broker> broker;
  std::string brokerfile;
  std::optional<double> wait;  // s
};

EExitCode RunPublish(CHost& host, const PublishOptions& options) {
  RecordingOptions recording;
  recording.file = options.file;
  bool isended = false;
  const EExitCode code = WithRecording(host, recording, [&](recorder::CRecordingReader& reader) {
    isended = reader.About().ended.has_value();
    return EExitCode::DONE;
  });
  if (code != EExitCode::DONE) return code;
  const auto publisher = MakePublisher(options.file, *options.broker, options.brokerfile);
  publisher->Start();
  std::string told;
  const auto tell = [&] {
    const std::string trouble = publisher->Trouble();
    if (told.empty() && !trouble.empty()) host.Note(trouble);
    told = trouble;
  };
  const auto patience = std::chrono::round<std::chrono::milliseconds>(
      std::chrono::duration<double>(options.wait.value_or(kDay)));
  publisher->BeginToStop(patience, isended);
  while (!publisher->IsOver()) {
    PauseMs(kPause, [&host] { return host.IsInterrupted(); });
    tell();
    if (host.IsInterrupted()) publisher->BeginToStop(std::chrono::milliseconds(0), isended);
  }
  const bool isdone = publisher->Stop(std::chrono::milliseconds(0), isended);
  const recorder::Extent extent = publisher->Acknowledged();
  host.Output().Record("published",
                       {{"file", options.file},
                        {"readings", extent.reading},
                        {"events", extent.event},
                        {"complete", isdone}},
                       std::to_string(extent.reading) + " readings and " +
                           std::to_string(extent.event) + " events are published.");
  if (isdone) return EExitCode::DONE;
  if (!host.IsInterrupted()) host.Say("Not everything is published. " + publisher->Trouble());
  return host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED;
}

}  // namespace

Command PublishCommand() {
  const auto options = std::make_shared<PublishOptions>();
  Option file = PathOption("file", "FILE", options->file, "the recording");
  file.isrequired = true;
  Option broker = BrokerOption("broker", options->broker);
  broker.isrequired = true;
  return {
      .name = "publish",
      .brief = "Send a recording to a broker",
      .footer =
          R"(Sends what FILE has and the broker has not acknowledged yet, answers collectors that miss
something of it, and ends when all of it is there. "record --publish" does the same while it
records. The topics and messages stand in docs/publishing.md.

Examples:
  thermoscribe publish bath.t312 mqtt://broker.lab/thermometers
  thermoscribe publish bath.t312 mqtts://broker.lab/thermometers --broker-file broker.toml)",
      .options = {std::move(file), std::move(broker), BrokerFileOption(options->brokerfile),
                  RealOption("--wait", "S", options->wait, 0, kDay,
                             "give up after S seconds (a day)")},
      .body = [options](CHost& host) { return RunPublish(host, *options); }};
}

}  // namespace vane::thermoscribe
