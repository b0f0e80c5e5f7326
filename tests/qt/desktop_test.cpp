// The desktop program: its store of readings and its plot by themselves, and the whole of it on a
// simulated readout.
#include <gmock/gmock.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <numeric>
#include <set>
#include <sstream>

#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/main_window.h"
#include "apps/thermoscribe-desktop/plot/plot_view.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "tests/qt/desktop_fixture.h"
#include "vane/channels/channel.h"
#include "vane/components/user.h"

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
  const std::pair<EPicture, const char*> forms[] = {
      {EPicture::PNG, "\x89PNG"}, {EPicture::SVG, "<?xml"}, {EPicture::PDF, "%PDF"}};
  for (const auto& [form, start] : forms) {
    const QByteArray picture = plot.Picture(form);
    EXPECT_TRUE(picture.startsWith(start)) << start;
    EXPECT_GT(picture.size(), 1000) << start;
  }
}

TEST_F(Desktop, AdapterIsKnownAgainAndNoOtherIsTakenForIt) {
  const auto adapter = [](const std::string& path, const char* serial) {
    return SerialPortRecord{path, "ftdi_sio", "", "", serial, "0403:6001"};
  };
  struct Case {
    const char* adapter;  // what was there; its path is /dev/ttyUSB1
    std::vector<SerialPortRecord> now;
    const char* found;
  };
  const Case cases[] = {
      {"", {}, "/dev/ttyUSB1"},
      {"0403:6001 A", {adapter("/dev/ttyUSB3", "A")}, "/dev/ttyUSB3"},
      {"0403:6001 A", {adapter("/dev/ttyUSB1", "B")}, ""},
      {"0403:6001 ", {adapter("/dev/ttyUSB0", ""), adapter("/dev/ttyUSB1", "")}, "/dev/ttyUSB1"},
      {"0403:6001 A", {}, ""},
  };
  EXPECT_FALSE(host_->LastConnection({}));
  for (const Case& one : cases) {
    host_->Registry().WriteText("Port", "/dev/ttyUSB1", "Desktop");
    host_->Registry().WriteText("Adapter", one.adapter, "Desktop");
    host_->Registry().WriteText("Baud", "2400", "Desktop");
    const auto last = host_->LastConnection(one.now);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->port, one.found);
    EXPECT_EQ(last->baud, EVaneBaudRate::BR_2400);
  }
}

