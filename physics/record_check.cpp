#include "physics/record_check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <optional>
#include <span>

#include "physics/scale_1990.h"
#include "physics/sensor.h"

namespace vane::physics {
namespace {

std::string Text(double number) {
  char text[40];
  std::snprintf(text, sizeof text, "%.7g", number);
  return text;
}

struct Limits {
  double least;
  double most;

  bool Has(double value) const { return value >= least && value <= most; }
};

// The mean slope from 0 °C to 100 °C, as a part of the resistance at 0 °C: from industrial platinum
// to the purest that there can be, with some room.
constexpr Limits kAlphas{3.70e-3, 3.9285e-3};
constexpr Limits kDeltas{1.2, 1.8};
constexpr Limits kBetas{0, 0.25};
// A sensor's curve has one slope at 0.01 °C. Calibrated by parts, the two ranges of a good one
// differ by less than this.
constexpr double kMostJump = 1e-4;
// ITS-90, section 3.3: what a thermometer has to reach.
constexpr double kLeastRatioOfGallium = 1.11807;
constexpr double kMostRatioOfMercury = 0.844235;
constexpr double kLeastRatioOfSilver = 4.2844;
// Where an alpha belongs to strain-free platinum, for which those limits hold.
constexpr double kPureAlpha = 3.9245e-3;

// Of thermistors as they are sold.
constexpr Limits kThermistorOhms{1, 1e7};       // at 25 °C
constexpr Limits kThermistorBetas{1500, 6500};  // K

class CFindings {
 public:
  void Add(std::string parameter, std::string text) {
    list_.push_back({std::move(parameter), std::move(text)});
  }
  void Within(const char* parameter, double value, const Limits& limits) {
    if (limits.Has(value)) return;
    Add(parameter, std::string(parameter) + " is " + Text(value) +
                       ", and a platinum thermometer's is from " + Text(limits.least) + " to " +
                       Text(limits.most) + ".");
  }
  std::vector<Finding> Take() { return std::move(list_); }

 private:
  std::vector<Finding> list_;
};

void CheckUnused(CFindings& findings, std::int32_t subrange, std::span<const double> values,
                 const char* side) {
  const std::size_t used =
      subrange == kNoSubrange ? 0 : static_cast<std::size_t>(CoefficientsOf(subrange));
  for (std::size_t i = used; i < values.size(); ++i) {
    if (values[i] == 0) continue;
    findings.Add("", "The " + std::string(side) + " range has " + std::to_string(used) +
                         " coefficients, and the record holds more.");
    return;
  }
}

// The slope has one sign all over the range, and stays near that of the reference function.
void CheckCurve(CFindings& findings, const CSensor& sensor, double rtpw, const Span& span,
                std::int32_t subrange) {
  constexpr int kPlaces = 200;
  constexpr Limits kSlopes{0.93, 1.03};  // industrial platinum is flatter
  for (int i = 0; i <= kPlaces; ++i) {
    const double kelvin =
        std::min(span.lowest + (span.highest - span.lowest) * i / kPlaces, span.highest);
    const double share = sensor.Slope(kelvin) / (rtpw * ReferenceSlope(kelvin));
    // Towards hydrogen the curves of real thermometers part by far more.
    if (kelvin < 54 ? share > 0.5 && share < 3 : kSlopes.Has(share)) continue;
    findings.Add("", "At " + Text(kelvin - kIcePoint) + " \u00B0C the slope of subrange " +
                         std::to_string(subrange) + " is " + Text(share) +
                         " of the reference function's: no platinum is like that.");
    return;
  }
}

struct Checker {
  CFindings& findings;
  const CSensor& sensor;

  double RatioAt(double kelvin, double rtpw) const {
    return sensor.Resistance(kelvin).value / rtpw;
  }

