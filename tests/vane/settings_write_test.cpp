// The whole write of the settings, its texts, its pauses and its ends; and the clock.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class SettingsWrite : public testing::Test {
 protected:
  SettingsWrite() { Attach(true); }

  void Attach(bool scanner) {
    host_.ConnectWith(scanner);
    it_.SetScanChannel(4);
    it_.SetScannerScanMode(ET312BScannerScanMode::SSM_USER_DEFINED);
    it_.SetScanSeqChannels(7);
    it_.SetScanChannels("3,12");
    it_.SetScanSeqSteps(2);
    it_.SetFilterType(ET312BFilterType::FT_AVERAGE);
    it_.SetFilterRespTime(2.5);
    it_.SetFilterThreshold(0.0001);
    it_.SetUnits(ET312BUnits::UNITS_OHMS);
    it_.SetSampleAction(ET312BSampleAction::SA_SAMPLE_N);
    it_.SetSampleN(32000);
    it_.SetInterval(99999);
    it_.SetConversionTime(10);
    it_.SetIntegrationTime(9999);
    it_.SetResolution(3);
    it_.SetResistanceResolution(4);
    it_.SetRatioResolution(5);
    it_.SetChannelMode(ET312BChannelMode::CM_SCANNER_SEQUENCE);
    it_.SetRepetitions(1);
    for (std::int16_t i = 0; i < CVaneT312B::NumCalParams(); ++i) {
      it_.SetCalParams(static_cast<ET312BCalParams>(i), std::pow(10, i));
    }
    it_.SetADC(1.5);
    it_.SetOven(ET312BOven::OVEN_OFF);
    it_.SetCalParamPasscodeState(ET312BPasscodeState::PS_ENABLED);
    Reset();
  }
  void Reset() {
    host_.log.Clear();
    host_.steps = 0;
    host_.script.exchanges = 0;
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

constexpr char kHead[] = "write 0\nread 18 mayfail\n";
constexpr char kScanner[] =
    "write 117 Channel=4\nwrite 105 value=5\nwrite 107 value=7\nwrite 109 value=2\n"
    "write 111 Channel=1 Index=1 value=2\nwrite 111 Channel=10 Index=2 value=2\n";
constexpr char kSettings[] =
    "write 25 FilterCode=a\nwrite 27 value=2.5\nwrite 29 value=0.0001\nwrite 169 value=O\n"
    "write 61 value=SN\nwrite 59 value=32000\nwrite 33 value=99999\nwrite 35 value=10\n"
    "write 37 value=9999\nwrite 67 value=3\nwrite 69 value=4\nwrite 71 value=5\n"
    "write 57 value=4\nwrite 55 value=1\n";
constexpr char kCalibration[] =
    "write 77 Index=0 value=1.00000000000\nwrite 77 Index=1 value=10.0000000000000\n"
    "write 77 Index=2 value=100.000000000000\nwrite 77 Index=3 value=1000.00000000000\n"
    "write 77 Index=4 value=1.000000000E+04\nwrite 85 value=1.50\nwrite 87 value=OFF\n";

TEST_F(SettingsWrite, EverythingGoesOutInItsOrderWithAPauseBehindEachStep) {
  test::CTestWindow window;
  it_.SetChanged(false);
  EXPECT_TRUE(it_.UpdateInfo(&window));
  EXPECT_EQ(host_.log.Only({"read", "write"}),
            std::string(kHead) + kScanner + kSettings + kCalibration);
  EXPECT_EQ(host_.log.Only({"attach", "visible", "start", "hide", "finish", "release", "busy"}),
            "attach window\nvisible\nbusy on\n"
            "start Updating M420 settings... 33.333333333333336\nhide\nfinish\n"
            "attach window\nvisible\nstart Updating scan sequence steps... 33.333333333333336\n"
            "finish\nrelease\nstart Updating T312B settings... 4.761904761904762\nbusy on\n"
            "finish\nrelease\nbusy off\n");
  // 3 of the scanner, 2 sequence steps, the sequence as a whole, and 21 settings.
  EXPECT_EQ(host_.log.Count("queue 300"), 3u + 2u + 1u + 21u);
  EXPECT_EQ(host_.log.Count("step"), 3u + 3u + 21u);
  EXPECT_NE(host_.log.Text().find("write 59 value=32000\nstep\nqueue 300\nwrite 33"),
            std::string::npos);
  EXPECT_FALSE(it_.Changed());

  Attach(false);
  it_.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  host_.script.replies["read 18"] = "T312B, 9.99";
  EXPECT_TRUE(it_.UpdateInfo());
  EXPECT_EQ(host_.log.Only({"read", "write"}), std::string(kHead) + kSettings);
  EXPECT_EQ(host_.log.Count("step"), 14u);
  EXPECT_EQ(host_.log.Count("busy on"), 1u);
  EXPECT_EQ(it_.Firmware(), 5.03);
}

TEST_F(SettingsWrite, EveryStepCanBeStoppedWithTheDisplayStillUp) {
  EXPECT_TRUE(it_.UpdateInfo());
  const std::size_t all = host_.steps;
  for (std::size_t step = 1; step <= all; ++step) {
    Reset();
    host_.abortat = step;
    // The sequence of channels has a reporter of its own, whose stop only makes it shorter.
    const bool sequence = step >= 4 && step <= 6;
    EXPECT_EQ(it_.UpdateInfo(), sequence) << step;
    EXPECT_EQ(host_.log.Only({"box", "hide"}),
              std::string(step > 3 ? "hide\n" : "") +
                  (sequence ? "" : "box 64 Corvane: Aborted updating information.\n"))
        << step;
    EXPECT_EQ(host_.log.Lines().back(), "busy off");
  }
}

TEST_F(SettingsWrite, EveryExchangeThatFailsFinishesTheRunAndClimbs) {
  it_.SetHCIDCommError(4);
  EXPECT_TRUE(it_.UpdateInfo());
  const std::size_t all = host_.script.exchanges;
  for (std::size_t exchange = 2; exchange <= all; ++exchange) {
    Reset();
    host_.script.failat = exchange;
    const LibraryError error = CTestHost::ErrorOf([&] { it_.UpdateInfo(); });
    EXPECT_EQ(error.Number(), kLineError) << exchange;
    EXPECT_EQ(error.Source(), "CVaneT312B - UpdateInfo");
    EXPECT_EQ(error.HelpContext(), 4);
    const std::string end = host_.log.Text();
    EXPECT_TRUE(end.ends_with("finish\nrelease\nbusy off\n")) << exchange;
    EXPECT_EQ(host_.log.Only({"box"}), "");
    // The display hides for the sequence, and that of the sequence for its own error.
    EXPECT_EQ(host_.log.Count("hide"), exchange <= 5 ? 0u : exchange <= 8 ? 2u : 1u) << exchange;
  }
}

TEST_F(SettingsWrite, AFailedInitializationIsToldAndStopsNothing) {
  Attach(false);
  it_.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  host_.script.failat = 1;
  EXPECT_TRUE(it_.UpdateInfo());
  EXPECT_EQ(host_.log.Count("write 55 value=1"), 1u);
  EXPECT_NE(host_.log.Only({"box"}).find("4711"), std::string::npos);
  for (std::size_t step = 1; step <= 14; ++step) {
    Reset();
    host_.script.failat.reset();
    host_.abortat = step;
    EXPECT_FALSE(it_.UpdateInfo()) << step;
    EXPECT_EQ(host_.script.exchanges, 2 + step);
  }
}

TEST_F(SettingsWrite, TheHeadStopsTheRunBeforeAnythingIsWritten) {
  host_.script.replies["read 18"] = "X100, 1.0";
  EXPECT_FALSE(it_.UpdateInfo());
  EXPECT_EQ(host_.log.Only({"read", "write"}), kHead);
  EXPECT_EQ(host_.log.Lines().back(), "busy off");
  host_.script.replies["read 18"] = "";
  EXPECT_FALSE(it_.UpdateInfo());
}

TEST_F(SettingsWrite, ABadSequenceStopsTheRunBehindTheStepsBeforeIt) {
  it_.SetScanChannels("3,99");
  const LibraryError error = CTestHost::ErrorOf([&] { it_.UpdateInfo(); });
  EXPECT_EQ(error.Number(), ERR_INVALID_CHANNEL);
  EXPECT_EQ(host_.log.Only({"write 111", "write 25"}), "write 111 Channel=1 Index=1 value=2\n");
}

TEST_F(SettingsWrite, ValuesWithoutACodeGoOutWithoutOne) {
  it_.SetUnits(ET312BUnits::UNITS_NONE);
  it_.SetSampleAction(static_cast<ET312BSampleAction>(7));
  it_.SetFilterType(static_cast<ET312BFilterType>(7));
  it_.SetOven(static_cast<ET312BOven>(7));
  it_.SetChannelMode(static_cast<ET312BChannelMode>(-3));
  EXPECT_TRUE(it_.UpdateInfo());
  EXPECT_EQ(host_.log.Only({"write 25", "write 169", "write 61", "write 87", "write 57"}),
            "write 25\nwrite 169\nwrite 61\nwrite 57 value=-3\nwrite 87 value=OFF\n");
}

TEST_F(SettingsWrite, EveryWriteHasItsCodeAndItsLabel) {
  using enum ET312BUnits;
  for (const auto& [units, code] :
       {std::pair(UNITS_DEGREESC, "C"), std::pair(UNITS_DEGREESF, "F"),
        std::pair(UNITS_KELVIN, "K"), std::pair(UNITS_RATIO, "R"), std::pair(UNITS_W, "W")}) {
    it_.SetUnits(units);
    EXPECT_TRUE(it_.UpdateUnits());
    EXPECT_EQ(host_.log.Lines().back(), std::string("write 169 value=") + code);
  }
  for (const auto& [action, code] :
       {std::pair(ET312BSampleAction::SA_RUN, "R"), std::pair(ET312BSampleAction::SA_STOP, "ST")}) {
    it_.SetSampleAction(action);
    EXPECT_TRUE(it_.UpdateSampleAction());
    EXPECT_EQ(host_.log.Lines().back(), std::string("write 61 value=") + code);
  }
  EXPECT_TRUE(it_.UpdateScanSeqDelay());
  const struct {
    const char* name;
    std::function<void()> write;
  } rows[] = {{"Interval", [&] { it_.UpdateInterval(); }},
              {"Repetitions", [&] { it_.UpdateRepetitions(); }},
              {"RatioResolution", [&] { it_.UpdateRatioResolution(); }},
              {"SystemClock", [&] { it_.UpdateSystemClock(nullptr); }}};
  for (const auto& row : rows) {
    host_.script.failat = host_.script.exchanges + 1;
    EXPECT_EQ(CTestHost::ErrorOf(row.write).Source(),
              std::string("CVaneT312B - Update") + row.name);
  }
}

TEST_F(SettingsWrite, NumbersCarryADotUnderADecimalCommaAndNothingThatIsNoNumberGoesOut) {
  host_.platform.separator = ",";
  it_.SetCalParams(ET312BCalParams::CP_EXTERNAL, 0.1);
  EXPECT_TRUE(it_.UpdateInfo());
  EXPECT_EQ(host_.log.Only({"write 27", "write 77 Index=0", "write 77 Index=4", "write 85"}),
            "write 27 value=2.5\nwrite 77 Index=0 value=0.10000000000\n"
            "write 77 Index=4 value=1.000000000E+04\nwrite 85 value=1.50\n");
  Reset();
  it_.SetADC(std::nan(""));
  const LibraryError error = CTestHost::ErrorOf([&] { it_.UpdateInfo(); });
  EXPECT_EQ(error.Number(), ERR_PLATFORM_OVERFLOW);
  EXPECT_EQ(host_.log.Count("write 85"), 0u);
}

TEST_F(SettingsWrite, TheClockFollowsTheUsersClock) {
  using namespace std::chrono;
  constexpr auto kDay = local_days{2026y / February / 3};
  const struct {
    seconds time;
    const char* users;
    const char* sent;
  } rows[] = {
      {15h + 7min + 9s, "3:07:09 PM", "3:07:09PM"},
      {0s, "12:00:00 AM", "0:00:00AM"},
      {12h, "12:00:00 PM", "0:00:00PM"},
      {15h + 7min + 9s, "15:07:09", "15:07:09"},
      {3h + 7min + 9s, "3:07:09", "03:07:09"},
      {23h + 59min + 59s, "M", "11:59:59M"},
  };
  for (const auto& row : rows) {
    for (const bool stored : {false, true}) {
      Reset();
      host_.platform.longtime = row.users;
      host_.platform.now = stored ? local_seconds{} : local_seconds{kDay + row.time};
      it_.SetSystemClock(stored ? DateOf(kDay + row.time) : 0);
      EXPECT_TRUE(it_.UpdateSystemClock(nullptr));
      EXPECT_EQ(host_.log.Text(),
                std::string("write 288 value=02-03-2026\nwrite 290 value=") + row.sent + "\n");
    }
  }
  // Nothing of an earlier command goes along, and a failure in between leaves the date set.
  host_.platform.longtime = "15:07:09";
  it_.SetSystemClock(DateOf(local_days{850y / March / 4}));
  it_.Communications()->params().Probe = "7";
  Reset();
  host_.script.failat = 2;
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.UpdateSystemClock(nullptr); }).Number(), kLineError);
  EXPECT_EQ(host_.log.Text(), "write 288 value=03-04-0850\nwrite 290 value=00:00:00\n");
  host_.script.failat.reset();

  EXPECT_EQ(MomentOf(-1.25), local_seconds{local_days{1899y / December / 29} + 6h});
  EXPECT_EQ(DateOf(MomentOf(-1.25)), -1.25);
  EXPECT_EQ(MomentOf(0.99999999), local_seconds{local_days{1899y / December / 31}});
  for (const Date date : {3e6, -7e5, std::nan("")}) {
    it_.SetSystemClock(date);
    Reset();
    EXPECT_EQ(CTestHost::ErrorOf([&] { it_.UpdateSystemClock(nullptr); }).Number(),
              ERR_PLATFORM_OVERFLOW);
    EXPECT_EQ(host_.log.Text(), "");
  }
}

}  // namespace
}  // namespace vane
