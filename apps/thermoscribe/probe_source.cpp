#include "apps/thermoscribe/probe_source.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "apps/snapshots/snapshot_file.h"
#include "apps/snapshots/value_text.h"
#include "vane/instrument/t312b.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr double kIcePoint = 273.15;  // K

}  // namespace

std::vector<Option> ProbeSource::Options() {
  Option number = WholeOption("--probe", "N", probe, 1, CVaneT312B::NumProbes(),
                              "number of the probe, from 1 to 16");
  Option file = PathOption("--record", "FILE", record,
                           "a record that was saved, in place of the readout's: a\n"
                           "file of \"settings save\", with --probe, or what\n"
                           "\"probe N --json\" printed; \"-\": standard input");
  Option uncertain = TextOption("--uncertainty", "LIST", uncertainty,
                                "standard uncertainties, NAME=VALUE with \",\" between:\n"
                                "\"resistance\" in ohms, \"reference\" as a part of the\n"
                                "reference resistor (1e-6), coefficients by their names");
  return {std::move(number), std::move(file), std::move(uncertain)};
}

void ProbeSource::Check() const {
  if (probe == 0 && record.empty()) throw CUsageError("Whose record? --probe or --record says.");
}

EExitCode ProbeSource::Read(CHost& host, ProbeValues& values) const {
  if (!record.empty()) {
    try {
      values = ReadProbeFile(record, probe, host.UsersPatience());
    } catch (const std::runtime_error& error) {
      host.Say(error.what());
      return host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED;
    }
    return EExitCode::DONE;
  }
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312BPRTTHRMChannel* const channel = ProbeCarrier(host.Instrument(), host);
  if (channel == nullptr) return EExitCode::FAILED;
  if (!channel->QueryProbeInfo(probe, host.ProgressWindow())) return host.CodeOfStoppedRun();
  values = ProbeRecord(*channel);
  return EExitCode::DONE;
}

physics::Uncertainties ProbeSource::Uncertainties(const physics::Record& numbers) const {
  physics::Uncertainties given;
  physics::Record copy = numbers;
  std::istringstream list(uncertainty);
  for (std::string text; std::getline(list, text, ',');) {
    const std::size_t place = text.find('=');
    const std::string name = text.substr(0, place);
    if (place == text.npos) throw CUsageError("--uncertainty: \"" + text + "\" is no NAME=VALUE.");
    const double value = NumberIn("--uncertainty " + name, text.substr(place + 1), 0,
                                  std::numeric_limits<double>::max());
    if (name == "resistance") {
      given.ohms = value;
      continue;
    }
    if (name == "reference") {
      given.reference = value;
      continue;
    }
    const auto parameters = physics::ParametersOf(copy);
    const auto found = std::ranges::find_if(parameters, [&](const physics::Parameter& one) {
      return Folded(one.name) == Folded(name);
    });
    if (found == parameters.end()) {
      std::vector<std::string> names{"resistance", "reference"};
      for (const physics::Parameter& one : parameters) names.push_back(one.name);
      throw CUsageError("--uncertainty: there is no \"" + name + "\", but " + Listed(names) + ".");
    }
    given.parameters[found->name] = value;
  }
  return given;
}

double ToKelvin(double value, ETemperatureUnit unit) {
  switch (unit) {
    case ETemperatureUnit::CELSIUS:
      return value + kIcePoint;
    case ETemperatureUnit::FAHRENHEIT:
      return (value - 32) / 1.8 + kIcePoint;
    case ETemperatureUnit::KELVIN:
      break;
  }
  return value;
}

double FromKelvin(double kelvin, ETemperatureUnit unit) {
  switch (unit) {
    case ETemperatureUnit::CELSIUS:
      return kelvin - kIcePoint;
    case ETemperatureUnit::FAHRENHEIT:
      return (kelvin - kIcePoint) * 1.8 + 32;
    case ETemperatureUnit::KELVIN:
      break;
  }
  return kelvin;
}

std::string UnitText(ETemperatureUnit unit) {
  static constexpr const char* kTexts[] = {"\u00B0C", "\u00B0F", "K"};
  return kTexts[static_cast<std::size_t>(unit)];
}

std::optional<ETemperatureUnit> FindTemperatureUnit(const std::string& text) {
  const std::string folded = Folded(text);
  for (const auto unit :
       {ETemperatureUnit::CELSIUS, ETemperatureUnit::FAHRENHEIT, ETemperatureUnit::KELVIN}) {
    const std::string name = Folded(UnitText(unit));
    if (folded == name || "\u00B0" + folded == name) return unit;
  }
  return std::nullopt;
}

std::string Fixed(double value, int digits) {
  char text[400];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return WithUsersSeparator(text);
}

std::string Significant(double value, int digits) {
  char text[60];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return WithUsersSeparator(text);
}

int DigitsOf(double slope, double kelvins) {
  const double step = std::abs(slope) * kelvins;
  return step > 0 ? std::clamp(static_cast<int>(std::ceil(-std::log10(step))), 0, 12) : 6;
}

Value NoteOf(std::uint32_t marks) {
  std::string note;
  for (const std::string& text : physics::TextsOf(marks)) Append(note, " ", text);
  return Known(note);
}

}  // namespace vane::thermoscribe
