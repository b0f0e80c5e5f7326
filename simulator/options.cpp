#include "simulator/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <functional>
#include <limits>
#include <stdexcept>

#include "protocol/command_table.h"
#include "simulator/readout_numbers.h"

namespace vane::simulator {
namespace {

constexpr const char* kDescription =
    "Plays a T312B thermometer readout, with an M420 scanner unless told otherwise, on a\n"
    "pseudo-terminal. The first line of output is the device to connect to.";

constexpr const char* kFooter = R"(
Faults:
  WHEN:KIND says which exchange goes wrong, and how. The first rule that strikes counts.
  WHEN    at=N      the N-th exchange, from 1
          every=N   each N-th exchange
          write=N   the N-th command that changes something, from 1
          p=CHANCE  any exchange, with this probability; --seed repeats a run
  KIND    The command is obeyed:
            drop              its answer is lost
            delay[=SECONDS]   its answer comes later (0.3), still in time
            garble            two bytes of its answer are changed
            split[=SECONDS]   its answer comes in two pieces, so far apart (0.05)
            late[=SECONDS]    its answer comes later (1.5); others go on meanwhile
          The command is not obeyed:
            refuse[=NUMBER]   it is refused, with 20 for busy if nothing else is said
            hangup[=SECONDS]  the line is lost; later (0.3) there is a new one, its
                              path is printed and the link points to it
            power[=SECONDS]   the same, and the readout is off meanwhile (1): its
                              settings stay, a new sample begins when it is on again
            identify          the answer is the identification, as of a readout that
                              was just switched on
            answer=TEXT       the answer is TEXT: nothing, ERROR, 12.3.4, 1e400, ...
            overlong          the answer is longer than any line

On the line:
  A line without a tag, such as ID? typed in a terminal program, is answered without a
  tag: "=" and a value, or "!" and a refusal.

Examples:
  thermoscribe-sim --link /tmp/readout
  thermoscribe-sim --no-scanner --firmware 5.02
  thermoscribe-sim --baud 9600 --fault p=0.02:garble --fault at=40:hangup --seed 7
  thermoscribe-sim --fault at=5:answer=12.3.4 --fault write=2:identify

Ends on SIGINT, SIGTERM, SIGHUP or SIGQUIT and takes its link away. Exit status: 0, or 1 when the line
can't be opened, or 2 for wrong options.)";

std::string FirstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!std::getline(file, line)) {
    throw std::invalid_argument("the passcode can't be read from " + path);
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

// "3=100"
std::pair<std::int64_t, double> WholeAndReal(const char* option, const std::string& text,
                                             std::int64_t least, std::int64_t most) {
  const std::size_t place = text.find('=');
  if (place != text.npos) {
    const auto number = ParseWhole(text.substr(0, place));
    const auto value = ParseReal(text.substr(place + 1));
    if (number && value && *number >= least && *number <= most) return {*number, *value};
  }
  throw std::invalid_argument(std::string(option) + ": \"" + text + "\" is no NUMBER=VALUE");
}

// CLI11 reads a text and an argument vector by different overloads; all else is the same.
Options Parse(const std::function<void(CLI::App&)>& parse) {
  Options options;
  CLI::App app(kDescription, "thermoscribe-sim");
  app.footer(kFooter);
  app.get_formatter()->column_width(28);
  app.set_version_flag("--version", "thermoscribe-sim " THERMOSCRIBE_VERSION,
                       "print the version and exit");

  bool withoutscanner = false;
  CLI::Option* const scanner =
      app.add_flag("--scanner", options.readout.scanner, "a scanner is attached (the default)");
  app.add_flag("--no-scanner", withoutscanner, "no scanner is attached")->excludes(scanner);
  app.add_option("--firmware", options.readout.firmware,
                 "firmware version; below 5.03 the commands that\n"
                 "count modules and channels are unknown, and an\n"
                 "absent scanner stays silent")
      ->check([](const std::string& text) {
        return ParseReal(text) ? std::string() : "'" + text + "' is not a version number";
      })
      ->type_name("VERSION")
      ->capture_default_str();
  app.add_option("--model", options.readout.model, "model text of the identification")
      ->type_name("TEXT")
      ->capture_default_str();
  CLI::Option* const passcode =
      app.add_option("--passcode", options.readout.passcode, "passcode of the protected settings")
          ->type_name("TEXT")
          ->capture_default_str();
  std::string passcodefile;
  app.add_option("--passcode-file", passcodefile,
                 "take the passcode from the first line of FILE,\n"
                 "so that it shows in no list of processes")
      ->type_name("FILE")
      ->excludes(passcode);
  std::vector<std::string> groups;
  app.add_option("--protect", groups,
                 "groups that report as protected, separated by\n"
                 "commas: conversion, calibration, sampling, units")
      ->delimiter(',')
      ->transform(
          CLI::IsMember({"conversion", "calibration", "sampling", "units"}, CLI::ignore_case)
              .description(""))
      ->type_name("GROUPS");
  app.add_option("--seed", options.readout.seed, "start of all chance: readings, logs, faults")
      ->type_name("N")
      ->capture_default_str();
  std::vector<std::string> levels;
  app.add_option("--bath", levels,
                 "temperatures of channels in C, such as 3=100,4=-38.8;\n"
                 "the others have what they come with")
      ->delimiter(',')
      ->type_name("CH=C,...");
  app.add_option("--drift", options.readout.bath.drift,
                 "amplitude of a slow wave of each bath, in K")
      ->check(CLI::Range(0.0, 1000.0).description(""))
      ->type_name("K")
      ->capture_default_str();
  app.add_option("--noise", options.readout.bath.noise, "standard deviation of a reading, in K")
      ->check(CLI::Range(0.0, 1000.0).description(""))
      ->type_name("K")
      ->capture_default_str();
  std::vector<std::string> steps;
  app.add_option("--step", steps,
                 "steps of all baths from a sample on, such as\n"
                 "100=0.5,200=-0.5 in K")
      ->delimiter(',')
      ->type_name("N=K,...");
  app.add_option("--baud", options.baud, "pace the answers as a line of N bit/s would; 0 doesn't")
      ->check(CLI::Range(0, 4000000).description(""))
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--link", options.link,
                 "also make a symbolic link to the device at PATH;\n"
                 "an earlier link is replaced, a file is not")
      ->type_name("PATH");
  app.add_option("--readings-log", options.readingslog,
                 "append a line to FILE for each reading that is given:\n"
                 "milliseconds since the start of the machine, sample,\n"
                 "channel, reading, and what the line does with it")
      ->type_name("FILE");
  std::vector<std::string> faults;
  app.add_option("--fault", faults, "plan a fault, see below; may be given again")
      ->type_name("WHEN:KIND")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);