  void operator()(const Its90Record& record) const {
    CheckUnused(findings, record.low, record.lowcoefficients, "low");
    CheckUnused(findings, record.high, record.highcoefficients, "high");
    if (record.low != kNoSubrange) {
      CheckCurve(findings, sensor, record.rtpw, SpanOf(record.low), record.low);
    }
    if (record.high != kNoSubrange) {
      Span span = SpanOf(record.high);
      if (record.low != kNoSubrange) span.lowest = kTriplePointOfWater;
      CheckCurve(findings, sensor, record.rtpw, span, record.high);
    }
    if (record.low != kNoSubrange && record.high != kNoSubrange) {
      const double jump = record.highcoefficients[0] - record.lowcoefficients[0];
      if (std::abs(jump) > kMostJump) {
        findings.Add("", "At 0.01 \u00B0C the slopes of the two ranges differ by " + Text(jump) +
                             ": a curve has no corner there.");
      }
    }
    // The mean slope to 100 °C by what the record says at hand.
    const double alpha =
        record.high == kNoSubrange
            ? 3.9259e-3
            : (RatioAt(373.124, record.rtpw) / RatioAt(kIcePoint, record.rtpw) - 1) / 99.974;
    if (!kAlphas.Has(alpha)) {
      findings.Add("", "The mean slope to 100 \u00B0C is " + Text(alpha) +
                           " per kelvin: no platinum is like that.");
    }
    if (alpha < kPureAlpha) return;
    CheckPurity(record);
  }

  void CheckPurity(const Its90Record& record) const {
    const auto check = [&](bool holds, const char* point, double ratio, const char* relation,
                           double limit) {
      if (holds) return;
      findings.Add("", "The ratio W at the " + std::string(point) + " point is " + Text(ratio) +
                           ", and ITS-90 asks for " + relation + " " + Text(limit) + ".");
    };
    if (record.high != kNoSubrange) {
      const double gallium = RatioAt(302.9146, record.rtpw);
      check(gallium >= kLeastRatioOfGallium, "gallium", gallium, "at least", kLeastRatioOfGallium);
    }
    if (record.low != kNoSubrange) {
      const double mercury = RatioAt(234.3156, record.rtpw);
      check(mercury <= kMostRatioOfMercury, "mercury", mercury, "at most", kMostRatioOfMercury);
    }
    if (record.high == 6) {
      const double silver = RatioAt(1234.93, record.rtpw);
      check(silver >= kLeastRatioOfSilver, "silver", silver, "at least", kLeastRatioOfSilver);
    }
  }

  void operator()(const Wt90Record&) const {}

  void operator()(const Ipts68Record& record) const {
    findings.Within("alpha", record.alpha, kAlphas);
    findings.Within("delta", record.delta, kDeltas);
    findings.Within("a4", record.a4, {-1e-5, 1e-5});
    findings.Within("c4", record.c4, {-1e-11, 1e-11});
  }
  void operator()(const CvdRecord& record) const {
    findings.Within("alpha", record.alpha, kAlphas);
    findings.Within("delta", record.delta, kDeltas);
    findings.Within("beta", record.beta, kBetas);
  }
  // Of both forms: at 25 °C, and by how much it falls up to 26 °C.
  void Thermistor() const {
    const double ohms = sensor.Resistance(298.15).value;
    if (!kThermistorOhms.Has(ohms)) {
      findings.Add("", "At 25 \u00B0C the resistance is " + Text(ohms) +
                           " ohms: no thermistor is like that.");
    }
    for (const double kelvin : {273.15, 298.15, 323.15}) {
      const double beta = -sensor.Slope(kelvin) / sensor.Resistance(kelvin).value * kelvin * kelvin;
      if (kThermistorBetas.Has(beta)) continue;
      findings.Add("", "At " + Text(kelvin - kIcePoint) + " \u00B0C the constant B is " +
                           Text(beta) + " K, and a thermistor's is from " +
                           Text(kThermistorBetas.least) + " K to " + Text(kThermistorBetas.most) +
                           " K.");
    }
  }
  void operator()(const ThermistorTRRecord&) const { Thermistor(); }
  void operator()(const ThermistorRTRecord&) const { Thermistor(); }
  void operator()(const PolynomialRecord& record) const {
    for (std::size_t i = 1; i < record.c.size(); ++i) {
      if (record.c[i] != 0) return;
    }
    findings.Add("", "The polynomial is the same at any resistance.");
  }
};

}  // namespace

std::vector<Finding> CheckRecord(const Record& record) {
  CFindings findings;
  try {
    const CSensor sensor(record);
    std::visit(Checker{findings, sensor}, record);
  } catch (const std::exception& error) {
    findings.Add("", error.what());
  }
  return findings.Take();
}

}  // namespace vane::physics