class Measuring : public Desktop {
 protected:
  Measuring() {
    measuring_.OnRound([this] { ++rounds_; });
  }
  void Begin(std::vector<std::int16_t> channels) {
    ASSERT_TRUE(host_->Connect(There(), nullptr));
    measuring_.Start(std::move(channels), 0ms);
    EndRound();
  }
  // Until the round that goes on now is over.
  void EndRound() {
    const int before = rounds_;
    ASSERT_TRUE(QTest::qWaitFor([&] { return rounds_ > before; }, 10'000));
  }
  std::int64_t Count(std::int16_t channel) {
    return store_.StatisticsOf(measuring_.SeriesOf(channel)).count;
  }

  int rounds_ = 0;
  CReadingStore store_;
  CMeasuring measuring_{*host_, store_, 2ms};
};

// A standard resistor reads the same at each sample: what tells its readings apart is how many
// samples a turn takes.
TEST_F(Measuring, ReadingCountsOnceForEachTimeThatItsChannelIsMeasured) {
  struct Case {
    std::vector<const char*> settings;
    std::int16_t channel;
    const char* isnew;
  };
  const std::vector<Case> cases = {
      {{"CHANNEL:MODE 2"}, 2, "111111"},
      {{"CHANNEL:MODE 1"}, 2, "000000"},
      {{"CHANNEL:MODE 0"}, 2, "010101"},
      {{"CHANNEL:MODE 3", "SCANNER:CHANNEL 2"}, 4, "111111"},
      {{"CHANNEL:MODE 3", "SCANNER:CHANNEL 1"}, 4, "000000"},
      {{"CHANNEL:MODE 4", "SCANNER:MODE 1", "SCANNER:SEQUENCE:CHANNELS 2"}, 4, "000100"},
      {{"CHANNEL:MODE 4", "SCANNER:MODE 1", "SCANNER:SEQUENCE:CHANNELS 1"}, 4, "000000"},
      {{"CHANNEL:MODE 4", "SCANNER:MODE 3", "SCANNER:SEQUENCE:CHANNELS 1"}, 2, "010101"},
      {{"CHANNEL:MODE 4", "SCANNER:MODE 5", "SCANNER:SEQUENCE:CHANNELS 1"}, 4, "000010"},
      {{"CHANNEL:MODE 4", "SCANNER:MODE 5"}, 6, "000000"},
  };
  for (const Case& one : cases) {
    Plug();
    Tell({"UNITS O", "CHANNEL 2:PROBE 14", "SCANNER:PROBE 2 14", "SCANNER:PROBE 4 14"});
    Tell(one.settings);
    store_.Clear();
    Begin({one.channel});
    EXPECT_FALSE(measuring_.LatestOf(one.channel).text.empty());  // at once, and not counted
    EXPECT_EQ(Count(one.channel), 0);
    std::string isnew;
    for (std::size_t i = 0; i < 6; ++i) {
      NextSample();
      EndRound();
      const int before = rounds_;
      QTest::qWait(20);
      EXPECT_EQ(rounds_, before);  // the same sample is no second one
      isnew += measuring_.LatestOf(one.channel).isnew ? '1' : '0';
    }
    EXPECT_EQ(one.isnew, isnew) << one.settings.front() << ", channel " << one.channel;
    EXPECT_EQ(Count(one.channel), std::ranges::count(isnew, '1'));
    measuring_.Stop();
  }
}

TEST_F(Measuring, ReadingsOfAnotherUnitAreTakenAgainAndOneRefusedKeepsNoOtherAway) {
  Plug();
  Begin({2, 3});
  const SeriesId celsius = measuring_.SeriesOf(3);
  for (int i = 0; i < 2; ++i) {
    NextSample();
    EndRound();
  }
  const std::int64_t before = store_.StatisticsOf(celsius).count;
  NextSample();
  Tell({"UNITS K"});
  EndRound();
  EXPECT_EQ(store_.StatisticsOf(celsius).count, before);
  EXPECT_NE(measuring_.SeriesOf(3), celsius);
  EXPECT_GT(std::stod(measuring_.LatestOf(3).text), 250);
  NextSample();
  EndRound();
  const ChannelStatistics kelvin = store_.StatisticsOf(measuring_.SeriesOf(3));
  EXPECT_GE(kelvin.count, 1);
  EXPECT_NEAR(kelvin.last, store_.StatisticsOf(celsius).last + 273.15, 0.1);
  EXPECT_EQ(kelvin.last, std::stod(measuring_.LatestOf(3).text));

  // In ohms the temperature is computed here.
  EXPECT_FALSE(measuring_.LatestOf(3).celsius);
  Tell({"UNITS O"});
  NextSample();
  ASSERT_TRUE(QTest::qWaitFor([&] { return measuring_.LatestOf(3).celsius.has_value(); }));
  EXPECT_NEAR(*measuring_.LatestOf(3).celsius, kelvin.last - 273.15, 0.01);
  Tell({"UNITS R"});
  ASSERT_TRUE(QTest::qWaitFor([&] {
    NextSample();
    return std::stod(measuring_.LatestOf(3).text + "9") < 1 && measuring_.LatestOf(3).celsius;
  }));
  EXPECT_NEAR(*measuring_.LatestOf(3).celsius, kelvin.last - 273.15, 0.01);

  measuring_.Start({13, 2}, 0ms);
  EndRound();
  EXPECT_FALSE(measuring_.LatestOf(13).trouble.empty());
  EXPECT_TRUE(measuring_.LatestOf(13).text.empty());
  EXPECT_FALSE(measuring_.LatestOf(2).text.empty());
}

TEST_F(Measuring, LostReadoutIsFoundAgainAndAnotherIsNotTakenForIt) {
  Plug("--no-scanner");
  Begin({2});
  NextSample();
  EndRound();
  EXPECT_EQ(Count(2), 1);
  const auto lost = [&] { return measuring_.State() == CMeasuring::EState::LOST; };
  Unplug();
  ASSERT_TRUE(QTest::qWaitFor(lost));
  Plug("--no-scanner --firmware 5.07");
  ASSERT_TRUE(QTest::qWaitFor([&] {
    measuring_.TryNow();
    return measuring_.Trouble().find("another readout") != std::string::npos;
  }));
  EXPECT_THAT(measuring_.Trouble(), HasSubstr("5.07"));
  EXPECT_EQ(Count(2), 1);
  // What it had set before needn't hold any more.
  Plug("--no-scanner");
  Tell({"UNITS K", "CHANNEL:MODE 1"});
  ASSERT_TRUE(QTest::qWaitFor([&] {
    if (lost()) measuring_.TryNow();
    return !lost();
  }));
  EndRound();
  EXPECT_EQ(host_->Instrument().ChannelMode(), ET312BChannelMode::CM_INPUT_1);
  EXPECT_EQ(measuring_.Units(), ET312BUnits::UNITS_KELVIN);
}

TEST_F(Window, ShowsEachChannelsReadingsAndGoesOnBehindALostLine) {
  Plug();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(window_->Connect(There()));
  ASSERT_TRUE(QTest::qWaitFor([&] { return window_->FirstReading().has_value(); }));
  std::cout << "readings of all channels after "
            << std::chrono::duration_cast<std::chrono::milliseconds>(*window_->FirstReading() -
                                                                     start)
                   .count()
            << " ms\n";
  ASSERT_TRUE(Until([&] { return Count(12) > 2; }));
  ASSERT_EQ(window_->findChild<CChannelTable*>()->rowCount(), 11);  // input 1 carries the scanner
  for (int row = 0; row < 11; ++row) {
    const std::string command =
        row == 0 ? "MEASURE 2?" : "SCANNER:MEASURE " + std::to_string(row) + "?";
    const double now = std::stod(line_->Ask(command)->substr(1));
    EXPECT_NEAR(now, Cell(row, 3).toDouble(), 0.05) << command;
    EXPECT_EQ(Cell(row, 3).section('.', 1).size(), 4);
    EXPECT_EQ(Cell(row, 4), "\u00B0C");
  }
  QTest::keyClick(window_->findChild<CChannelTable*>(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text().count('\n'), 12);

  // Commands have their turn in between, and measuring goes on behind them.
  Trigger("Switch measuring off");
  QTest::qWait(700);  // what was measured before is still fetched
  const std::int64_t stopped = Count(12);
  for (int i = 0; i < 10; ++i) {
    NextSample();
    QTest::qWait(100);
  }
  EXPECT_EQ(Count(12), stopped);
  Trigger("Set the clock to this computer's");
  EXPECT_TRUE(Tells("clock was set"));
  Trigger("Switch measuring on");
  ASSERT_TRUE(Until([&] { return Count(12) > stopped; }));

  for (const auto& one : {std::pair{"Export readings...", "r.csv"}, {"Export plot...", "p.svg"}}) {
    const QString file = folder_.filePath(one.second);
    EXPECT_EQ(
        Through([&] { Trigger(one.first); }, {[&](QWidget& dialog) { GiveFile(dialog, file); }}),
        1U);
    EXPECT_GT(QFileInfo(file).size(), 500) << one.second;
    EXPECT_TRUE(Tells(file + " was written"));
  }

  auto* const banner = window_->findChild<CBanner*>();
  Unplug();
  ASSERT_TRUE(Until([&] { return banner->isVisible(); }));
  EXPECT_EQ(Cell(3, 7), "No connection");
  EXPECT_TRUE(Tells("can't be reached"));
  const std::int64_t before = Count(2);
  Plug();
  banner->findChild<QPushButton*>()->click();
  ASSERT_TRUE(Until([&] { return Count(2) > before; }));
  EXPECT_FALSE(banner->isVisible());
  EXPECT_TRUE(Tells("answers again"));
  const auto [first, last] = window_->Readings().TimeRange();
  const auto points =
      window_->Readings().PointsOf(window_->Measuring().SeriesOf(2), first, last, 100'000);
  EXPECT_EQ(std::ranges::count_if(points, [](auto& p) { return std::isnan(p.value); }), 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

// What takes the focus has a name for screen readers: one of its own, a caption, or that of its
// label.
TEST_F(Window, EverythingThatTakesTheFocusHasAName) {
  Plug();
  ASSERT_TRUE(window_->Connect(There()));
  std::set<std::string> unnamed;
  const auto look = [&](QWidget& top) {
    for (QWidget* const widget : top.findChildren<QWidget*>()) {
      const bool isown = !widget->objectName().startsWith("qt_");
      if (!isown || !widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0) continue;
      QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
      if (face == nullptr || !face->text(QAccessible::Name).isEmpty()) continue;
      unnamed.insert(FromQt(top.windowTitle() + "/" + widget->metaObject()->className() + "/" +
                            widget->objectName()));
    }
  };
  for (QDockWidget* const pane : window_->findChildren<QDockWidget*>()) pane->show();
  look(*window_);
  for (const char* const command :
       {"Settings...", "Channel...", "Download a log...", "Connect..."}) {
    EXPECT_GE(Through([&] { Trigger(command); }, {[&](QWidget& dialog) {
                        look(dialog);
                        dialog.close();
                      }}),
              1U);
  }
  EXPECT_THAT(unnamed, testing::ElementsAre());
}

// From the program's menus through the library's windows to the readout and into a file.
TEST_F(Window, EditsASettingAndAProbeAndDownloadsALog) {
  Plug("--protect conversion");
  ASSERT_TRUE(window_->Connect(There()));
  const auto user = [] { return ui::CUser(*ui::CForm::Active()); };
  const auto yes = [](QWidget& box) { Press(box, "Yes"); };
  EXPECT_EQ(Through([this] { Trigger("Settings..."); },
                    {[&](QWidget& dialog) {
                       user().SelectTab(user().Find<ui::CTabStrip>("tabSettings"), 1);
                       EXPECT_TRUE(user().Pick(user().Find<ui::CDropDown>("cboUnits"), 2));
                       Press(dialog, "OK");
                     },
                     yes}),
            2U);
  EXPECT_EQ(line_->Ask("UNITS?"), "=K");
  ASSERT_TRUE(Until([&] { return Cell(0, 4) == "K" && Cell(0, 3) != "-"; }));

  window_->findChild<CChannelTable*>()->setCurrentCell(3, 0);  // scanner channel 3
  EXPECT_EQ(Through([this] { Trigger("Channel..."); },
                    {[](QWidget& dialog) {
                       EXPECT_EQ(FromQt(dialog.windowTitle()), "Scanner Channel 3 Settings");
                       Press(dialog, "Edit");
                     },
                     [](QWidget& passcode) { GivePasscode(passcode); },
                     [](QWidget& dialog) { Press(dialog, "Conversion Settings..."); },
                     [&](QWidget& editor) {
                       auto& field = user().Find<ui::CTextField>("txtRTPW");
                       user().Focus(field);
                       user().SelectAll();
                       user().Paste("25.5");
                       // A slip, which is told and taken all the same.
                       auto& slip = user().Find<ui::CTextField>("txtHigh(0)");
                       user().Focus(slip);
                       user().SelectAll();
                       user().Paste("-2.4E-2");
                       Press(editor, "OK");
                     },
                     [](QWidget& dialog) { Press(dialog, "OK"); }, yes,
                     [](QWidget& box) { box.close(); }}),
            7U);
  EXPECT_TRUE(Tells("Probe 5 is odd."));
  EXPECT_EQ(std::stod(line_->Ask("PROBE 5:ITS90:RTPW?")->substr(1)), 25.5);

  host_->Registry().WriteText("DownloadFolder", FromQt(folder_.path()), "");
  EXPECT_EQ(Through([this] { Trigger("Download a log..."); },
                    {[](QWidget& dialog) { Press(dialog, "Download"); },
                     [](QWidget& files) { Press(files, "OK"); },
                     [](QWidget& dialog) { Press(dialog, "Close"); }}),
            3U);
  std::ifstream log(FromQt(folder_.filePath("download.txt")));
  const std::string text{std::istreambuf_iterator<char>(log), {}};
  EXPECT_THAT(text, HasSubstr("Thermometer Readout Model: T312B"));
  EXPECT_GT(std::ranges::count(text, '\n'), 10);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_FALSE(Tells("rror"));
}

TEST_F(Window, ClosedInTheMiddleOfAnExchangeItEndsInOrder) {
  for (const int moment : {10, 150, 400, 1000}) {
    Plug("--no-scanner --fault every=1:delay=0.05");
    window_.reset();
    host_.emplace([](std::int32_t) { return true; });
    window_.emplace(*host_);
    window_->show();
    const auto start = std::chrono::steady_clock::now();
    QTimer::singleShot(moment, [&] { window_->close(); });
    window_->Connect(There());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }, 10'000)) << moment;
    EXPECT_LT(std::chrono::steady_clock::now() - start, (moment + 1000) * 1ms);
    const std::uint64_t exchanges = line_->Exchanges();
    QTest::qWait(100);
    EXPECT_EQ(line_->Exchanges(), exchanges) << moment;
    EXPECT_EQ(line_->IgnoredLines(), 0U) << moment;
  }
}

// As a signal does it, which comes whatever is open: nothing waits for a user who isn't there.
TEST_F(Window, ClosedOverAnOpenWindowItClosesThatToo) {
  for (const char* const command : {"Settings...", "Channel...", "Download a log...", "Connect...",
                                    "Restore a snapshot...", "About"}) {
    Plug("--protect conversion");
    window_.reset();
    host_.emplace([](std::int32_t) { return true; });
    window_.emplace(*host_);
    window_->show();
    ASSERT_TRUE(window_->Connect(There()));
    EXPECT_EQ(Through([&] { Trigger(command); }, {[&](QWidget&) { window_->close(); }}), 1U)
        << command;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); })) << command;
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << command;
    EXPECT_EQ(ui::CForm::Active(), nullptr) << command;
    EXPECT_EQ(line_->IgnoredLines(), 0U) << command;
  }
}

TEST_F(Window, NoReadoutIsToldAndNothingIsConnected) {
  Plug("--fault every=1:drop");
  QTimer::singleShot(1200, [] {
    if (QWidget* const box = QApplication::activeModalWidget()) box->close();
  });
  EXPECT_FALSE(window_->Connect(There()));
  EXPECT_FALSE(host_->IsConnected());
  EXPECT_EQ(window_->findChild<QTreeWidget*>()->topLevelItemCount(), 1);
}

TEST_F(Desktop, ProgramTakesAPictureAndRefusesWhatItDoesNotKnow) {
  struct Case {
    QStringList arguments;
    int code;
    const char* says;
  };
  const QString picture = folder_.filePath("window.png");
  const std::vector<Case> cases = {
      {{"--version"}, 0, "thermoscribe-desktop"},
      {{"--simulate=--no-scanner", "--screenshot", picture, "--figures", "1"}, 0, "first reading"},
      {{"--simulate=--no-scanner", "--screenshot", folder_.path(), "--figures", "0.5"},
       1,
       "can't be written"},
      {{"--port", "/nowhere", "--screenshot", picture}, 1, "/nowhere"},
      {{"--simulate=--bad"}, 2, "--bad"},
      {{"--simulate", "--port", "/nowhere"}, 2, "exclude"},
      {{"--port", "/nowhere", "--baud", "9601"}, 2, "9601"},
      {{"--port", "/nowhere", "--timeout", "0"}, 2, "--timeout"},
      {{"--baud", "9600"}, 2, "--baud"},
      {{"readout"}, 2, "readout"},
  };
  for (const Case& one : cases) {
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(THERMOSCRIBE_DESKTOP_PATH, one.arguments);
    ASSERT_TRUE(program.waitForFinished(60'000)) << one.says;
    EXPECT_EQ(one.code, program.exitCode()) << one.says;
    EXPECT_THAT(program.readAll().toStdString(), HasSubstr(one.says));
  }
  EXPECT_GT(QImage(picture).width(), 600);

  Plug();
  QProcess program;
  program.start(THERMOSCRIBE_DESKTOP_PATH, {"--port", ToQt(path_)});
  ASSERT_TRUE(program.waitForStarted());
  while (line_->Exchanges() < 20) QTest::qWait(10);  // in the middle of connecting
  program.terminate();
  ASSERT_TRUE(program.waitForFinished(5000));
  EXPECT_EQ(QProcess::NormalExit, program.exitStatus());
  EXPECT_EQ(0, program.exitCode());
  EXPECT_EQ(0U, line_->IgnoredLines());
}

}  // namespace
}  // namespace vane::desktop
