// thermoscribe verify: the readout's arithmetic against the host's, and records by themselves.

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "apps/snapshots/gates.h"
#include "apps/snapshots/probe_sensor.h"
#include "apps/snapshots/snapshot_file.h"
#include "apps/thermoscribe/channel_list.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_source.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/channels/channel.h"

namespace vane::thermoscribe {
namespace {

constexpr double kIcePoint = 273.15;

struct VerifyOptions {
  std::string file;
  std::vector<std::int16_t> channels;  // empty: all in use
  std::string record;
};

std::string SerialOf(const ProbeValues& values) {
  for (const auto& [key, value] : values) {
    if (key.row != nullptr && key.row->name == "serial" && !value.IsNone()) return value.Text();
  }
  return {};
}

// Without a readout: what is odd about the records of a snapshot.
EExitCode VerifyFile(CHost& host, const std::string& path) {
  Snapshot snapshot;
  try {
    snapshot = ReadSnapshotFile(path, host.UsersPatience());
  } catch (const std::runtime_error& error) {
    host.Say(error.what());
    return host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED;
  }
  std::vector<Row> rows;
  for (std::size_t i = 0; i < snapshot.probes.size(); ++i) {
    for (const std::string& text : OddThingsAbout(snapshot.probes[i])) {
      rows.push_back({static_cast<std::int16_t>(i + 1), SerialOf(snapshot.probes[i]), text});
    }
  }
  host.Output().Table("finding",
                      {{"probe", "Probe"}, {"serial", "Serial number"}, {"text", "What is odd"}},
                      rows, "Nothing is odd about the records.");
  return rows.empty() ? EExitCode::DONE : EExitCode::DIFFERS;
}

// The readout in other units for a while; back again at the end, whatever has ended it.
class CUnitsKept {
 public:
  explicit CUnitsKept(CVaneT312B& instrument)
      : instrument_(instrument), units_(instrument.Units()) {}
  CUnitsKept(const CUnitsKept&) = delete;
  CUnitsKept& operator=(const CUnitsKept&) = delete;
  ~CUnitsKept() {
    try {
      if (instrument_.Units() != units_) Set(units_);
    } catch (const std::exception&) {
      // `Restore` tells it; here another trouble is on its way already.
    }
  }

  void Set(ET312BUnits units) {
    instrument_.SetUnits(units);
    instrument_.UpdateUnits();
  }
  void Restore() { Set(units_); }

 private:
  CVaneT312B& instrument_;
  const ET312BUnits units_;
};

// What half a last digit is of a number with so many behind the point.
double HalfDigit(int digits) { return 0.5 * std::pow(10.0, -digits); }

class CVerifier {
 public:
  CVerifier(CHost& host, const VerifyOptions& options) : host_(host), options_(options) {}

  EExitCode Run() {
    if (const EExitCode code = host_.ReadSettings(); code != EExitCode::DONE) return code;
    const EGate gates[] = {EGate::UNITS_TIME};
    if (const EExitCode code = host_.OpenGates(gates); code != EExitCode::DONE) return code;
    CVaneT312B& instrument = host_.Instrument();
    CUnitsKept units(instrument);
    for (const std::int16_t channel : Channels()) {
      if (host_.IsInterrupted()) break;
      const EExitCode code = Verify(channel, units);
      if (code != EExitCode::DONE && code != EExitCode::DIFFERS) return code;
      if (code == EExitCode::DIFFERS) agree_ = false;
    }
    units.Restore();
    if (host_.IsInterrupted()) return EExitCode::ABORTED;
    return agree_ ? EExitCode::DONE : EExitCode::DIFFERS;
  }

 private:
  std::vector<std::int16_t> Channels() const {
    if (!options_.channels.empty()) return options_.channels;
    std::vector<std::int16_t> channels;
    for (std::int16_t number = 1; number <= host_.Instrument().NumChannels(); ++number) {
      const auto* const channel = host_.Instrument().GetChannelReference(number);
      if (channel != nullptr && channel->Enabled()) channels.push_back(number);
    }
    return channels;
  }

  EExitCode Verify(std::int16_t number, CUnitsKept& units) {
    CVaneT312B& instrument = host_.Instrument();
    CVaneT312BPRTTHRMChannel* const channel = host_.FindChannel(number);
    if (channel == nullptr) return EExitCode::USAGE;
    if (!channel->QueryInfo(host_.ProgressWindow())) return host_.CodeOfStoppedRun();
    const std::int16_t probe = channel->ProbeIndex();
    ProbeValues values = ProbeRecord(*channel);
    const std::string serial = SerialOf(values);
    if (!options_.record.empty()) {
      values = ReadProbeFile(options_.record, probe, host_.UsersPatience());
    }
    std::string trouble;
    try {
      const physics::CSensor sensor(PhysicsRecordOf(values));
      units.Set(ET312BUnits::UNITS_OHMS);
      const double before = instrument.QueryMeasurement(number);
      units.Set(ET312BUnits::UNITS_DEGREESC);
      const double reading = instrument.QueryMeasurement(number);
      units.Set(ET312BUnits::UNITS_OHMS);
      const double behind = instrument.QueryMeasurement(number);
      return Compare(number, probe, serial, values, sensor, {before, reading, behind});
    } catch (const std::invalid_argument& error) {
      trouble = error.what();
    } catch (const std::domain_error& error) {
      trouble = error.what();
    }
    Print(number, probe, serial, {}, trouble);
    return EExitCode::DONE;
  }

