#include "physics/sensor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "physics/its90.h"
#include "physics/root.h"
#include "physics/scale_1968.h"
#include "physics/scale_1990.h"

namespace vane::physics {
namespace {

struct ValueAndSlope {
  double value;
  double slope;
};

template <class Coefficients>
ValueAndSlope Evaluate(const Coefficients& c, double x) {
  ValueAndSlope sum{0, 0};
  for (std::size_t i = std::size(c); i-- > 0;) {
    sum.slope = sum.slope * x + sum.value;
    sum.value = sum.value * x + c[i];
  }
  return sum;
}

// What a formula was made for, and how far it may be drawn out, in K.
struct Limits {
  double lowest;
  double highest;
  double least;
  double most;
};

// IEC 60751:2008 gives -200 °C to 850 °C for Callendar-Van Dusen.
constexpr Limits kCvdLimits{73.15, 1123.15, 33.15, 1273.15};
constexpr Limits kIpts68Limits{kLowestT68 + kIcePoint, kHighestT68 + kIcePoint, 73.15, 1273.15};
// Where Rusby's difference of the scales holds.
constexpr double kMostT90 = 630 + kIcePoint;
// Of NTC thermistors, as they are sold.
constexpr Limits kThermistorLimits{193.15, 573.15, 100, 1000};

Marked Within(const Limits& limits, double kelvin, double value) {
  if (!(kelvin >= limits.least && kelvin <= limits.most)) {
    throw std::domain_error("The record's formula doesn't reach to that value.");
  }
  Marked marked{value};
  constexpr double kDigits = 1e-9;
  if (kelvin < limits.lowest - kDigits || kelvin > limits.highest + kDigits) {
    marked.Add(EMark::EXTRAPOLATED);
  }
  return marked;
}

[[noreturn]] void NoRoot() { throw std::domain_error("The record's formula has no such value."); }

// R / R0 by t in °C. L. H. Callendar (1887) and M. S. Van Dusen (1925), as IEC 60751 has them.
ValueAndSlope CvdRatio(const CvdRecord& record, double t) {
  const double a = record.alpha * (1 + record.delta / 100);
  const double b = -record.alpha * record.delta * 1e-4;
  ValueAndSlope ratio{1 + (a + b * t) * t, a + 2 * b * t};
  if (t < 0) {
    const double c = -record.alpha * record.beta * 1e-8;
    ratio.value += c * (t - 100) * t * t * t;
    ratio.slope += c * (4 * t - 300) * t * t;
  }
  return ratio;
}

double CvdCelsius(const CvdRecord& record, double ratio) {
  const auto root = FindRoot(
      [&](double t) {
        ValueAndSlope at = CvdRatio(record, t);
        at.value -= ratio;
        return at;
      },
      kCvdLimits.least - kIcePoint, kCvdLimits.most - kIcePoint);
  if (!root) NoRoot();
  return *root;
}

// IPTS-68 from 0 °C on: W by t', and t68 by t'.
ValueAndSlope Ratio68Above(const Ipts68Record& record, double tprime) {
  return CvdRatio({1, record.alpha, record.delta, 0}, std::max(tprime, 0.0));
}
ValueAndSlope CorrectedT68(double tprime) {
  const double h = 1e-3;
  return {tprime + CorrectionOfT68(tprime),
          1 + (CorrectionOfT68(tprime + h) - CorrectionOfT68(tprime - h)) / (2 * h)};
}

double Deviation68(const Ipts68Record& record, double celsius) {
  return (record.a4 + record.c4 * celsius * celsius * (celsius - 100)) * celsius;
}

double Ipts68Ratio(const Ipts68Record& record, double celsius68) {
  if (celsius68 < 0) {
    return ReferenceRatio68(celsius68 + kIcePoint) + Deviation68(record, celsius68);
  }
  const auto tprime = FindRoot(
      [&](double t) {
        ValueAndSlope at = CorrectedT68(t);
        at.value -= celsius68;
        return at;
      },
      -1, kIpts68Limits.most - kIcePoint + 5);
  if (!tprime) NoRoot();
  return Ratio68Above(record, *tprime).value;
}

double Ipts68Celsius(const Ipts68Record& record, double ratio) {
  if (ratio < 1) {
    double celsius = ReferenceTemperature68(ratio) - kIcePoint;
    // The deviation changes by some 1e-4 of what the ratio does.
    for (int i = 0; i < 100; ++i) {
      const double next = ReferenceTemperature68(ratio - Deviation68(record, celsius)) - kIcePoint;
      const bool isdone = std::abs(next - celsius) < 1e-13;
      celsius = next;
      if (isdone) return celsius;
    }
    NoRoot();
  }
  const auto tprime = FindRoot(
      [&](double t) {
        ValueAndSlope at = Ratio68Above(record, t);
        at.value -= ratio;
        return at;
      },
      0, kIpts68Limits.most - kIcePoint + 5);
  if (!tprime) NoRoot();
  return CorrectedT68(*tprime).value;
}

// In the scale of the record.
double Reported(const Ipts68Record& record, double celsius68) {
  if (!record.is90) return celsius68 + kIcePoint;
  const double kelvin = T90OfT68(celsius68) + kIcePoint;
  if (kelvin > kMostT90) {
    throw std::domain_error("T90 - T68 is known up to 630 °C only.");
  }
  return kelvin;
}

double Celsius68(const Ipts68Record& record, double kelvin) {
  const double celsius = kelvin - kIcePoint;
  if (!record.is90) return celsius;
  if (kelvin > kMostT90) {
    throw std::domain_error("T90 - T68 is known up to 630 °C only.");
  }
  return T68OfT90(celsius);
}

// ln of a resistance in ohms, as far as thermistors go.
constexpr double kLeastLogarithm = -7;
constexpr double kMostLogarithm = 23;

ValueAndSlope ThermistorLogarithm(const ThermistorRTRecord& record, double kelvin) {
  const ValueAndSlope at = Evaluate(record.a, 1 / kelvin);
  return {at.value, -at.slope / (kelvin * kelvin)};
}

constexpr double kMostOhms = 1e7;

struct TemperatureOf {
  double ohms;
  double aluminium;

