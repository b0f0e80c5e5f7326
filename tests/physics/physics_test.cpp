// The scales against the facts that define them, and a thermometer's directions against each other.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "physics/iec60751.h"
#include "physics/record_check.h"
#include "physics/scale_1968.h"
#include "physics/scale_1990.h"
#include "physics/sensor.h"
#include "tests/physics/samples.h"

namespace vane::physics {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

// A misprint of one digit in one constant moves one of these by far more than the table's last
// digit.
TEST(Scale1990, FixedPointsAreWhereTheScaleHasThem) {
  for (const FixedPoint& point : kFixedPoints) {
    EXPECT_NEAR(ReferenceRatio(point.kelvin), point.ratio, 5.01e-9) << point.name;
    EXPECT_NEAR(ReferenceTemperature(ReferenceRatio(point.kelvin)), point.kelvin, 1e-11)
        << point.name;
  }
  // The two functions meet at the triple point of water.
  EXPECT_NEAR(LowReferenceRatio(kTriplePointOfWater), HighReferenceRatio(kTriplePointOfWater),
              1e-8);
  EXPECT_NEAR(HighReferenceRatio(kIcePoint), LowReferenceRatio(kIcePoint), 1e-8);
}

// The scale promises 0.1 mK below water and 0.13 mK above for its published inverses: a misprint in
// one of their constants breaks that promise somewhere.
TEST(Scale1990, PublishedInversesKeepTheirPromiseAndAreNoInverses) {
  double below = 0;
  double above = 0;
  for (double kelvin = kLowestT90; kelvin < kHighestT90; kelvin += 0.05) {
    const double off = std::abs(PublishedInverse(ReferenceRatio(kelvin)) - kelvin);
    (kelvin < kTriplePointOfWater ? below : above) =
        std::max(kelvin < kTriplePointOfWater ? below : above, off);
  }
  EXPECT_LT(below, 1.05e-4);
  EXPECT_LT(above, 1.35e-4);
  EXPECT_GT(above, 1.2e-4);
}

TEST(Scale1968, FixedPointsAndTheDifferenceOfTheScalesAreThoseOfTheTables) {
  const std::pair<double, double> points[] = {
      {13.81, 0.00141208},  {17.042, 0.00253445}, {20.28, 0.00448517},  {27.102, 0.01221272},
      {54.361, 0.09197253}, {83.798, 0.21605705}, {90.188, 0.24379912}, {273.15, 1}};
  for (const auto& [kelvin, ratio] : points) {
    EXPECT_NEAR(ReferenceRatio68(kelvin), ratio, 1.5e-8) << kelvin;
  }
  for (const double celsius : {0.0, 100.0, 419.58, 630.74}) {
    EXPECT_NEAR(CorrectionOfT68(celsius), 0, 1e-15);
  }
  EXPECT_NEAR(CorrectionOfT68(231.9292), 0.0389, 5e-5);  // at the freezing point of tin
  // Metrologia 27 (1990), table 6, whose last digit is 1 mK.
  const std::pair<double, double> differences[] = {
      {-150, 0.013}, {-100, 0.013}, {-50, 0.009},  {0, 0},        {100, -0.026},
      {200, -0.040}, {300, -0.039}, {400, -0.048}, {500, -0.079}, {600, -0.115}};
  for (const auto& [celsius, difference] : differences) {
    EXPECT_NEAR(DifferenceOfScales(celsius), difference, 1.6e-3) << celsius;
    EXPECT_NEAR(T90OfT68(T68OfT90(celsius)), celsius, 1e-12);
  }
}

TEST(Sensor, EachDirectionInvertsTheOtherAndTheSlopeIsTheirs) {
  constexpr int kPlaces = 20'000;
  for (const Sample& sample : Samples()) {
    const CSensor sensor(sample.record);
    double worst = 0;
    double slope = 0;
    for (int i = 0; i <= kPlaces; ++i) {
      const double kelvin = sample.lowest + (sample.highest - sample.lowest) * i / kPlaces;
      worst = std::max(
          worst, std::abs(sensor.Temperature(sensor.Resistance(kelvin).value).value - kelvin));
      if (i % 100 != 50) continue;
      const double h = 1e-3;
      const double rise = sensor.Resistance(kelvin + h).value - sensor.Resistance(kelvin - h).value;
      slope = std::max(slope, std::abs(rise / (2 * h) / sensor.Slope(kelvin) - 1));
    }
    EXPECT_LT(worst, 2e-12) << sample.name;
    EXPECT_LT(slope, 2e-8) << sample.name;
  }
}

TEST(Sensor, PlatinumByIec60751AsPublished) {
  const CSensor sensor(IecRecord());
  const std::pair<double, double> rows[] = {
      {-200, 18.52}, {-150, 39.72}, {-100, 60.26}, {-50, 80.31},  {0, 100.00},
      {50, 119.40},  {100, 138.51}, {200, 175.86}, {300, 212.05}, {400, 247.09},
      {500, 280.98}, {600, 313.71}, {700, 345.28}, {800, 375.70}, {850, 390.48}};
  for (const auto& [celsius, ohms] : rows) {
    EXPECT_NEAR(sensor.Resistance(celsius + kIcePoint).value, ohms, 0.005) << celsius;
  }
}

TEST(Iec60751, TolerancesAreThoseOfTheClassesWithinTheirRanges) {
  const struct {
    double celsius;
    double kelvins[4];  // AA, A, B, C; 0: outside
    double ohms[4];     // of a Pt100
  } rows[] = {{-196, {0, 0, 1.28, 2.56}, {0, 0, 0.55, 1.10}},
              {-100, {0, 0.35, 0.8, 1.6}, {0, 0.14, 0.32, 0.65}},
              {0, {0.1, 0.15, 0.3, 0.6}, {0.04, 0.06, 0.12, 0.23}},
              {100, {0.27, 0.35, 0.8, 1.6}, {0.10, 0.13, 0.30, 0.61}},
              {250, {0.525, 0.65, 1.55, 3.1}, {0.19, 0.24, 0.56, 1.12}},
              {600, {0, 0, 3.3, 6.6}, {0, 0, 1.06, 2.12}}};
  const CSensor sensor(IecRecord());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < 4; ++i) {
      const auto grade = static_cast<EToleranceClass>(i);
      if (row.kelvins[i] == 0) {
        EXPECT_THROW(ToleranceOf(grade, row.celsius), std::domain_error);
        continue;
      }
      const double tolerance = ToleranceOf(grade, row.celsius);
      EXPECT_NEAR(tolerance, row.kelvins[i], 1e-12) << row.celsius;
      EXPECT_NEAR(tolerance * sensor.Slope(row.celsius + kIcePoint), row.ohms[i], 0.006)
          << row.celsius;
    }
  }
}