  struct Taken {
    double before;   // Ohm
    double reading;  // °C
    double behind;   // Ohm
  };
  struct Result {
    Value ohms = {};
    Value reading = {};
    Value computed = {};
    Value difference = {};
    Value tolerance = {};
    Value agrees = {};
  };

  EExitCode Compare(std::int16_t number, std::int16_t probe, const std::string& serial,
                    const ProbeValues& values, const physics::CSensor& sensor, const Taken& taken) {
    const CVaneT312B& instrument = host_.Instrument();
    const double ohms = (taken.before + taken.behind) / 2;
    const physics::Marked kelvin = sensor.Temperature(ohms);
    const double computed = kelvin.value - kIcePoint;
    const double perohm = 1 / std::abs(sensor.Slope(kelvin.value));
    // The last digits of both, and what the bath has moved meanwhile.
    const double tolerance = HalfDigit(instrument.Resolution()) +
                             perohm * HalfDigit(instrument.ResistanceResolution()) +
                             perohm * std::abs(taken.behind - taken.before);
    const bool agrees = std::abs(taken.reading - computed) <= tolerance * (1 + 1e-9);
    std::string note;
    for (const std::string& text : physics::TextsOf(kelvin.marks)) Append(note, " ", text);
    const std::vector<std::string> odd = OddThingsAbout(values);
    for (const std::string& text : odd) Append(note, " ", text);
    Print(number, probe, serial,
          {ohms, taken.reading, computed, taken.reading - computed, tolerance, agrees}, note);
    return agrees && odd.empty() ? EExitCode::DONE : EExitCode::DIFFERS;
  }

  void Print(std::int16_t channel, std::int16_t probe, const std::string& serial,
             const Result& result, const std::string& note) {
    const auto fixed = [](const Value& value, int digits) {
      return value.IsNone() ? std::string("-") : Fixed(value.Number(), digits);
    };
    const int digits = host_.Instrument().Resolution();
    std::string text = "Channel " + std::to_string(channel) + ", probe " + std::to_string(probe) +
                       " " + serial + ": ";
    if (result.agrees.IsNone()) {
      text += note;
    } else {
      text += result.agrees.Flag() ? "agrees" : "DIFFERS";
      text += ", reads " + fixed(result.reading, digits) + " \u00B0C at " +
              fixed(result.ohms, host_.Instrument().ResistanceResolution()) + " Ohm, computed " +
              fixed(result.computed, digits + 1) + " \u00B0C; " +
              Significant(result.difference.Number() * 1000, 2) + " mK of " +
              Significant(result.tolerance.Number() * 1000, 2) + " mK";
      if (!note.empty()) text += ". " + note;
    }
    host_.Output().Record("verification",
                          {{"channel", channel},
                           {"probe", probe},
                           {"serial", serial},
                           {"ohms", result.ohms},
                           {"reading", result.reading},
                           {"computed", result.computed},
                           {"difference", result.difference},
                           {"tolerance", result.tolerance},
                           {"agrees", result.agrees},
                           {"note", Known(note)}},
                          text);
  }

  CHost& host_;
  const VerifyOptions& options_;
  bool agree_ = true;
};

EExitCode RunVerify(CHost& host, const VerifyOptions& options) {
  if (!options.file.empty()) return VerifyFile(host, options.file);
  return CVerifier(host, options).Run();
}

}  // namespace

Command VerifyCommand() {
  const auto options = std::make_shared<VerifyOptions>();
  Option file = PathOption("file", "[FILE]", options->file,
                           "file of \"settings save\": look at its records alone");
  Option channels{"--channel", "LIST", "channels of the instrument (all that are in use)", {}};
  channels.take = [options](const std::string& text) {
    options->channels = ChannelList("--channel", text);
  };
  Option record = PathOption("--record", "FILE", options->record,
                             "compute by the records of this file of \"settings\n"
                             "save\", in place of the readout's own");
  return {
      .name = "verify",
      .brief = "Check the readout's temperatures against the host's own",
      .footer =
          R"(Reads each channel in ohms, in degrees and in ohms again, computes on the host by the
probe's record, and tells whether both agree within their last digits and what the bath has
moved meanwhile. The units are put back in the end. With --record a wrong digit in the
readout's coefficients shows against the record of the file.

Records are looked at by themselves too: coefficients of another range, values that no
thermometer has, ranges that don't fit each other at 0.01 C. What is odd may yet be right.
With FILE that is all, and no readout is asked. The exit code is 10 when something differs
or is odd.

Examples:
  thermoscribe verify --port /dev/ttyUSB0
  thermoscribe verify --channel 3 --record bath.json --port /dev/ttyUSB0
  thermoscribe verify bath.json)",
      .options = {std::move(file), std::move(channels), std::move(record)},
      .body = [options](CHost& host) { return RunVerify(host, *options); },
      .check =
          [options] {
            if (!options->file.empty() &&
                (!options->channels.empty() || !options->record.empty())) {
              throw CUsageError("With FILE no channel is read.");
            }
          }};
}

}  // namespace vane::thermoscribe
