// The numbers by which a thermometer's resistance becomes its temperature, as a readout keeps them
// for each probe, and what comes of them.
//
// Temperatures are in kelvins, of the scale that the record reports; resistances in ohms.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace vane::physics {

/// No subrange.
inline constexpr std::int32_t kNoSubrange = -1;

/// ITS-90 with its deviation functions. Subranges are numbered as the readout does: 1 to 5 reach
/// from the triple points of hydrogen, neon, oxygen, argon and mercury upwards, 6 to 11 from 0 °C
/// to the freezing points of silver, aluminium, zinc, tin, indium and the melting point of gallium.
struct Its90Record {
  double rtpw = 0;  ///< resistance at the triple point of water
  std::int32_t low = kNoSubrange;
  std::array<double, 7> lowcoefficients = {};  ///< a, b, c1 to c5
  std::int32_t high = kNoSubrange;
  std::array<double, 4> highcoefficients = {};  ///< a, b, c, d
};

/// W(T90) alone: the readout shows a ratio. A temperature takes the sensor for one that follows the
/// reference function.
struct Wt90Record {
  double rtpw = 0;
};

struct Ipts68Record {
  double r0 = 0;  ///< at 0 °C
  double alpha = 0;
  double delta = 0;
  double a4 = 0;
  double c4 = 0;
  bool is90 = false;  ///< whether temperatures are those of 1990
};

/// Callendar and Van Dusen. IEC 60751's A, B and C are the same function.
struct CvdRecord {
  double r0 = 0;
  double alpha = 0;
  double delta = 0;
  double beta = 0;
};

/// t in °C is the sum of c[i] times the i-th power of the resistance in ohms.
struct PolynomialRecord {
  std::vector<double> c;
};

/// 1 / T is the sum of b[i] times the i-th power of ln R (J. S. Steinhart and S. R. Hart, Deep-Sea
/// Research 15 (1968) 497-503, with the square that they left out).
struct ThermistorTRRecord {
  std::array<double, 4> b = {};
};

/// ln R is the sum of a[i] over the i-th power of T.
struct ThermistorRTRecord {
  std::array<double, 4> a = {};
};

using Record = std::variant<Its90Record, Wt90Record, Ipts68Record, CvdRecord, PolynomialRecord,
                            ThermistorTRRecord, ThermistorRTRecord>;

/// A number of a record by its name: "RTPW", "a4", "c1", "b8", "d", "R0", "alpha", "c10", "B3".
struct Parameter {
  std::string name;
  double* value;
};

/// In the readout's order; good while the record lives and keeps its shape. Of ITS-90 those that
/// the subranges have.
std::vector<Parameter> ParametersOf(Record& record);

/// The resistance that the ratio W counts from: RTPW, or R0; 0 where a conversion has none.
double BaseOfW(const Record& record);

/// Limits of a subrange.
struct Span {
  double lowest;  ///< K
  double highest;
};

/// From 1 to 11.
Span SpanOf(std::int32_t subrange);

/// The coefficients that a subrange has.
std::int32_t CoefficientsOf(std::int32_t subrange);

}  // namespace vane::physics