// The definitions of the deviation functions, evaluated by hand at a place of each.
TEST(Sensor, DeviationsAreThoseOfTheirSubranges) {
  for (std::int32_t subrange = 1; subrange <= 11; ++subrange) {
    Its90Record record{.rtpw = 1};
    const bool islow = subrange <= 5;
    std::array<double, 7> c{1e-4, 2e-4, 3e-4, 4e-4, 5e-4, 6e-4, 7e-4};
    if (islow) {
      record.low = subrange;
      record.lowcoefficients = c;
    } else {
      record.high = subrange;
      std::copy_n(c.begin(), 4, record.highcoefficients.begin());
    }
    const CSensor sensor(record);
    const double kelvin = islow ? 250 : 290;
    const double w = sensor.Resistance(kelvin).value;
    const double x = w - 1;
    const double l = std::log(w);
    double deviation = c[0] * x;
    if (subrange == 4)
      deviation += c[1] * x * l;
    else if (subrange <= 9)
      deviation += c[1] * x * x;
    if (subrange == 1) {
      for (int i = 0; i < 5; ++i) deviation += c[2 + i] * std::pow(l, i + 3);
    }
    if (subrange == 2) deviation += c[2] * l + c[3] * l * l + c[4] * l * l * l;
    if (subrange == 3) deviation += c[2] * l * l;
    if (subrange == 6 || subrange == 7) deviation += c[2] * x * x * x;
    EXPECT_NEAR(w - ReferenceRatio(kelvin), deviation, 1e-15) << subrange;
  }
}

