// Where a command has a probe's record from, the readout or a file, and what is uncertain of it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/snapshots/probe_members.h"
#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/host.h"
#include "physics/sensor.h"

namespace vane::thermoscribe {

struct ProbeSource {
  std::int16_t probe = 0;        ///< 0: not given
  std::string record = {};       ///< file; empty: the readout
  std::string uncertainty = {};  ///< "NAME=VALUE,..."

  std::vector<Option> Options();
  /// Raises `CUsageError`.
  void Check() const;

  /// `DONE`, or why not, which has been told. Of a file no line is opened.
  EExitCode Read(CHost& host, ProbeValues& record) const;

  /// By the names of the record's numbers, "resistance" in ohms, and "reference" as a part of it.
  /// Raises `CUsageError` for another name.
  physics::Uncertainties Uncertainties(const physics::Record& record) const;
};

enum class ETemperatureUnit : std::int32_t { CELSIUS, FAHRENHEIT, KELVIN };

double ToKelvin(double value, ETemperatureUnit unit);
double FromKelvin(double kelvin, ETemperatureUnit unit);
/// "°C", as the program shows it.
std::string UnitText(ETemperatureUnit unit);
/// Of "C", "°C", "F", "°F" and "K", in letters of either case.
std::optional<ETemperatureUnit> FindTemperatureUnit(const std::string& text);

/// With so many digits behind the user's separator.
std::string Fixed(double value, int digits);
/// With so many digits that count.
std::string Significant(double value, int digits);
/// How many digits behind the point of a resistance tell a temperature step of `kelvins`.
int DigitsOf(double slope, double kelvins);

/// The texts of marks in one line; none for none.
Value NoteOf(std::uint32_t marks);

}  // namespace vane::thermoscribe
