#include "physics/its90.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "physics/scale_1990.h"

namespace vane::physics {
namespace {

struct ValueAndSlope {
  double value;
  double slope;  // by W
};

// One of the two sides of a record.
struct Side {
  std::int32_t subrange;
  const double* c;
  double aluminium;
  std::int32_t coefficients = CoefficientsOf(subrange);
};

// W - Wr by W: a sum of powers of W - 1, and in the low subranges of ln W.
ValueAndSlope Deviation(const Side& side, double w) {
  const double* const c = side.c;
  const double x = w - 1;
  double value = c[0] * x;
  double slope = c[0];
  if (side.subrange == 4) {
    const double l = std::log(w);
    return {value + c[1] * x * l, slope + c[1] * (l + x / w)};
  }
  if (side.subrange <= 9) {
    value += c[1] * x * x;
    slope += 2 * c[1] * x;
  }
  if (side.subrange <= 3) {
    // c1 goes with the third power of ln W, the first and the second.
    const double l = std::log(w);
    int n = side.subrange == 1 ? 3 : side.subrange == 2 ? 1 : 2;
    double power = n == 3 ? l * l : n == 2 ? l : 1;
    double sum = 0;
    for (std::int32_t i = 2; i < side.coefficients; ++i, ++n) {
      sum += c[i] * n * power;
      power *= l;
      value += c[i] * power;
    }
    slope += sum / w;
  }
  if (side.subrange == 6 || side.subrange == 7) {
    value += c[2] * x * x * x;
    slope += 3 * c[2] * x * x;
  }
  if (side.subrange == 6 && w > side.aluminium) {
    const double above = w - side.aluminium;
    value += c[3] * above * above;
    slope += 2 * c[3] * above;
  }
  return {value, slope};
}

Side LowSide(const Its90Record& record) { return {record.low, record.lowcoefficients.data(), 0}; }
Side HighSide(const Its90Record& record, double aluminium) {
  return {record.high, record.highcoefficients.data(), aluminium};
}

// Of a high side alone the upper reference function counts down to 0 °C.
double ReferenceOn(const Side& side, double kelvin) {
  if (side.subrange >= 6 && kelvin >= kIcePoint && kelvin < kTriplePointOfWater) {
    return HighReferenceRatio(kelvin);
  }
  return ReferenceRatio(kelvin);
}

// The W whose deviation leads to `reference`.
double RatioOn(const Side& side, double reference) {
  double w = reference;
  for (int i = 0; i < 50; ++i) {
    const ValueAndSlope deviation = Deviation(side, w);
    const double step = (reference + deviation.value - w) / (1 - deviation.slope);
    w += step;
    if (!(w > 0)) break;
    if (std::abs(step) < 1e-9 * w) return w;
  }
  throw std::domain_error("The deviation function of subrange " + std::to_string(side.subrange) +
                          " has no ratio for the reference ratio " + std::to_string(reference) +
                          ".");
}

Side SideAt(const Its90Record& record, double aluminium, double kelvin) {
  const bool ishigh =
      record.low == kNoSubrange || (record.high != kNoSubrange && kelvin >= kTriplePointOfWater);
  return ishigh ? HighSide(record, aluminium) : LowSide(record);
}

Marked Mark(const Its90Record& record, double kelvin, double value) {
  Marked marked{value};
  const bool islow = record.low != kNoSubrange;
  const bool ishigh = record.high != kNoSubrange;
  const auto within = [&](std::int32_t subrange) {
    // As far as the digits of a temperature go.
    constexpr double kDigits = 1e-9;
    const Span span = SpanOf(subrange);
    return kelvin >= span.lowest - kDigits && kelvin <= span.highest + kDigits;
  };
  const bool inlow = islow && within(record.low);
  const bool inhigh = ishigh && within(record.high);
  if (inlow && inhigh) marked.Add(EMark::OVERLAP);
  if (!inlow && !inhigh) marked.Add(EMark::EXTRAPOLATED);
  if (record.high == 6 && kelvin > kAluminiumPoint) marked.Add(EMark::SOLVED);
  return marked;
}

}  // namespace

double AluminiumRatio(const Its90Record& record) {
  Side side = HighSide(record, 1e300);
  return RatioOn(side, ReferenceRatio(kAluminiumPoint));
}

Marked Its90Temperature(const Its90Record& record, double aluminium, double ohms) {
  const double w = ohms / record.rtpw;
  if (!(w > 0)) throw std::domain_error("A resistance of that size has no temperature.");
  // Far below, the high side has nothing to say where there is a low one.
  constexpr double kFarBelow = 0.99;
  if (record.high != kNoSubrange && (w > kFarBelow || record.low == kNoSubrange)) {
    const Side side = HighSide(record, aluminium);
    const double reference = w - Deviation(side, w).value;
    // Where the high side begins; the margin is that of a double's last digits.
    const double begin =
        HighReferenceRatio(record.low == kNoSubrange ? kIcePoint : kTriplePointOfWater);
    if (reference >= begin - 1e-14) {
      const double kelvin = HighReferenceTemperature(reference);
      return Mark(record, kelvin, kelvin);
    }
    if (record.low == kNoSubrange) {
      const double kelvin = ReferenceTemperature(reference);
      return Mark(record, kelvin, kelvin);
    }
  }
  const double kelvin = ReferenceTemperature(w - Deviation(LowSide(record), w).value);
  return Mark(record, kelvin, kelvin);
}

Marked Its90Resistance(const Its90Record& record, double aluminium, double kelvin) {
  const Side side = SideAt(record, aluminium, kelvin);
  return Mark(record, kelvin, record.rtpw * RatioOn(side, ReferenceOn(side, kelvin)));
}

double Its90Slope(const Its90Record& record, double aluminium, double kelvin) {
  const Side side = SideAt(record, aluminium, kelvin);
  const double w = RatioOn(side, ReferenceOn(side, kelvin));
  return record.rtpw * ReferenceSlope(kelvin) / (1 - Deviation(side, w).slope);
}

}  // namespace vane::physics
