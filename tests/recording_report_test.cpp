// Figures against closed forms and a published series; recordings written and read again.

#include "recorder/recording_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "recorder/export_rows.h"
#include "recorder/statistics.h"
#include "recorder/store.h"

namespace vane::recorder {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

// Brute force, straight from the definition: differences of neighbouring averages, at each place.
double AllanByDefinition(const std::vector<double>& values, std::size_t factor) {
  double squares = 0;
  std::size_t count = 0;
  for (std::size_t i = 0; i + 2 * factor <= values.size(); ++i, ++count) {
    double first = 0;
    double second = 0;
    for (std::size_t j = 0; j < factor; ++j) {
      first += values[i + j];
      second += values[i + factor + j];
    }
    squares += std::pow((second - first) / static_cast<double>(factor), 2);
  }
  return std::sqrt(squares / 2 / static_cast<double>(count));
}

// NIST Special Publication 1065, table of test results for its series of 1000 points.
TEST(AllanDeviation, IsThatOfThePublishedSeriesAndOfTheDefinition) {
  std::vector<double> values;
  for (std::uint64_t n = 1'234'567'890; values.size() < 1000; n = n * 16807 % 2'147'483'647) {
    values.push_back(static_cast<double>(n) / 2'147'483'647.0);
  }
  CAllanDeviation allan;
  for (const double value : values) allan.Add(value);
  const auto points = allan.Points();
  ASSERT_EQ(points.size(), 9U);
  EXPECT_NEAR(points[0].deviation, 2.922319e-1, 5e-8);
  for (const auto& point : points) {
    EXPECT_EQ(point.differences, 1001 - 2 * point.factor);
    const double expected = AllanByDefinition(values, static_cast<std::size_t>(point.factor));
    EXPECT_NEAR(point.deviation, expected, 1e-12) << point.factor;
  }
  EXPECT_NEAR(AllanByDefinition(values, 10), 9.159953e-2, 5e-9) << "the measure itself";
  EXPECT_NEAR(AllanByDefinition(values, 100), 3.241343e-2, 5e-9);
}

TEST(AllanDeviation, KnowsNoDifferenceAcrossABreakAndThinsOutFarOnes) {
  CAllanDeviation broken;
  for (int i = 0; i < 100; ++i) {
    if (i % 20 == 0) broken.Break();
    broken.Add(25 + (i < 20 ? 0 : i < 40 ? 1000 : i < 60 ? -500 : 7000));
  }
  for (const auto& point : broken.Points()) EXPECT_EQ(point.deviation, 0) << point.factor;
  EXPECT_EQ(broken.Points().front().differences, 5 * 19);

  // Alternating values cancel in every even average; a ramp of slope d has d * factor / sqrt(2).
  CAllanDeviation ramp;
  for (int i = 0; i < 40'000; ++i) ramp.Add(1e6 + i % 2 + 1e-3 * i);
  for (const auto& point : ramp.Points()) {
    if (point.factor == 1) continue;
    EXPECT_NEAR(point.deviation, 1e-3 * static_cast<double>(point.factor) / std::sqrt(2.0),
                1e-6 * static_cast<double>(point.factor));
  }
  EXPECT_EQ(ramp.Points().back().factor, 16'384);
}

TEST(Trend, IsTheLineAndItsUncertainty) {
  // Residuals +e, -e, -e, +e ... are orthogonal to constant and slope.
  CTrend trend;
  constexpr int kCount = 4000;
  constexpr double kError = 0.0005;
  for (int i = 0; i < kCount; ++i) {
    const double error = i % 4 == 0 || i % 4 == 3 ? kError : -kError;
    trend.Add(i, 1234.5 + 1e-5 * i + error);
  }
  ASSERT_TRUE(trend.Drift());
  EXPECT_NEAR(trend.Drift()->value, 1e-5, 1e-12);
  const double spread = kCount * (static_cast<double>(kCount) * kCount - 1) / 12;
  EXPECT_NEAR(trend.Drift()->uncertainty, kError * std::sqrt(kCount / (kCount - 2.0) / spread),
              1e-14);
  EXPECT_NEAR(trend.Mean(), 1234.5 + 1e-5 * (kCount - 1) / 2.0, 1e-9);
  CTrend flat;
  flat.Add(1, 5);
  EXPECT_FALSE(flat.Deviation());
  flat.Add(1, 5);
  flat.Add(1, 5);
  EXPECT_EQ(flat.Deviation(), 0);
  EXPECT_FALSE(flat.Drift()) << "all at one time";
}

class Report : public testing::Test {
 protected:
  Report()
      : file_(std::filesystem::temp_directory_path() /
              ("report_test." + std::to_string(getpid()))) {
    std::filesystem::remove(file_);
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
  }
  ~Report() override {
    std::filesystem::remove(file_);
    unsetenv("TZ");
    tzset();
  }

  void Record(const std::function<void(CStore&)>& write) {
    CStore store(file_);
    const SessionHead session{"test", "host", "port", boot_};
    const RecordingHead head{
        "T312B", "{}", {{1, "A-1"}}, {{1, "Input 1", 1}, {3, "Scanner 1", {}}}};
    if (store.IsNew()) {
      store.Begin(head, session, now_);
    } else {
      store.Continue(session, now_);
    }
    write(store);
  }
  // Each 2 s, with a true drift of 0.36 an hour.
  void Readings(CStore& store, int count) {
    std::vector<Reading> readings;
    for (int i = 0; i < count; ++i) {
      now_.utc += 2000;
      now_.monotonic += 2000;
      ++sample_;
      elapsed_ += 2000;
      const double value = 20 + 1e-4 * static_cast<double>(elapsed_) / 1000;
      char text[40];
      std::snprintf(text, sizeof text, "%.4f", value);
      readings.push_back({0, now_, sample_, 1, text, value, "C", 4});
    }
    store.Append(readings, {});
  }
  RecordingReport Made(const RecordingChoice& choice = {}) {
    CRecordingReader reader(file_);
    return MakeReport(reader, choice);
  }

  std::filesystem::path file_;
  std::string boot_ = "one";
  Moment now_{1'792'886'400'000, 7'000'000, 7'000'000};  // 2026-10-25 00:00 UTC
  std::int64_t sample_ = 0;
  std::int64_t elapsed_ = 0;
};

// The drift is that of the bath, whatever was done to the clock and however often the machine began
// anew.
TEST_F(Report, ClocksAndGapsDontSpoilTheFigures) {
  Record([&](CStore& store) {
    Readings(store, 500);
    now_.utc += 86'400'000;  // somebody sets it
    Readings(store, 500);
    now_.utc -= 172'800'000;
    Readings(store, 500);
    now_.monotonic += 20'000;  // ten are missing
    now_.utc += 20'000;
    elapsed_ += 20'000;
    sample_ += 10;
    Readings(store, 500);
  });
  now_.utc += 600'000;
  elapsed_ += 600'000;
  sample_ += 300;
  boot_ = "two";
  now_.monotonic = 30'000;
  Record([&](CStore& store) {
    Readings(store, 500);
    store.Append(*std::make_unique<std::vector<Reading>>(),
                 {{.time = now_, .kind = "alarm", .channel = 1, .number = 5, .text = "a"},
                  {.time = now_, .kind = "lost", .text = "b"}});
  });
  const RecordingReport report = Made();
  EXPECT_EQ(report.readings, 2500);
  EXPECT_NEAR(report.seconds, 2499 * 2 + 20 + 600, 1e-9);
  ASSERT_EQ(report.series.size(), 1U);
  const SeriesReport& series = report.series[0];
  EXPECT_EQ(series.serial, "A-1");
  ASSERT_TRUE(series.drift && series.interval);
  EXPECT_NEAR(series.drift->value, 0.36, 1e-6);
  EXPECT_NEAR(*series.interval, 2, 1e-9);
  EXPECT_EQ(series.gaps, 2);
  EXPECT_EQ(series.missing, 310);
  ASSERT_EQ(series.longest.size(), 2U);
  EXPECT_EQ(series.longest[0].missing, 300);
  ASSERT_FALSE(series.allan.empty());
  EXPECT_NEAR(series.allan[0].tau, 2, 1e-9);
  std::int64_t binned = 0;
  for (const PlotBin& bin : series.bins) binned += bin.count;
  EXPECT_EQ(binned, 2500);
  EXPECT_EQ(report.eventcounts.at("alarm"), 1);

  // Parts of it: from the first moment on, up to the last, which isn't part.
  const std::int64_t first = series.first.utc;
  EXPECT_EQ(Made({.from = first, .to = first + 4000}).readings, 2);
  EXPECT_EQ(Made({.channels = {3}}).readings, 0);
  EXPECT_EQ(Made({.channels = {3}}).eventcounts.size(), 1U) << "what is of no channel is of all";
  EXPECT_THAT(Made({.channels = {3}}).series, IsEmpty());
}

TEST_F(Report, ReadsWhileARecorderWritesAndAFileThatNobodyMayWrite) {
  Record([&](CStore& store) {
    Readings(store, 10);
    CRecordingReader reader(file_);
    Readings(store, 10);
    EXPECT_EQ(MakeReport(reader, {}).readings, 10) << "as it was when it was opened";
    EXPECT_EQ(Made().readings, 20);
  });
  EXPECT_FALSE(std::filesystem::exists(file_.string() + "-wal")) << "one file_ when all is done";
  std::filesystem::permissions(file_, std::filesystem::perms::owner_read);
  EXPECT_EQ(Made().readings, 20);
  EXPECT_THROW(CRecordingReader("/nowhere/at/all"), CStoreError);
}

TEST_F(Report, RowsKeepEveryDigitAndTellTheHourThatComesTwice) {
  // 02:30 of summer, and an hour later 02:30 of winter.
  const Reading reading{7, {1'792'888'200'000, 0, 0}, 5, 3, "25.10000", 25.1, "\u00B0C", 5};
  const auto row = [](ERowForm form, const Reading& one, bool islocal) {
    std::string rows;
    AddExportRow(rows, form, one, "Bath \"A\", left", islocal);
    return rows;
  };
  EXPECT_EQ(
      row(ERowForm::CSV, reading, true),
      "7,2026-10-25T02:30:00.000+02:00,3,\"Bath \"\"A\"\", left\",25.10000,25.1,\u00B0C,5,5\r\n");
  Reading later = reading;
  later.time.utc += 3'600'000;
  later.value = 0.1 + 0.2;
  EXPECT_EQ(row(ERowForm::TEXT, later, true),
            "2026-10-25T02:30:00.000+01:00   3  Bath \"A\", left  \u00B0C     25.10000\n");
  EXPECT_EQ(
      row(ERowForm::JSON, later, false),
      R"({"version":1,"kind":"recordedreading","sequence":7,"time":"2026-10-25T01:30:00.000Z",)"
      R"("channel":3,"name":"Bath \"A\", left","text":"25.10000","reading":0.30000000000000004,)"
      "\"unit\":\"\u00B0C\",\"sample\":5}\n");
}

}  // namespace
}  // namespace vane::recorder
