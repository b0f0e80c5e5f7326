// thermoscribe clock set: the readout's date and time.

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/thermoscribe/account.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

using namespace std::chrono;

// "2026-11-24T15:07:09", with a blank in place of "T" and without the seconds too.
std::optional<local_seconds> MomentIn(const std::string& text) {
  int y = 0;
  unsigned m = 0;
  unsigned d = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  char separator = 0;
  int length = 0;
  std::sscanf(text.c_str(), "%4d-%2u-%2u%c%2d:%2d%n", &y, &m, &d, &separator, &hour, &minute,
              &length);
  if (length == 0 || (separator != 'T' && separator != ' ')) return std::nullopt;
  std::string rest = text.substr(static_cast<std::size_t>(length));
  if (!rest.empty()) {
    length = 0;
    std::sscanf(rest.c_str(), ":%2d%n", &second, &length);
    if (static_cast<std::size_t>(length) != rest.size()) return std::nullopt;
  }
  const year_month_day date = year(y) / month(m) / day(d);
  const bool valid = date.ok() && y >= 100 && hour >= 0 && hour < 24 && minute >= 0 &&
                     minute < 60 && second >= 0 && second < 60;
  if (!valid) return std::nullopt;
  return local_days(date) + hours(hour) + minutes(minute) + seconds(second);
}

EExitCode RunClockSet(CHost& host, std::optional<local_seconds> moment, bool dryrun) {
  if (const EExitCode code = ReadBeforeWriting(host); code != EExitCode::DONE) return code;
  static constexpr EGate kGates[] = {EGate::UNITS_TIME};
  if (const EExitCode code = host.OpenGates(kGates); code != EExitCode::DONE) {
    return NothingWritten(host, code);
  }
  if (dryrun) host.StartDryRun();
  // The text below is that of the moment which is sent.
  const local_seconds sent = moment.value_or(host.LocalTime());
  host.Instrument().SetSystemClock(DateOf(sent));
  const std::vector<Stage> stages = {
      {"date and time", [&] { return host.Instrument().UpdateSystemClock(nullptr); }}};
  if (const EExitCode code = RunStages(host, stages, {}); code != EExitCode::DONE) return code;
  if (dryrun) return EExitCode::DONE;
  const std::string text = MomentText(sent);
  host.Output().Record("clock", {{"time", text}}, "The clock was set to " + text + ".");
  return EExitCode::DONE;
}

}  // namespace

Command ClockCommand() {
  struct Options {
    std::optional<local_seconds> moment;
    bool dryrun = false;
  };
  const auto options = std::make_shared<Options>();
  Option time{"--time",
              "ISO",
              "date and time of day, such as 2026-11-24T15:07:09;\n"
              "without it, the present moment",
              {}};
  time.take = [options](const std::string& text) {
    options->moment = MomentIn(text);
    if (!options->moment) {
      throw CUsageError("--time can't be \"" + text +
                        "\". It is a date and time such as 2026-11-24T15:07:09.");
    }
  };
  Command set{
      .name = "set",
      .brief = "Set the date and the time",
      .footer =
          R"(The time is that of the user's time zone. It goes out on a clock of 12 or 24 hours, as the
user's locale has it. The readout doesn't tell its time, so it can't be read back.

Examples:
  thermoscribe clock set
  thermoscribe clock set --time 2026-11-24T15:07:09)",
      .options = {std::move(time), DryRun(options->dryrun)},
      .body = [options](CHost& host) {
        return RunClockSet(host, options->moment, options->dryrun);
      }};
  return {.name = "clock", .brief = "Set the readout's date and time", .members = {std::move(set)}};
}

}  // namespace vane::thermoscribe
