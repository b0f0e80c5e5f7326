// A thermometer by its record: temperature, resistance and slope into each other, and what is
// uncertain of them.
//
// Every direction inverts the other to the precision of a double. A value beyond what a formula is
// made for is marked, and one that it can't give at all raises `std::domain_error` with a text for
// the user. An object never changes; any thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "physics/record.h"

namespace vane::physics {

/// What a user of a value has to know; several may hold.
enum class EMark : std::uint32_t {
  EXTRAPOLATED = 1,  ///< outside the range that the record's formula is made for
  OVERLAP = 2,    ///< two ranges of the record hold here: below the triple point of water the low
                  ///< one counts, from there on the high one
  SOLVED = 4,     ///< by a ratio at the aluminium point that the record doesn't keep; it was solved
                  ///< from a, b and c
  REFERENCE = 8,  ///< of a sensor without deviation from the reference function
  UNBOUNDED = 16,  ///< the record keeps no limits, so nothing says whether it holds here
};

struct Marked {
  double value;
  std::uint32_t marks = 0;

  bool Has(EMark mark) const { return (marks & static_cast<std::uint32_t>(mark)) != 0; }
  void Add(EMark mark) { marks |= static_cast<std::uint32_t>(mark); }
};

/// Sentences for the user, one per mark.
std::vector<std::string> TextsOf(std::uint32_t marks);

/// Standard uncertainties.
struct Uncertainties {
  double ohms = 0;                                ///< of the resistance
  double reference = 0;                           ///< of the reference resistor, as a part of it
  std::map<std::string, double> parameters = {};  ///< by the names of `ParametersOf`
};

struct Contribution {
  std::string name;    ///< "resistance", "reference", or of a parameter
  double sensitivity;  ///< K per unit of it
  double kelvins;      ///< what it brings
};

struct Budget {
  double kelvins = 0;  ///< all together: the root of the sum of squares, none of them correlated
  std::vector<Contribution> contributions = {};
};

class CSensor {
 public:
  /// Raises `std::invalid_argument` with a text for the user when the record can't be used: a
  /// resistance that is none, no range, or nothing but zeros, as a fresh record has.
  explicit CSensor(Record record);

  const Record& Numbers() const { return record_; }

  /// In kelvins.
  Marked Temperature(double ohms) const;

  /// In ohms.
  Marked Resistance(double kelvin) const;

  /// dR/dT in ohms per kelvin.
  double Slope(double kelvin) const;

  /// Of the temperature at `ohms`, by the law of the propagation of uncertainty (JCGM 100:2008,
  /// 5.1.2).
  Budget UncertaintyAt(double ohms, const Uncertainties& given) const;

 private:
  Record record_;
  double aluminium_ = 0;  // of subrange 6: the ratio W there
};

}  // namespace vane::physics