  Marked operator()(const Its90Record& record) const {
    return Its90Temperature(record, aluminium, ohms);
  }
  Marked operator()(const Wt90Record& record) const {
    Marked marked{ReferenceTemperature(ohms / record.rtpw)};
    marked.Add(EMark::REFERENCE);
    return marked;
  }
  Marked operator()(const Ipts68Record& record) const {
    const double kelvin = Reported(record, Ipts68Celsius(record, ohms / record.r0));
    return Within(kIpts68Limits, kelvin, kelvin);
  }
  Marked operator()(const CvdRecord& record) const {
    const double kelvin = CvdCelsius(record, ohms / record.r0) + kIcePoint;
    return Within(kCvdLimits, kelvin, kelvin);
  }
  Marked operator()(const PolynomialRecord& record) const {
    Marked marked{Evaluate(record.c, ohms).value + kIcePoint};
    if (!(marked.value > 0)) NoRoot();
    marked.Add(EMark::UNBOUNDED);
    return marked;
  }
  Marked operator()(const ThermistorTRRecord& record) const {
    const double kelvin = 1 / Evaluate(record.b, std::log(ohms)).value;
    return Within(kThermistorLimits, kelvin, kelvin);
  }
  Marked operator()(const ThermistorRTRecord& record) const {
    const double wanted = std::log(ohms);
    const auto kelvin = FindRoot(
        [&](double t) {
          ValueAndSlope at = ThermistorLogarithm(record, t);
          at.value -= wanted;
          return at;
        },
        kThermistorLimits.least, kThermistorLimits.most);
    if (!kelvin) NoRoot();
    return Within(kThermistorLimits, *kelvin, *kelvin);
  }
};

struct ResistanceOf {
  double kelvin;
  double aluminium;