TEST(Sensor, MarksWhatTheRecordLeavesOpen) {
  const auto all = Samples();
  const auto sensor = [&](const std::string& name) {
    return CSensor(std::ranges::find(all, name, &Sample::name)->record);
  };
  const auto marks = [&](const std::string& name, double kelvin) {
    return sensor(name).Resistance(kelvin);
  };
  EXPECT_EQ(marks("ITS-90 1+6", 300).marks, 0U);
  EXPECT_TRUE(marks("ITS-90 1+6", 273.155).Has(EMark::OVERLAP));
  EXPECT_TRUE(marks("ITS-90 5+10", 290).Has(EMark::OVERLAP));
  EXPECT_TRUE(marks("ITS-90 1+6", 1000).Has(EMark::SOLVED));
  EXPECT_FALSE(marks("ITS-90 1+6", 900).Has(EMark::SOLVED));
  EXPECT_TRUE(marks("ITS-90 5", 310).Has(EMark::EXTRAPOLATED));
  EXPECT_TRUE(marks("ITS-90 11", 260).Has(EMark::EXTRAPOLATED));
  EXPECT_TRUE(marks("ITS-90 4+9", 600).Has(EMark::EXTRAPOLATED));
  EXPECT_TRUE(marks("W(T90)", 300).Has(EMark::REFERENCE));
  EXPECT_TRUE(marks("polynomial", 300).Has(EMark::UNBOUNDED));
  EXPECT_TRUE(marks("Callendar-Van Dusen", 1150).Has(EMark::EXTRAPOLATED));
  EXPECT_THROW(marks("Callendar-Van Dusen", 1400), std::domain_error);
  EXPECT_THROW(marks("ITS-90 1+6", 1300), std::domain_error);
  EXPECT_THROW(marks("IPTS-68, 1990", 905), std::domain_error);
  for (const double ohms : {0.0, -1.0, std::nan(""), 1e9}) {
    EXPECT_THROW(sensor("ITS-90 1+6").Temperature(ohms), std::domain_error) << ohms;
  }
  EXPECT_THAT(TextsOf(31), SizeIs(5));

  // The high range counts from 0.01 °C on, also where the low one reaches 29.76 °C.
  const Its90Record both =
      std::get<Its90Record>(std::ranges::find(all, "ITS-90 5+10", &Sample::name)->record);
  Its90Record high = both;
  high.low = kNoSubrange;
  EXPECT_EQ(CSensor(both).Resistance(290).value, CSensor(high).Resistance(290).value);
  // d counts above the aluminium point alone, and there for tens of millikelvins.
  Its90Record withoutd = std::get<Its90Record>(all[0].record);
  withoutd.highcoefficients[3] = 0;
  EXPECT_EQ(marks("ITS-90 1+6", 930).value, CSensor(withoutd).Resistance(930).value);
  const double left = CSensor(withoutd).Temperature(marks("ITS-90 1+6", 1234.9).value).value;
  EXPECT_NEAR(std::abs(left - 1234.9), 1.4e-3, 1e-3);
}

