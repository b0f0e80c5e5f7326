// thermoscribe measure: readings, one line each.

#include <time.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"
#include "vane/channels/channel.h"
#include "vane/support/library_error.h"
#include "vane/support/timing.h"

namespace vane {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr std::int16_t kMaxChannel = 12;
constexpr std::int64_t kMaxCount = 1'000'000'000;
constexpr double kDay = 86400;            // s
constexpr std::size_t kNameColumns = 10;  // "Scanner 10"
constexpr std::size_t kChannelColumns = 2;

struct MeasureOptions {
  std::int16_t channel = 0;  // 0: the first one in use
  bool waitfornew = false;
  std::int64_t count = 1;       // 0: no end
  std::optional<double> every;  // s
  std::optional<double> limit;  // s
  bool start = false;
  bool stop = false;
};

Milliseconds FromSeconds(double seconds) {
  return std::chrono::round<Milliseconds>(std::chrono::duration<double>(seconds));
}

// "2026-03-01T10:30:00.125+01:00": the user's time, with its distance from UTC.
std::string LocalTimeStamp() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm fields{};
  localtime_r(&now.tv_sec, &fields);
  char text[80];
  const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &fields);
  std::string stamp(text, size);
  stamp.insert(size - 2, ":");  // between hours and minutes of the distance
  const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1'000'000);
  stamp.insert(size - 5, "." + milliseconds.substr(1));
  return stamp;
}

std::int16_t FirstEnabledChannel(const CVaneT312B& instrument) {
  for (std::int16_t chn = 1; chn <= instrument.NumChannels(); ++chn) {
    const CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(chn);
    if (channel != nullptr && channel->Enabled()) return chn;
  }
  return 1;
}

// Prints one reading. False when the user ended the wait for it.
bool TakeReading(CHost& host, std::int16_t channel, bool waitfornew) {
  double reading = 0;
  try {
    reading = host.Instrument().QueryMeasurement(channel, waitfornew);
  } catch (const LibraryError&) {
    // With the line in order, it was the wait that ended.
    if (host.IsInterrupted() && host.LastFailure().number == 0) return false;
    throw;
  }
  const Json members = {{"time", LocalTimeStamp()},
                        {"channel", channel},
                        {"name", host.Instrument().GetScanSeqChannelName(channel)},
                        {"reading", reading}};
  const std::string number = TextOf(members["channel"]);
  host.Output().Record(
      "reading", members,
      TextOf(members["time"]) + "  " + std::string(kChannelColumns - number.size(), ' ') + number +
          "  " + Padded(TextOf(members["name"]), kNameColumns) + "  " + TextOf(members["reading"]));
  return true;
}

// Waits until `moment`; false when the user ended the wait.
bool WaitUntil(std::chrono::steady_clock::time_point moment, const CHost& host) {
  const auto rest = std::chrono::ceil<Milliseconds>(moment - std::chrono::steady_clock::now());
  if (rest > Milliseconds::zero()) {
    PauseMs(static_cast<std::int32_t>(rest.count()), [&] { return host.IsInterrupted(); });
  }
  return !host.IsInterrupted();
}

EExitCode TakeReadings(CHost& host, const MeasureOptions& options) {
  CVaneT312B& instrument = host.Instrument();
  instrument.SetNewDataLimit(
      static_cast<std::int32_t>(FromSeconds(options.limit.value_or(120)).count()));
  const std::int16_t channel =
      options.channel == 0 ? FirstEnabledChannel(instrument) : options.channel;
  const Milliseconds every = FromSeconds(options.every.value_or(0));

  std::int64_t taken = 0;
  auto next = std::chrono::steady_clock::now();
  while (options.count == 0 || taken < options.count) {
    if (!WaitUntil(next, host)) break;
    next = std::chrono::steady_clock::now() + every;
    if (!TakeReading(host, channel, options.waitfornew)) break;
    ++taken;
  }
  if (taken >= options.count) return EExitCode::DONE;
  host.Say("Aborted after " + std::to_string(taken) + " of " + std::to_string(options.count) +
           " readings.");
  return EExitCode::ABORTED;
}

EExitCode RunMeasure(CHost& host, const MeasureOptions& options) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  if (!options.start && !options.stop) return TakeReadings(host, options);
  CVaneT312B& instrument = host.Instrument();
  if (!(options.start ? instrument.StartMeasure() : instrument.StopMeasure())) {
    return host.CodeOfStoppedRun();
  }
  host.Output().Record("measuring", {{"on", options.start}},
                       options.start ? "Measuring is on." : "Measuring is off.");
  return EExitCode::DONE;
}

}  // namespace

Command MeasureCommand() {
  const auto options = std::make_shared<MeasureOptions>();
  Option every = RealOption("--every", "S", options->every, 0, kDay,
                            "seconds from the start of one reading to the\n"
                            "start of the next; without it, one follows the\n"
                            "other at once");
  every.needs = {"--count"};
  Option start = Flag("--start", options->start, "switch measuring on, take no reading");
  start.excludes = {"--stop", "--channel", "--new", "--limit", "--count", "--every"};
  Option stop = Flag("--stop", options->stop, "switch measuring off, take no reading");
  stop.excludes = {"--channel", "--new", "--limit", "--count", "--every"};
  return {
      .name = "measure",
      .brief = "Take readings, or switch measuring on and off",
      .footer =
          R"(Prints one line per reading: the local time with its distance from UTC, the channel's
number and name, and the reading in the readout's units, with all its digits. Each line
is complete and on its way as soon as the reading is there.

Ctrl-C ends it at once. With --count 0 that is the normal end (0); before a given count
is reached it is an abort (7).

Examples:
  thermoscribe measure --channel 2
  thermoscribe measure --new --count 10
  thermoscribe measure --count 0 --every 60 --json >> bath.jsonl
  thermoscribe measure --start)",
      .options = {WholeOption("--channel", "N", options->channel, 1, kMaxChannel,
                              "instrument channel number, see \"thermoscribe\n"
                              "channels\"; without it, the first one in use"),
                  Flag("--new", options->waitfornew, "wait for a new reading each time"),
                  RealOption("--limit", "S", options->limit, 0, kDay,
                             "longest wait for one new reading, in seconds (120)"),
                  WholeOption("--count", "N", options->count, 0, kMaxCount,
                              "take N readings (1); 0: go on until Ctrl-C"),
                  std::move(every), std::move(start), std::move(stop)},
      .body = [options](CHost& host) { return RunMeasure(host, *options); }};
}

}  // namespace vane
