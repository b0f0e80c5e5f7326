// thermoscribe measure: readings, one line each.

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/snapshots/value_rule.h"
#include "apps/thermoscribe/channel_list.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/components/library_error.h"
#include "vane/support/display_texts.h"
#include "vane/support/timing.h"

namespace vane::thermoscribe {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr std::int64_t kMaxCount = 1'000'000'000;
constexpr double kDay = 86400;            // s
constexpr std::size_t kNameColumns = 10;  // "Scanner 10"
constexpr std::size_t kChannelColumns = 2;
constexpr std::size_t kUnitColumns = 5;  // "Ratio"
constexpr const char* kAllChannels = "all";

struct MeasureOptions {
  std::vector<std::int16_t> channels;  // empty: the first one in use
  bool allchannels = false;            // every one that is in use
  bool waitfornew = false;
  std::int64_t count = 1;       // of rounds over the channels; 0: no end
  std::optional<double> every;  // s
  std::optional<double> limit;  // s
  bool csv = false;
  std::string output;  // empty: standard output
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

// The readings of one channel after another, each in the units that were in force when it was
// taken.
class CReadings {
 public:
  CReadings(CHost& host, bool waitfornew) : host_(host), waitfornew_(waitfornew) { AskUnits(); }

  /// Prints one reading. False when the user ended the wait for it.
  bool Take(std::int16_t channel) {
    double reading = 0;
    std::string time;
    // Somebody at the front panel may change the units at any moment. A reading counts when they
    // were the same before and behind it; else its number might be of other units than its name.
    do {
      if (host_.IsInterrupted()) return false;
      try {
        reading = host_.Instrument().QueryMeasurement(channel, waitfornew_);
      } catch (const LibraryError&) {
        const MeasurementTrouble* const trouble = host_.Instrument().LastMeasurementTrouble();
        if (trouble != nullptr && trouble->kind == EMeasurementTrouble::CANCELLED) return false;
        throw;
      }
      time = LocalTimeStamp();
    } while (AskUnits());
    Print(channel, time, reading);
    return true;
  }

 private:
  // Whether the units are others than before.
  bool AskUnits() {
    const ET312BUnits before = units_;
    isunit_ = host_.Instrument().QueryUnits();
    units_ = host_.Instrument().Units();
    return units_ != before;
  }

  void Print(std::int16_t channel, const std::string& time, double reading) {
    const Value name = host_.Instrument().GetScanSeqChannelName(channel);
    const Value unit = isunit_ ? Value(UnitsText(static_cast<std::int16_t>(units_))) : Value();
    const std::string number = TextOf(channel);
    host_.Output().Record("reading",
                          {{"time", time},
                           {"channel", channel},
                           {"name", name},
                           {"reading", reading},
                           {"unit", unit}},
                          time + "  " + std::string(kChannelColumns - number.size(), ' ') + number +
                              "  " + Padded(TextOf(name), kNameColumns) + "  " +
                              Padded(TextOf(unit), kUnitColumns) + "  " + TextOf(reading));
  }

  CHost& host_;
  const bool waitfornew_;
  ET312BUnits units_ = ET312BUnits::UNITS_NONE;
  bool isunit_ = false;
};

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
  std::vector<std::int16_t> channels = options.channels;
  if (channels.empty()) {
    channels = ChannelsInUse(instrument);
    if (!options.allchannels) channels.resize(std::min<std::size_t>(channels.size(), 1));
  }
  const auto missing = std::ranges::find_if(
      channels, [&](std::int16_t channel) { return channel > instrument.NumChannels(); });
  if (missing != channels.end()) {
    host.Say("There is no channel " + std::to_string(*missing) + ". " + host.ChannelsText());
    return EExitCode::USAGE;
  }
  if (options.limit) {
    instrument.SetNewDataLimit(FromSeconds(*options.limit).count());
  } else if (options.waitfornew) {
    instrument.QueryWaitSettings();
  }
  const Milliseconds every = FromSeconds(options.every.value_or(0));