  try {
    parse(app);
  } catch (const CLI::CallForHelp&) {
    options.help = app.help();
    return options;
  } catch (const CLI::CallForVersion& version) {
    options.help = std::string(version.what()) + "\n";
    return options;
  } catch (const CLI::ParseError& error) {
    throw std::invalid_argument(error.what());
  }
  if (withoutscanner) options.readout.scanner = false;
  if (!passcodefile.empty()) options.readout.passcode = FirstLine(passcodefile);
  if (!protocol::FitsForm(protocol::kPasscodeForm, options.readout.passcode)) {
    throw std::invalid_argument("the passcode must be " +
                                protocol::FormText(protocol::kPasscodeForm));
  }
  for (const std::string& level : levels) {
    const auto [channel, celsius] = WholeAndReal("--bath", level, 1, 12);
    options.readout.bath.levels[static_cast<std::int32_t>(channel)] = celsius;
  }
  for (const std::string& step : steps) {
    options.readout.bath.steps.push_back(
        WholeAndReal("--step", step, 0, std::numeric_limits<std::int64_t>::max()));
  }
  for (const std::string& fault : faults) options.faults.push_back(ParseFaultRule(fault));
  const auto has = [&groups](const char* group) {
    return std::find(groups.begin(), groups.end(), group) != groups.end();
  };
  options.readout.protectconversion = has("conversion");
  options.readout.protectcalibration = has("calibration");
  options.readout.protectsampling = has("sampling");
  options.readout.protectunits = has("units");
  return options;
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
  return Parse([&](CLI::App& app) { app.parse(argc, argv); });
}

Options ParseOptions(const std::string& text) {
  return Parse([&](CLI::App& app) { app.parse(text); });
}

}  // namespace vane::simulator