TEST(Sensor, RecordThatNobodyHasFilledIsAnErrorThatSaysSo) {
  const std::pair<Record, const char*> cases[] = {
      {Its90Record{.rtpw = 25, .high = 7}, "subrange 7 are all 0"},
      {Its90Record{.rtpw = 25}, "no range"},
      {Its90Record{.rtpw = 0, .high = 7}, "RTPW is no resistance"},
      {Its90Record{.rtpw = 25, .low = 7, .lowcoefficients = {1}}, "ITS-90 hasn't"},
      {ThermistorTRRecord{}, "all 0"},
      {ThermistorRTRecord{}, "all 0"},
      {PolynomialRecord{{0, 0, 0}}, "all 0"},
      {CvdRecord{}, "R0 is no resistance"},
      {Ipts68Record{.r0 = 100}, "alpha"},
      {Wt90Record{}, "RTPW"}};
  for (const auto& [record, text] : cases) {
    try {
      const CSensor sensor(record);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& error) {
      EXPECT_THAT(error.what(), HasSubstr(text));
    }
    EXPECT_THAT(CheckRecord(record), SizeIs(1));
  }
}

TEST(Sensor, UncertaintyGoesThroughTheSlopes) {
  const CSensor sensor(Its90Record{.rtpw = 25, .high = 8, .highcoefficients = {-2e-4, 2e-6}});
  const double kelvin = 600;
  const double ohms = sensor.Resistance(kelvin).value;
  const double w = ohms / 25;
  const Budget budget =
      sensor.UncertaintyAt(ohms, {.ohms = 1e-5,
                                  .reference = 1e-6,
                                  .parameters = {{"RTPW", 2e-5}, {"a8", 1e-6}, {"b8", 1e-7}}});
  ASSERT_EQ(budget.contributions.size(), 5U);
  const double slope = sensor.Slope(kelvin);
  // By hand: W = R / RTPW, and Wr = W - a (W - 1) - b (W - 1)^2.
  const double bywr = 1 / ReferenceSlope(kelvin);
  const double expected[] = {1 / slope, ohms / slope, -w / slope, -(w - 1) * bywr,
                             -(w - 1) * (w - 1) * bywr};
  double squares = 0;
  for (std::size_t i = 0; i < 5; ++i) {
    const Contribution& one = budget.contributions[i];
    EXPECT_NEAR(one.sensitivity / expected[i], 1, 1e-6) << one.name;
    squares += one.kelvins * one.kelvins;
  }
  EXPECT_NEAR(budget.kelvins, std::sqrt(squares), 1e-12);
  EXPECT_NEAR(budget.contributions[2].kelvins, w / slope * 2e-5, 1e-9);
}

TEST(RecordCheck, GoodRecordsPassAndOddOnesAreTold) {
  for (const Sample& sample : Samples()) {
    std::string texts;
    for (const Finding& finding : CheckRecord(sample.record)) texts += finding.text + "\n";
    EXPECT_EQ(texts, "") << sample.name;
  }
  const Its90Record good = std::get<Its90Record>(Samples()[0].record);
  Its90Record odd = good;
  odd.highcoefficients[0] = -2.3893e-3;  // a slipped digit
  EXPECT_THAT(CheckRecord(odd), Not(IsEmpty()));
  odd = good;
  odd.high = 8;  // the record of another subrange
  EXPECT_THAT(CheckRecord(odd), Not(IsEmpty()));
  odd = good;
  odd.lowcoefficients[0] = 2.4153e-4;  // a lost sign
  EXPECT_THAT(CheckRecord(odd), Not(IsEmpty()));
  CvdRecord cvd = IecRecord();
  cvd.delta = 0.1507;
  ASSERT_THAT(CheckRecord(cvd), SizeIs(1));
  EXPECT_EQ(CheckRecord(cvd)[0].parameter, "delta");
  EXPECT_THAT(CheckRecord(ThermistorTRRecord{{1.129241e-3, 2.341077e-3, 0, 8.775468e-8}}),
              Not(IsEmpty()));
  EXPECT_THAT(CheckRecord(PolynomialRecord{{1, 0, 0}}), SizeIs(1));
}

}  // namespace
}  // namespace vane::physics
