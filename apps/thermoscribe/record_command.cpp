// thermoscribe record and watch: every new reading, for weeks.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "apps/recording/line_source.h"
#include "apps/recording/recording_head.h"
#include "apps/snapshots/snapshot.h"
#include "apps/thermoscribe/alarm_command.h"
#include "apps/thermoscribe/broker_options.h"
#include "apps/thermoscribe/channel_list.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/recording_view.h"
#include "apps/thermoscribe/service_notice.h"
#include "recorder/engine.h"
#include "recorder/store.h"
#include "vane/support/texts.h"
#include "vane/support/timing.h"

namespace vane::thermoscribe {
namespace {

namespace kinds = recorder::kinds;

constexpr std::int64_t kMaxCount = 1'000'000'000;
constexpr double kDay = 86400;            // s
constexpr double kLongest = 3660 * kDay;  // ten years
constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kLongestWait = 500;    // ms; clocks and the terminal are looked at so often
constexpr std::int64_t kManagerPause = 1000;  // ms
constexpr std::chrono::seconds kPublishPatience{10};
constexpr std::int64_t kLastPatience = 10'000;  // ms; for a full disk, at the end

struct RecordOptions {
  std::string file;
  std::vector<std::int16_t> channels;  // empty: those in use, or those of the recording
  std::optional<double> every;         // s
  bool eachnew = false;
  std::optional<double> time;  // s
  std::optional<std::int64_t> until;
  std::int64_t count = 0;  // 0: no end
  std::map<std::int16_t, recorder::Limits> limits;
  std::string alarm;
  std::optional<recorder::Broker> broker;
  std::string brokerfile;
};

std::optional<double> NumberOr(const std::string& option, const std::string& text) {
  if (text.empty()) return std::nullopt;
  return NumberIn(option, text, -1e12, 1e12);
}

// "3:19.5..20.5", "3:..100"
void AddLimit(std::map<std::int16_t, recorder::Limits>& limits, const std::string& text) {
  const std::size_t colon = text.find(':');
  const std::size_t dots = colon == text.npos ? colon : text.find("..", colon);
  if (dots == text.npos) {
    throw CUsageError("--limit: \"" + text + "\" is no CHANNELS:LOW..HIGH.");
  }
  const recorder::Limits range{NumberOr("--limit", text.substr(colon + 1, dots - colon - 1)),
                               NumberOr("--limit", text.substr(dots + 2))};
  if ((!range.low && !range.high) || (range.low && range.high && *range.low > *range.high)) {
    throw CUsageError("--limit: \"" + text + "\" leaves no range.");
  }
  for (const std::int16_t channel : ChannelList("--limit", text.substr(0, colon))) {
    if (!limits.emplace(channel, range).second) {
      throw CUsageError("--limit: channel " + std::to_string(channel) + " is named twice.");
    }
  }
}

// "90", "30s", "10m", "2h", "3d"
double SecondsIn(const std::string& option, std::string text) {
  double unit = 1;
  static const std::map<char, double> kUnits = {{'s', 1}, {'m', 60}, {'h', 3600}, {'d', kDay}};
  if (!text.empty()) {
    if (const auto found = kUnits.find(text.back()); found != kUnits.end()) {
      unit = found->second;
      text.pop_back();
    }
  }
  return NumberIn(option, text, 0, kLongest / unit) * unit;
}

std::string CountText(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// A run of the recorder, from the line to its end.
class CRun final : public recorder::CRecordingAudience {
 public:
  CRun(CHost& host, const RecordOptions& options)
      : host_(host), options_(options), alarm_(options.alarm, options.file) {}

  EExitCode Run();

  void OnReadings(const std::vector<recorder::Reading>& readings) override {
    if (publisher_) publisher_->Wake();
    readings_ += static_cast<std::int64_t>(readings.size());
    view_->Show(readings);
    shownat_ = 0;
  }
  void OnEvent(const recorder::Event& event) override {
    view_->Show(event);
    if (const std::string trouble = alarm_.Run(event); !trouble.empty()) host_.Say(trouble);
  }

 private:
  bool HasFile() const { return !options_.file.empty(); }
  bool WithRoom(const std::function<void()>& write);
  EExitCode LearnHead();
  std::string ChannelsDiffer() const;
  std::vector<std::int16_t> Channels() const;
  bool Start();
  EExitCode Loop();
  std::string EndReason(const recorder::Moment& now) const;
  EExitCode Finish(const char* kind, const std::string& why, EExitCode code);
  std::string StateText() const;
  void TellManager(const std::string& more);
  void TellOfPublishing();
  void Wait(std::int64_t ms);

  CHost& host_;
  const RecordOptions& options_;
  const recorder::CMachineClock clock_;
  CAlarmCommand alarm_;
  bool ismade_ = false;  // the file was not there before
  std::optional<recorder::CStore> store_;
  recorder::RecordingHead head_;
  std::optional<CLineSource> source_;
  std::optional<CRecordingView> view_;
  std::optional<recorder::CEngine> engine_;
  std::unique_ptr<recorder::CPublisher> publisher_;
  std::string publishtrouble_;  // that was told last
  recorder::Moment started_;
  std::int64_t readings_ = 0;
  std::int64_t shownat_ = 0;
  std::int64_t toldat_ = 0;
  std::string told_;
};

EExitCode CRun::Run() {
  // What can never be shows before anything is done.
  if (options_.broker)
    publisher_ = MakePublisher(options_.file, *options_.broker, options_.brokerfile);
  // A recording outlives the terminal that it was started on.
  std::signal(SIGHUP, SIG_IGN);
  if (HasFile()) {
    host_.OutliveReader();
    ismade_ = !std::filesystem::exists(options_.file);
    if (!WithRoom([&] { store_.emplace(options_.file); })) return EExitCode::ABORTED;
  }
  const bool isnew = !store_ || store_->IsNew();
  if (!isnew) {
    if (const std::string problem = ChannelsDiffer(); !problem.empty()) {
      host_.Say(problem);
      return EExitCode::USAGE;
    }
  }
  EExitCode code = EExitCode::DONE;
  if (isnew) {
    code = LearnHead();
  } else {
    head_ = store_->Head();
    host_.ChooseLine();
  }
  if (code == EExitCode::DONE) code = Start() ? Loop() : EExitCode::ABORTED;
  if (ismade_ && store_ && store_->IsNew()) {
    store_.reset();
    for (const char* end : {"", "-wal", "-shm"}) {
      std::error_code none;
      std::filesystem::remove(options_.file + end, none);
    }
  }
  return code;
}

// False when the user didn't want to wait any longer.
bool CRun::WithRoom(const std::function<void()>& write) {
  for (bool istold = false;; istold = true) {
    try {
      write();
      return true;
    } catch (const recorder::CDiskFull& full) {
      if (!istold) host_.Say(std::string(full.what()) + " Waiting until there is.");
    }
    Wait(kManagerPause);
    if (host_.IsInterrupted()) return false;
  }
}

std::string CRun::ChannelsDiffer() const {
  if (options_.channels.empty()) return {};
  std::vector<std::int16_t> asked = options_.channels;
  std::ranges::sort(asked);
  std::vector<std::int16_t> found;
  std::string list;
  for (const auto& channel : store_->Head().channels) {
    found.push_back(channel.channel);
    Append(list, ",", std::to_string(channel.channel));
  }
  if (asked == found) return {};
  return options_.file + " is a recording of the channels " + list +
         ". Leave --channels out to go on with it, or choose another file.";
}

EExitCode CRun::LearnHead() {
  Snapshot snapshot;
  EExitCode code = EExitCode::DONE;
  std::vector<std::int16_t> channels = options_.channels;
  const auto readsettings = [&] {
    code = host_.ReadSettings();
    return code == EExitCode::DONE;
  };
  const EEnd end = TakeSnapshot(host_.Instrument(), host_, readsettings, snapshot);
  if (code != EExitCode::DONE) return code;
  if (end != EEnd::DONE) return host_.CodeOf(end);
  if (channels.empty()) channels = ChannelsInUse(host_.Instrument());
  for (const std::int16_t channel : channels) {
    if (channel <= host_.Instrument().NumChannels()) continue;
    host_.Say("There is no channel " + std::to_string(channel) + ". " + host_.ChannelsText());
    return EExitCode::USAGE;
  }
  std::ranges::sort(channels);
  CLineSource source(host_.Instrument(), host_.LastFailure(), channels);
  try {
    source.Identify(head_);
  } catch (const std::runtime_error& error) {
    host_.Say(error.what());
    return host_.CodeOf(EEnd::BADLY);
  }
  AddSettings(head_, snapshot, channels);
  return EExitCode::DONE;
}

std::vector<std::int16_t> CRun::Channels() const {
  std::vector<std::int16_t> channels;
  for (const auto& channel : head_.channels) channels.push_back(channel.channel);
  return channels;
}

bool CRun::Start() {
  started_ = clock_.Now();
  recorder::Event first{.time = started_, .kind = kinds::kStarted, .text = "The recording begins."};
  std::string title = "The readings of " + head_.identification;
  if (store_) {
    const recorder::SessionHead session =
        SessionOf("thermoscribe " THERMOSCRIBE_VERSION, host_.LineText(), clock_);
    if (store_->IsNew()) {
      if (!WithRoom([&] { store_->Begin(head_, session, started_); })) return false;
    } else {
      first.kind = kinds::kContinued;
      first.number = recorder::SecondsAway(store_->Latest(), clock_);
      first.text = recorder::ContinuedText(*first.number);
      if (!WithRoom([&] { store_->Continue(session, started_); })) return false;
    }
    title = options_.file + ", " + head_.identification;
  }
  source_.emplace(host_.Instrument(), host_.LastFailure(), Channels());
  view_.emplace(host_, clock_, head_.channels, title, HasFile());
  recorder::RecordingPlan plan{.channels = Channels(), .limits = options_.limits};
  if (options_.every) {
    plan.every = static_cast<std::int64_t>(std::round(*options_.every * kMsPerSecond));
  }
  engine_.emplace(*source_, store_ ? &*store_ : nullptr, head_, clock_, std::move(plan), *this);
  if (store_) engine_->Tell(first);
  if (publisher_) publisher_->Start();
  TellManager("READY=1\n");
  return true;
}

// Empty: go on.
std::string CRun::EndReason(const recorder::Moment& now) const {
  if (options_.count > 0 && engine_->Rounds() >= options_.count) {
    return "The recording ends after " + CountText(options_.count, "round") + ".";
  }
  const double passed = static_cast<double>(now.monotonic - started_.monotonic) / kMsPerSecond;
  if ((options_.time && passed >= *options_.time) ||
      (options_.until && now.utc >= *options_.until)) {
    return "The recording ends at its time.";
  }
  return {};
}

EExitCode CRun::Loop() {
  for (;;) {
    std::int64_t wait = 0;
    try {
      wait = engine_->Step();
    } catch (const recorder::COtherReadout& other) {
      host_.Say(other.what());
      return Finish(kinds::kOther, other.what(), EExitCode::FAILED);
    }
    const recorder::Moment now = clock_.Now();
    if (host_.IsInterrupted()) {
      const bool isabort = options_.count > 0 || options_.time || options_.until;
      return Finish(kinds::kStopped, "The recorder was stopped.",
                    isabort ? EExitCode::ABORTED : EExitCode::DONE);
    }
    if (const std::string why = EndReason(now); !why.empty()) {
      return Finish(kinds::kEnded, why, EExitCode::DONE);
    }
    if (!HasFile() && view_->IsGone()) return Finish(kinds::kEnded, {}, EExitCode::DONE);
    if (now.monotonic - shownat_ >= kLongestWait) {
      shownat_ = now.monotonic;
      view_->Refresh(StateText());
      TellOfPublishing();
    }
    if (now.monotonic - toldat_ >= kManagerPause) TellManager("");
    std::int64_t longest = kLongestWait;
    if (options_.time) {
      longest = std::min(longest, static_cast<std::int64_t>(*options_.time * kMsPerSecond) -
                                      (now.monotonic - started_.monotonic));
    }
    Wait(std::clamp<std::int64_t>(wait, 0, std::max<std::int64_t>(longest, 1)));
  }
}

// Once each, and no event: the file has it all.
void CRun::TellOfPublishing() {
  if (!publisher_) return;
  const std::string trouble = publisher_->Trouble();
  if (trouble == publishtrouble_) return;
  if (trouble.empty()) host_.Note("Publishing goes on.");
  if (publishtrouble_.empty()) host_.Note(trouble);
  publishtrouble_ = trouble;
}

void CRun::Wait(std::int64_t ms) {
  if (ms <= 0) return;
  PauseMs(static_cast<std::int32_t>(ms), [this] { return host_.IsInterrupted(); });
}

std::string CRun::StateText() const {
  if (engine_->IsDiskFull()) return "The disk is full: waiting for room.";
  if (engine_->IsLost()) return "The readout is lost: looking for it.";
  return CountText(readings_, "reading") + (HasFile() ? " recorded" : "") + ", Ctrl-C ends it.";
}

void CRun::TellManager(const std::string& more) {
  toldat_ = clock_.Now().monotonic;
  const std::string status = "STATUS=" + StateText() + "\n";
  TellServiceManager(more + "WATCHDOG=1\n" + (status != told_ ? status : ""));
  told_ = status;
}

EExitCode CRun::Finish(const char* kind, const std::string& why, EExitCode code) {
  TellServiceManager("STOPPING=1\n");
  if (store_) {
    const std::int64_t start = clock_.Now().monotonic;
    while (!engine_->Finish({.time = clock_.Now(), .kind = kind, .text = why})) {
      if (clock_.Now().monotonic - start > kLastPatience) {
        host_.Say(
            "There is no room on the disk: the latest readings, which nobody has seen, are lost.");
        code = EExitCode::FAILED;
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(kLongestWait));
    }
  }
  if (publisher_ && !publisher_->Stop(kPublishPatience, std::string(kind) == kinds::kEnded)) {
    host_.Note("Not everything is published yet: \"thermoscribe publish\" sends the rest.");
  }
  view_->Refresh(StateText());
  // What has failed on the way is in the recording.
  if (code == EExitCode::DONE || code == EExitCode::ABORTED) host_.ForgetTroubles();
  if (code == EExitCode::ABORTED) {
    host_.Say("Aborted after " + CountText(engine_->Rounds(), "round") + ".");
  }
  return code;
}

Option ChannelsOption(RecordOptions& options) {
  Option channels{"--channels",
                  "LIST",
                  "channels of the instrument, such as 1,3-12; without\n"
                  "it, all that are in use",
                  {}};
  channels.take = [&options](const std::string& text) {
    options.channels = ChannelList("--channels", text);
  };
  return channels;
}

std::vector<Option> CommonOptions(RecordOptions& options) {
  Option every = RealOption("--every", "S", options.every, 0.001, kDay,
                            "a round over the channels every S seconds, in place\n"
                            "of each new reading");
  every.excludes = {"--new"};
  Option time{"--for", "D", "end after so long: 90, 30s, 10m, 2h, 3d", {}};
  time.take = [&options](const std::string& text) { options.time = SecondsIn("--for", text); };
  Option until{"--until",
               "T",
               "end at that time: 2026-03-01T09:30, with a Z for UTC\n"
               "or without for the user's own time",
               {}};
  until.take = [&options](const std::string& text) {
    options.until = recorder::TimeOfText(text);
    if (!options.until) throw CUsageError("--until: \"" + text + "\" is no time.");
  };
  Option limit{"--limit",
               "CH:LOW..HIGH",
               "tell when a reading of the channels CH leaves that\n"
               "range or comes back; LOW or HIGH may be left out;\n"
               "may be given again",
               {}};
  limit.take = [&options](const std::string& text) { AddLimit(options.limits, text); };
  std::vector<Option> all = {ChannelsOption(options),
                             std::move(every),
                             Flag("--new", options.eachnew, "each new reading once (the default)"),
                             std::move(time),
                             std::move(until),
                             WholeOption("--count", "N", options.count, 1, kMaxCount,
                                         "end after N rounds over the channels"),
                             std::move(limit),
                             TextOption("--alarm", "COMMAND", options.alarm,
                                        "run COMMAND when a limit is left or kept again, the\n"
                                        "readout is lost, back or silent, or the disk is full")};
  return all;
}

}  // namespace

Command RecordCommand() {
  const auto options = std::make_shared<RecordOptions>();
  Option file =
      PathOption("file", "FILE", options->file, "the recording; one that is there goes on");
  file.isrequired = true;
  std::vector<Option> all = {std::move(file)};
  for (Option& option : CommonOptions(*options)) all.push_back(std::move(option));
  Option publish = BrokerOption("--publish", options->broker);
  publish.brief = "send what is recorded to a broker: mqtt://HOST/PREFIX";
  all.push_back(std::move(publish));
  Option brokerfile = BrokerFileOption(options->brokerfile);
  brokerfile.needs = {"--publish"};
  all.push_back(std::move(brokerfile));
  return {
      .name = "record",
      .brief = "Record readings for weeks, into one file",
      .footer =
          R"(Takes each new reading of the channels once and files it, with the settings that it was
measured with. Shows a table that is kept up to date on a terminal, else a line for each
reading, when it is on the disk: what was shown is in the file, whatever happens then. With
--quiet nothing is shown.

A line that is lost is looked for until it is there again; then the readout has to be the
same one. A disk that is full is waited for. FILE is an SQLite database that any tool reads,
also meanwhile; "export" and "report" do, too.

--publish sends what the file has to an MQTT broker, and remembers in the file what was
acknowledged: a broker that is away costs nothing but the catching up. "collect" takes it
into a database.

The COMMAND of --alarm is a shell's; it finds what has happened in $THERMOSCRIBE_EVENT,
_TEXT, _TIME, _CHANNEL, _NUMBER and _FILE, and isn't waited for.

SIGINT and SIGTERM end it in order (0; 7 before a given end), a terminal that goes away
doesn't. Started again with the same FILE it goes on. thermoscribe-record@.service runs it
as a service.

Examples:
  thermoscribe record bath.t312 --port /dev/ttyUSB0
  thermoscribe record bath.t312 --channels 1,3-12 --for 8h
  thermoscribe record bath.t312 --limit 3:19.5..20.5 --alarm 'logger "$THERMOSCRIBE_TEXT"'
  thermoscribe record bath.t312 --every 60 --quiet)",
      .options = std::move(all),
      .body = [options](CHost& host) { return CRun(host, *options).Run(); }};
}

Command WatchCommand() {
  const auto options = std::make_shared<RecordOptions>();
  return {.name = "watch",
          .brief = "Show each new reading, without a file",
          .footer = R"(Shows what "record" shows, in the same way, and keeps nothing.

Examples:
  thermoscribe watch --port /dev/ttyUSB0
  thermoscribe watch --channels 1-4 --limit 1:..30 --json)",
          .options = CommonOptions(*options),
          .body = [options](CHost& host) { return CRun(host, *options).Run(); }};
}

}  // namespace vane::thermoscribe
