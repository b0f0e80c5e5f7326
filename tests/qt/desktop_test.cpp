// The desktop program: its store of readings and its plot by themselves, and the whole of it on a
// simulated readout.
#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <numeric>
#include <sstream>

#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/main_window.h"
#include "apps/thermoscribe-desktop/plot/plot_view.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "vane/channels/channel.h"

namespace vane::desktop {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr SeriesId kSeries{3, 0};
const TimePoint kStart = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + 9h;

double At(TimePoint time) { return std::chrono::duration<double>(time.time_since_epoch()).count(); }

TEST(ReadingStore, SumsAreThoseOfAllReadings) {
  CReadingStore store(1000);
  std::vector<double> values;
  for (int i = 0; i < 5000; ++i) {
    // Small differences of a large number, which naive sums lose.
    values.push_back(1e6 + 1e-3 * std::sin(i) + (i == 777 ? 0.5 : 0));
    store.Add(kSeries, kStart + i * 1s, values.back());
  }
  const ChannelStatistics sums = store.StatisticsOf(kSeries);
  const double mean = std::accumulate(values.begin(), values.end(), 0.0,
                                      [](double sum, double x) { return sum + (x - 1e6); }) /
                          5000 +
                      1e6;
  double squares = 0;
  for (const double x : values) squares += (x - mean) * (x - mean);
  EXPECT_EQ(sums.count, 5000);
  EXPECT_NEAR(sums.mean, mean, 1e-8);
  EXPECT_NEAR(sums.deviation, std::sqrt(squares / 4999), 1e-10);
  EXPECT_EQ(sums.smallest, *std::ranges::min_element(values));
  EXPECT_EQ(sums.largest, values[777]);
  EXPECT_EQ(sums.last, values.back());
  store.ResetStatistics();
  EXPECT_EQ(store.StatisticsOf(kSeries).count, 0);
  EXPECT_EQ(store.StatisticsOf(kSeries).last, values.back());
  store.Add(kSeries, kStart + 2h, 5);
  EXPECT_TRUE(std::isnan(store.StatisticsOf(kSeries).deviation));
  EXPECT_TRUE(std::isnan(store.StatisticsOf({9, 0}).mean));
}

TEST(ReadingStore, NeitherItsBoundNorAPlaceOfThePlotLosesAPeakOrAGap) {
  CReadingStore store(1000);
  for (int i = 0; i < 20'000; ++i) {
    if (i == 5000) store.Gap(kSeries);
    store.Add(kSeries, kStart + i * 1s, i == 333 ? 99 : i == 12'000 ? -99 : i % 7);
  }
  store.Gap(kSeries);
  store.Gap(kSeries);
  EXPECT_LE(store.Bytes(), 16 * 2100U);
  for (const std::size_t columns : {1U, 10U, 300U}) {
    const auto points = store.PointsOf(kSeries, At(kStart), At(kStart + 20'000s), columns);
    EXPECT_LE(points.size(), 4 * columns + 8);
    EXPECT_EQ(std::ranges::count(points, 99, &PlotPoint::value), 1) << columns;
    EXPECT_EQ(std::ranges::count(points, -99, &PlotPoint::value), 1) << columns;
    EXPECT_EQ(std::ranges::count_if(points, [](auto& p) { return std::isnan(p.value); }), 2);
    EXPECT_TRUE(std::ranges::is_sorted(points, {}, &PlotPoint::time));
  }
  // Of a part, with the neighbours that lines lead to.
  const auto part = store.PointsOf(kSeries, At(kStart + 19'990s), At(kStart + 19'995s), 100);
  EXPECT_LT(part.front().time, At(kStart + 19'990s));
  EXPECT_GT(part.back().time, At(kStart + 19'995s));
}

TEST(ReadingStore, ClockThatIsSetBackKeepsTheOrderAndUnitsStayApart) {
  CReadingStore store;
  store.Add(kSeries, kStart + 100s, 1);
  store.Add(kSeries, kStart, 2);
  store.Add(kSeries, kStart + 101s, 3);
  store.Add({3, 4}, kStart + 102s + 5ms, 100.25);
  const auto points = store.PointsOf(kSeries, At(kStart), At(kStart + 200s), 1000);
  EXPECT_TRUE(std::ranges::is_sorted(points, {}, &PlotPoint::time));
  EXPECT_EQ(store.ValueAt(kSeries, At(kStart + 101s) + 0.4, 5), 3);
  EXPECT_TRUE(std::isnan(store.ValueAt(kSeries, At(kStart + 150s), 5)));
  std::ostringstream csv;
  store.WriteCsv(csv, {{3, "Bath, \"left\""}},
                 [](std::int16_t unit) { return unit == 0 ? "°C" : "Ohm"; });
  EXPECT_EQ(csv.str(),
            "time,channel,name,reading,unit\n"
            "2026-03-01T09:01:40.000Z,3,\"Bath, \"\"left\"\"\",1,°C\n"
            "2026-03-01T09:01:40.000Z,3,\"Bath, \"\"left\"\"\",2,°C\n"
            "2026-03-01T09:01:41.000Z,3,\"Bath, \"\"left\"\"\",3,°C\n"
            "2026-03-01T09:01:42.005Z,3,\"Bath, \"\"left\"\"\",100.25,Ohm\n");
}

TEST(Plot, FollowsUntilTheUserMovesItAndIsSavedInEachForm) {
  CReadingStore store;
  for (int i = 0; i < 100; ++i) {
    store.Add(kSeries, kStart + i * 1s, i);
    store.Add({4, 4}, kStart + i * 1s, 100 + i);
  }
  CPlotView plot(store);
  plot.resize(600, 300);
  plot.SetSeries({kSeries, "Bath", "°C", Qt::red, true});
  plot.SetSeries({{4, 4}, "Bath", "Ohm", Qt::blue, true});
  plot.show();
  std::vector<bool> told;
  plot.OnFollowing([&](bool follows) { told.push_back(follows); });
  for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_PageUp, Qt::Key_Up}) QTest::keyClick(&plot, key);
  EXPECT_TRUE(plot.IsFollowing());
  QTest::keyClick(&plot, Qt::Key_Left);
  EXPECT_FALSE(plot.IsFollowing());
  QTest::keyClick(&plot, Qt::Key_F);
  QTest::keyClick(&plot, Qt::Key_0);
  EXPECT_THAT(told, testing::ElementsAre(false, true, false));
  plot.SetRelative(true);
  const QTemporaryDir folder;
  const std::pair<const char*, const char*> forms[] = {
      {"p.png", "\x89PNG"}, {"p.svg", "<?xml"}, {"p.pdf", "%PDF"}};
  for (const auto& [name, start] : forms) {
    const QString path = folder.path() + "/" + name;
    ASSERT_TRUE(plot.SavePicture(path)) << name;
    std::ifstream file(FromQt(path), std::ios::binary);
    std::string text(5, ' ');
    file.read(text.data(), 5);
    EXPECT_TRUE(text.starts_with(start)) << name;
  }
  EXPECT_FALSE(plot.SavePicture(folder.path() + "/none/p.png"));
}

// The user's configuration in a folder of its own.
class Desktop : public testing::Test {
 protected:
  Desktop() {
    qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8());
    host_.emplace([](std::int32_t) { return true; });
    window_.emplace(*host_);
    window_->show();
  }

  bool Connect(const std::string& options) {
    Connection connection;
    connection.simulated = true;
    connection.simulatoroptions = options;
    connection.timeout = 200ms;
    return window_->Connect(connection);
  }
  std::int64_t Count(std::int16_t channel) {
    return window_->Readings().StatisticsOf(window_->Measuring().SeriesOf(channel)).count;
  }
  // The text of the label or row that holds `part`.
  bool Tells(const QString& part) {
    for (auto* const row :
         window_->findChild<QTreeWidget*>()->findItems(part, Qt::MatchContains, 1)) {
      return !row->text(1).isEmpty();
    }
    return false;
  }

  QTemporaryDir folder_;
  std::optional<CDesktopHost> host_;
  std::optional<CMainWindow> window_;
};

TEST_F(Desktop, MeasuresAllChannelsInUseFromTheFirstSecondOn) {
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(Connect("--scanner"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Count(12) > 0; }));
  std::cout << "first readings of all channels after "
            << std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now() - start)
                   .count()
            << " ms\n";
  ASSERT_TRUE(QTest::qWaitFor([&] { return Count(12) > 1; }));
  EXPECT_EQ(Count(1), 0);  // carries the scanner
  const auto* const table = window_->findChild<CChannelTable*>();
  EXPECT_EQ(table->rowCount(), 11);
  EXPECT_NE(table->item(0, 3)->text(), "-");
  EXPECT_EQ(host_->Channels().size(), 12U);
  EXPECT_TRUE(host_->LastConnection()->simulated);
}

TEST_F(Desktop, LostLineIsToldFoundAgainAndLeavesAGap) {
  ASSERT_TRUE(Connect("--no-scanner --fault at=90:hangup=1.5"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Count(2) > 1; }));
  window_->Measuring().Start({1, 2}, 50ms);
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return window_->Measuring().State() == CMeasuring::EState::LOST; }, 10'000));
  auto* const banner = window_->findChild<QLabel*>("banner");
  EXPECT_TRUE(banner->isVisible());
  EXPECT_TRUE(Tells("can't be reached"));
  const std::int64_t before = Count(2);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Count(2) > before; }, 10'000));
  EXPECT_FALSE(banner->isVisible());
  EXPECT_TRUE(Tells("answers again"));
  const auto [first, last] = window_->Readings().TimeRange();
  const auto points =
      window_->Readings().PointsOf(window_->Measuring().SeriesOf(2), first, last, 100'000);
  EXPECT_EQ(std::ranges::count_if(points, [](auto& p) { return std::isnan(p.value); }), 1);
}

// Nothing is joined over a change of the units, and what is open keeps the line for itself.
TEST_F(Desktop, SettingsChangeInBetweenAndMeasuringGoesOn) {
  ASSERT_TRUE(Connect("--no-scanner"));
  window_->Measuring().Start({1, 2}, 20ms);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Count(2) > 1; }));
  const SeriesId celsius = window_->Measuring().SeriesOf(2);
  host_->Run("changing the units", [&] {
    const std::int64_t before = Count(2);
    QTest::qWait(100);
    EXPECT_EQ(Count(2), before);
    host_->Instrument().SetUnits(ET312BUnits::UNITS_KELVIN);
    host_->Instrument().UpdateUnits();
  });
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return window_->Measuring().SeriesOf(2) != celsius && Count(2) > 0; }));
  const double kelvin = window_->Readings().StatisticsOf(window_->Measuring().SeriesOf(2)).last;
  EXPECT_NEAR(kelvin, window_->Readings().StatisticsOf(celsius).last + 273.15, 0.1);
}

TEST_F(Desktop, ClosesInTheMiddleOfAnExchange) {
  ASSERT_TRUE(Connect("--no-scanner --fault every=1:delay=0.05"));
  QTimer::singleShot(30, [&] { EXPECT_FALSE(window_->close()); });
  ASSERT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }, 10'000));
  window_.reset();
  host_.reset();
}

TEST_F(Desktop, NoReadoutIsToldAndNothingIsConnected) {
  QTimer::singleShot(600, [] {
    if (QWidget* const box = QApplication::activeModalWidget()) box->close();
  });
  EXPECT_FALSE(Connect("--fault every=1:drop"));
  EXPECT_FALSE(host_->IsConnected());
  EXPECT_EQ(window_->findChild<QTreeWidget*>()->topLevelItemCount(), 1);
}

}  // namespace
}  // namespace vane::desktop