  Marked operator()(const Its90Record& record) const {
    return Its90Resistance(record, aluminium, kelvin);
  }
  Marked operator()(const Wt90Record& record) const {
    Marked marked{record.rtpw * ReferenceRatio(kelvin)};
    marked.Add(EMark::REFERENCE);
    return marked;
  }
  Marked operator()(const Ipts68Record& record) const {
    const Marked limits = Within(kIpts68Limits, kelvin, 0);
    return {record.r0 * Ipts68Ratio(record, Celsius68(record, kelvin)), limits.marks};
  }
  Marked operator()(const CvdRecord& record) const {
    return Within(kCvdLimits, kelvin, record.r0 * CvdRatio(record, kelvin - kIcePoint).value);
  }
  // Of several roots the first one, from no resistance on, with the slope that the curve has at the
  // middle of all that a readout measures is not to be told: the smallest counts.
  Marked operator()(const PolynomialRecord& record) const {
    const auto f = [&](double ohms) {
      ValueAndSlope at = Evaluate(record.c, ohms);
      at.value -= kelvin - kIcePoint;
      return at;
    };
    constexpr double kGrowth = 1.02;
    double low = 0;
    double high = 1e-3;
    while (high < kMostOhms && (f(low).value < 0) == (f(high).value < 0)) {
      low = high;
      high *= kGrowth;
    }
    const auto ohms = FindRoot(f, low, high);
    if (!ohms) NoRoot();
    Marked marked{*ohms};
    marked.Add(EMark::UNBOUNDED);
    return marked;
  }
  Marked operator()(const ThermistorTRRecord& record) const {
    const auto logarithm = FindRoot(
        [&](double x) {
          ValueAndSlope at = Evaluate(record.b, x);
          at.value -= 1 / kelvin;
          return at;
        },
        kLeastLogarithm, kMostLogarithm);
    if (!logarithm) NoRoot();
    return Within(kThermistorLimits, kelvin, std::exp(*logarithm));
  }
  Marked operator()(const ThermistorRTRecord& record) const {
    return Within(kThermistorLimits, kelvin, std::exp(ThermistorLogarithm(record, kelvin).value));
  }
};

bool AreZero(std::span<const double> values) {
  return std::ranges::all_of(values, [](double one) { return one == 0; });
}

void RequireResistance(const char* name, double ohms) {
  if (std::isfinite(ohms) && ohms > 0) return;
  throw std::invalid_argument("The record's " + std::string(name) + " is no resistance.");
}

void RequireNumbers(std::span<const double> values) {
  if (!AreZero(values)) return;
  throw std::invalid_argument("The record's coefficients are all 0, as nobody has entered any.");
}

struct Check {
  void Range(std::int32_t subrange, std::span<const double> values) const {
    if (subrange == kNoSubrange) return;
    if (!AreZero(values.first(static_cast<std::size_t>(CoefficientsOf(subrange))))) return;
    throw std::invalid_argument("The record's coefficients of subrange " +
                                std::to_string(subrange) +
                                " are all 0, as nobody has entered any.");
  }
  void operator()(const Its90Record& record) const {
    RequireResistance("RTPW", record.rtpw);
    const bool islow = record.low != kNoSubrange;
    const bool ishigh = record.high != kNoSubrange;
    if (!islow && !ishigh) throw std::invalid_argument("The record has no range of ITS-90.");
    if ((islow && (record.low < 1 || record.low > 5)) ||
        (ishigh && (record.high < 6 || record.high > 11))) {
      throw std::invalid_argument("The record has a range that ITS-90 hasn't.");
    }
    Range(record.low, record.lowcoefficients);
    Range(record.high, record.highcoefficients);
  }
  void operator()(const Wt90Record& record) const { RequireResistance("RTPW", record.rtpw); }
  void operator()(const Ipts68Record& record) const {
    RequireResistance("R0", record.r0);
    if (!(record.alpha > 0)) throw std::invalid_argument("The record's alpha is not above 0.");
  }
  void operator()(const CvdRecord& record) const {
    RequireResistance("R0", record.r0);
    if (!(record.alpha > 0)) throw std::invalid_argument("The record's alpha is not above 0.");
  }
  void operator()(const PolynomialRecord& record) const { RequireNumbers(record.c); }
  void operator()(const ThermistorTRRecord& record) const { RequireNumbers(record.b); }
  void operator()(const ThermistorRTRecord& record) const { RequireNumbers(record.a); }
};

struct MarkRow {
  EMark mark;
  const char* text;
};

constexpr MarkRow kMarkRows[] = {
    {EMark::EXTRAPOLATED, "Extrapolated: the record's formula is not made for this range."},
    {EMark::OVERLAP,
     "Two ranges of the record hold here: below 0.01 \u00B0C the low one counts, from there on the "
     "high one."},
    {EMark::SOLVED, "The ratio at the aluminium point was solved from a, b and c."},
    {EMark::REFERENCE, "Of a sensor that follows the reference function."},
    {EMark::UNBOUNDED, "The record doesn't say in which range it holds."},
};

}  // namespace

std::vector<std::string> TextsOf(std::uint32_t marks) {
  std::vector<std::string> texts;
  for (const MarkRow& row : kMarkRows) {
    if ((marks & static_cast<std::uint32_t>(row.mark)) != 0) texts.emplace_back(row.text);
  }
  return texts;
}

CSensor::CSensor(Record record) : record_(std::move(record)) {
  std::visit(Check{}, record_);
  const auto* const its90 = std::get_if<Its90Record>(&record_);
  if (its90 != nullptr && its90->high == 6) aluminium_ = AluminiumRatio(*its90);
}

Marked CSensor::Temperature(double ohms) const {
  if (!(std::isfinite(ohms) && ohms > 0)) {
    throw std::domain_error("A resistance of that size has no temperature.");
  }
  return std::visit(TemperatureOf{ohms, aluminium_}, record_);
}

Marked CSensor::Resistance(double kelvin) const {
  if (!std::isfinite(kelvin)) throw std::domain_error("That is no temperature.");
  return std::visit(ResistanceOf{kelvin, aluminium_}, record_);
}

double CSensor::Slope(double kelvin) const {
  if (const auto* const its90 = std::get_if<Its90Record>(&record_)) {
    return Its90Slope(*its90, aluminium_, kelvin);
  }
  if (const auto* const wt90 = std::get_if<Wt90Record>(&record_)) {
    return wt90->rtpw * ReferenceSlope(kelvin);
  }
  const double ohms = Resistance(kelvin).value;
  if (const auto* const cvd = std::get_if<CvdRecord>(&record_)) {
    return cvd->r0 * CvdRatio(*cvd, kelvin - kIcePoint).slope;
  }
  if (const auto* const polynomial = std::get_if<PolynomialRecord>(&record_)) {
    return 1 / Evaluate(polynomial->c, ohms).slope;
  }
  if (const auto* const thermistor = std::get_if<ThermistorTRRecord>(&record_)) {
    return -ohms / (kelvin * kelvin * Evaluate(thermistor->b, std::log(ohms)).slope);
  }
  if (const auto* const thermistor = std::get_if<ThermistorRTRecord>(&record_)) {
    return ohms * ThermistorLogarithm(*thermistor, kelvin).slope;
  }
  // IPTS-68 goes over three functions: five points are good to ten digits. The place moves away
  // from 0 °C, where two of them meet.
  constexpr double kStep = 0.01;
  double at = kelvin;
  if (std::abs(at - kIcePoint) < 2 * kStep) at = kIcePoint + (at < kIcePoint ? -2 : 2) * kStep;
  const auto r = [&](double steps) { return Resistance(at + steps * kStep).value; };
  return (8 * (r(1) - r(-1)) - (r(2) - r(-2))) / (12 * kStep);
}

Budget CSensor::UncertaintyAt(double ohms, const Uncertainties& given) const {
  const double kelvin = Temperature(ohms).value;
  const double slope = Slope(kelvin);
  Budget budget;
  const auto add = [&](const std::string& name, double sensitivity, double uncertainty) {
    const double kelvins = std::abs(sensitivity * uncertainty);
    budget.contributions.push_back({name, sensitivity, kelvins});
    budget.kelvins = std::hypot(budget.kelvins, kelvins);
  };
  add("resistance", 1 / slope, given.ohms);
  add("reference", ohms / slope, given.reference);
  Record changed = record_;
  for (const auto& [name, value] : ParametersOf(changed)) {
    const auto uncertainty = given.parameters.find(name);
    if (uncertainty == given.parameters.end()) continue;
    // By differences, of a size at which neither rounding nor curvature counts: some millikelvins.
    const double whole = *value;
    double step = std::max(std::abs(whole), 1e-12) * 1e-6;
    double sensitivity = 0;
    for (int round = 0; round < 40; ++round) {
      *value = whole + step;
      const double above = CSensor(changed).Temperature(ohms).value;
      *value = whole - step;
      const double below = CSensor(changed).Temperature(ohms).value;
      *value = whole;
      sensitivity = (above - below) / (2 * step);
      if (std::abs(above - below) > 1e-3) break;
      if (std::abs(whole) > 0 && step > std::abs(whole) * 0.01) break;
      step *= 4;
    }
    add(name, sensitivity, uncertainty->second);
  }
  return budget;
}

}  // namespace vane::physics