  CReadings readings(host, options.waitfornew);
  std::int64_t rounds = 0;
  auto next = std::chrono::steady_clock::now();
  while (options.count == 0 || rounds < options.count) {
    if (!WaitUntil(next, host)) break;
    next = std::chrono::steady_clock::now() + every;
    const bool iswhole = std::ranges::all_of(
        channels, [&readings](std::int16_t channel) { return readings.Take(channel); });
    if (!iswhole) break;
    ++rounds;
  }
  if (rounds >= options.count) return EExitCode::DONE;
  host.Say("Aborted after " + std::to_string(rounds) + " of " + std::to_string(options.count) +
           (channels.size() == 1 ? " readings." : " rounds."));
  return EExitCode::ABORTED;
}

EExitCode RunMeasure(CHost& host, const MeasureOptions& options) {
  // What is wrong with the file shows before anything is sent.
  if (!options.output.empty()) host.Output().AppendTo(options.output);
  if (options.csv && !host.Output().StartCsv({"time", "channel", "name", "reading", "unit"})) {
    host.Say(options.output +
             " begins with another line than that of the columns. Choose another "
             "file.");
    return EExitCode::USAGE;
  }
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

Option Channels(MeasureOptions& options) {
  Option channels{"--channel",
                  "LIST",
                  "channels of the instrument, such as 2,3,5-8, see\n"
                  "\"thermoscribe channels\"; \"all\": all in use;\n"
                  "without it, the first one in use",
                  {}};
  channels.take = [&options](const std::string& text) {
    options.allchannels = Folded(text) == kAllChannels;
    if (!options.allchannels) options.channels = ChannelList("--channel", text);
  };
  channels.offer = EOffer::WORDS;
  channels.words = {kAllChannels};
  return channels;
}

}  // namespace

Command MeasureCommand() {
  const auto options = std::make_shared<MeasureOptions>();
  Option every = RealOption("--every", "S", options->every, 0, kDay,
                            "seconds from the start of one round to the start\n"
                            "of the next; without it, one follows the other at\n"
                            "once");
  every.needs = {"--count"};
  Option csv = Flag("--csv", options->csv, "print comma-separated values with a line of names");
  csv.excludes = {"--json"};
  const std::vector<std::string> ofreadings = {"--channel", "--new", "--limit", "--count",
                                               "--every",   "--csv", "--output"};
  Option start = Flag("--start", options->start, "switch measuring on, take no reading");
  start.excludes = ofreadings;
  start.excludes.push_back("--stop");
  Option stop = Flag("--stop", options->stop, "switch measuring off, take no reading");
  stop.excludes = ofreadings;
  return {
      .name = "measure",
      .brief = "Take readings, or switch measuring on and off",
      .footer =
          R"(Prints one line per reading: the local time with its distance from UTC, the channel's
number and name, the unit, and the reading with all its digits. Each line is complete and
on its way as soon as the reading is there. A reading during which the units were changed
is taken again.

A round takes one reading of each channel, in the order of the list. --output appends, so
that a run that is started anew goes on in the same file; a file for --csv has to begin
with the line of names, or to be empty.

Ctrl-C ends it at once. With --count 0 that is the normal end (0); before a given count
is reached it is an abort (7).

Examples:
  thermoscribe measure --channel 2
  thermoscribe measure --new --count 10
  thermoscribe measure --channel all --count 0 --every 60 --csv --output bath.csv
  thermoscribe measure --count 0 --every 60 --json >> bath.jsonl
  thermoscribe measure --start)",
      .options = {Channels(*options),
                  Flag("--new", options->waitfornew, "wait for a new reading each time"),
                  RealOption("--limit", "S", options->limit, 0, kDay,
                             "longest wait for one new reading, in seconds (120,\n"
                             "or what a long sample interval takes)"),
                  WholeOption("--count", "N", options->count, 0, kMaxCount,
                              "take N rounds (1), each of one reading per channel;\n"
                              "0: go on until Ctrl-C"),
                  std::move(every), std::move(csv),
                  PathOption("--output", "FILE", options->output,
                             "append the lines to FILE; \"-\": standard output"),
                  std::move(start), std::move(stop)},
      .body = [options](CHost& host) { return RunMeasure(host, *options); }};
}

}  // namespace vane::thermoscribe
