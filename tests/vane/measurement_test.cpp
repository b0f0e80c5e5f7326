// Readings of inputs and scanner channels, with and without a wait for a new one.
#include <gtest/gtest.h>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;

class Measurement : public testing::Test {
 protected:
  Measurement() {
    host_.ConnectWith(true);
    host_.script.replies["read 12"] = "25.001 C";
    host_.script.replies["read 103"] = " -3.5E1";
    host_.script.replies["read 15"] = "1";
  }

  // What stands behind the last reading's failure: its kind and the error's number; 0 for none.
  std::pair<int, std::int32_t> Trouble() const {
    const MeasurementTrouble* const trouble = it_.LastMeasurementTrouble();
    if (trouble == nullptr) return {-1, 0};
    return {static_cast<int>(trouble->kind), trouble->error.Number()};
  }
  static constexpr int kTimedOut = static_cast<int>(EMeasurementTrouble::TIMED_OUT);
  static constexpr int kCancelled = static_cast<int>(EMeasurementTrouble::CANCELLED);
  static constexpr int kFailed = static_cast<int>(EMeasurementTrouble::FAILED);

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

TEST_F(Measurement, InputsAndScannerChannelsGoByTheirOwnCommands) {
  EXPECT_EQ(it_.QueryMeasurement(2), 25.001);
  EXPECT_EQ(it_.QueryMeasurement(3), -35);
  EXPECT_EQ(it_.QueryMeasurement(12), -35);
  it_.SetSelectedChannel(1);
  EXPECT_EQ(it_.QueryMeasurement(), 25.001);
  it_.SetSelectedChannel(4);
  EXPECT_EQ(it_.QueryMeasurement(), -35);
  EXPECT_EQ(host_.log.Text(),
            "read 12 Channel=2\nread 103 Channel=1\nread 103 Channel=10\nread 12 Channel=1\n"
            "read 103 Channel=2\n");
  EXPECT_FALSE(it_.Changed());
  host_.script.replies["read 12"] = "----";
  EXPECT_EQ(it_.QueryMeasurement(1), 0);
}

TEST_F(Measurement, AChannelThatIsNotThereIsRefusedBeforeAnyExchange) {
  it_.SetHCIDCommError(5);
  for (const int chan : {-1, -2, 0, 13}) {
    const LibraryError error =
        CTestHost::ErrorOf([&] { it_.QueryMeasurement(static_cast<std::int16_t>(chan)); });
    EXPECT_EQ(error.Number(), ERR_INVALID_CHANNEL) << chan;
    EXPECT_EQ(error.HelpFile(), "");
  }
  EXPECT_EQ(host_.log.Text(), "");
}

TEST_F(Measurement, EveryFailureOfAReadingIsOneErrorWhateverFailed) {
  it_.SetHelpFile("mine.hlp");
  it_.SetHCIDCommError(5);
  const auto check = [&](std::int16_t chan, bool wait, std::int32_t cause) {
    const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryMeasurement(chan, wait); });
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x800403EC));
    EXPECT_EQ(error.Source() + error.Description(),
              "CVaneT312B - QueryMeasurementUnable to successfully query measurement.");
    EXPECT_EQ(error.HelpFile() + std::to_string(error.HelpContext()), "mine.hlp5");
    EXPECT_EQ(Trouble(), std::pair(kFailed, cause));
  };
  host_.script.silent = {"read 12", "read 103", "read 15"};
  for (const bool wait : {false, true}) {
    check(1, wait, test::kLineError);
    check(3, wait, test::kLineError);
  }
  // A refused channel has an error of its own.
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(13); }).Number(), ERR_INVALID_CHANNEL);
  EXPECT_EQ(Trouble(), std::pair(-1, 0));
  host_.script.silent.clear();
  host_.script.replies["read 12"] = host_.script.replies["read 103"] = "1e400 C";
  check(2, false, ERR_PLATFORM_OVERFLOW);
  check(4, true, ERR_PLATFORM_OVERFLOW);
  // A selected channel behind the last one is refused by the scanner's own check, within the trap.
  it_.SetSelectedChannel(6);
  host_.script.replies["read 43"] = "5";
  host_.script.replies["read 41"] = "0";
  it_.QueryChannelInfo();
  check(-1, false, ERR_INVALID_CHANNEL);
  host_.script.replies["read 12"] = "1";
  it_.QueryMeasurement(1);
  EXPECT_EQ(Trouble(), std::pair(-1, 0));
}

TEST_F(Measurement, WaitsUntilANewReadingIsThere) {
  int polls = 0;
  host_.script.beforeexchange = [&] { host_.script.replies["read 15"] = ++polls < 3 ? "0" : " 1"; };
  EXPECT_EQ(it_.QueryMeasurement(1, true), 25.001);
  EXPECT_EQ(host_.log.Text(),
            "read 15\nqueue 1000\nread 15\nqueue 1000\nread 15\nread 12 Channel=1\n");
  // A scanner reading passes two waits, one after the other.
  host_.log.Clear();
  EXPECT_EQ(it_.QueryMeasurement(3, true), -35);
  EXPECT_EQ(host_.log.Text(), "read 15\nread 15\nread 103 Channel=1\n");
}

TEST_F(Measurement, AWaitEndsAtItsLimit) {
  host_.script.replies["read 15"] = "0";
  for (const auto& [limit, passes] : {std::pair(-1, 0u), std::pair(0, 0u), std::pair(2500, 3u)}) {
    it_.SetInterval(99999);
    it_.SetNewDataLimit(limit);
    EXPECT_EQ(it_.NewDataLimit(), limit);
    for (const std::int16_t chan : {std::int16_t{1}, std::int16_t{3}}) {
      host_.log.Clear();
      EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(chan, true); }).Number(),
                ERR_MEASUREMENT);
      EXPECT_EQ(host_.log.Count("queue 1000"), passes);
      EXPECT_EQ(host_.log.Count("read 15"), passes + 1);
      EXPECT_EQ(Trouble(), std::pair(kTimedOut, ERR_MEASUREMENT));
    }
  }
}

TEST_F(Measurement, TheUsualLimitLeavesTheInstrumentItsTime) {
  const struct {
    bool scanner;
    std::int32_t interval;
    int channelmode;
    int scannermode;
    std::int16_t channels;
    std::int16_t steps;
    std::int64_t seconds;
  } rows[] = {{false, 0, 0, 0, 0, 0, 120},      // nothing read
              {true, 40, 2, 5, 10, 100, 120},   // no sequence runs
              {true, 41, 3, 1, 10, 100, 123},   // three intervals
              {true, 60, 4, 1, 0, 100, 180},    // the steps belong to another sequence
              {true, 60, 4, 3, 10, 100, 1260},  // each channel behind one of Input 2
              {true, 60, 4, 5, 10, 4, 300},     // the channels belong to another sequence
              {false, 60, 4, 5, 10, 100, 180},  // left over from a scanner
              {true, 99999, 4, 5, 10, 100, 10099899},
              {false, 99999, 1, 0, 0, 0, 299997},
              {true, -7, 4, 5, 10, 100, 120}};
  for (const auto& row : rows) {
    host_.ConnectWith(row.scanner);
    host_.script.replies["read 32"] = std::to_string(row.interval);
    host_.script.replies["read 56"] = std::to_string(row.channelmode);
    host_.script.replies["read 104"] = std::to_string(row.scannermode);
    host_.script.replies["read 106"] = std::to_string(row.channels);
    host_.script.replies["read 108"] = std::to_string(row.steps);
    EXPECT_TRUE(it_.QueryWaitSettings());
    EXPECT_EQ(host_.log.Text(),
              row.scanner ? "read 32\nread 56\nread 104\nread 106\nread 108\n" : "read 32\n");
    EXPECT_EQ(it_.NewDataLimit(), row.seconds * 1000) << row.interval << " " << row.steps;
  }
  host_.script.silent.insert("read 32");
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryWaitSettings(); }).Number(), test::kLineError);

  // The wait itself keeps to it, also beyond what the tick count can tell apart.
  it_.SetInterval(99999);
  host_.ConnectWith(true);
  host_.script.replies["read 15"] = "0";
  host_.platform.passlength = 1;
  it_.SetScannerScanMode(ET312BScannerScanMode::SSM_USER_DEFINED);
  it_.SetChannelMode(ET312BChannelMode::CM_SCANNER_SEQUENCE);
  it_.SetScanSeqSteps(100);
  int passes = 0;
  host_.platform.onqueue = [&] {
    host_.platform.ticks += 1'000'000'000;
    if (++passes == 20) it_.CancelWait();
  };
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(1, true); }).Number(), ERR_MEASUREMENT);
  EXPECT_EQ(Trouble(), std::pair(kTimedOut, ERR_MEASUREMENT));
  EXPECT_EQ(passes, 11);
}

TEST_F(Measurement, TheHostCanCancelAWaitAtOnceAndMeasureAgain) {
  host_.script.replies["read 15"] = "0";
  host_.platform.passlength = 10;
  int passes = 0;
  host_.platform.onqueue = [&] {
    if (++passes == 3) it_.CancelWait();
  };
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(4, true); }).Number(), ERR_MEASUREMENT);
  EXPECT_EQ(passes, 3);
  EXPECT_EQ(Trouble(), std::pair(kCancelled, ERR_MEASUREMENT));
  EXPECT_EQ(host_.log.Count("read 15"), 1u);
  // The next wait is a new one.
  host_.platform.onqueue = [&] { host_.script.replies["read 15"] = "1"; };
  host_.platform.passlength = 0;
  EXPECT_EQ(it_.QueryMeasurement(4, true), -35);
}

TEST_F(Measurement, MeasuringIsSwitchedAndAFailureIsShown) {
  EXPECT_TRUE(it_.StartMeasure());
  host_.script.silent = {"write 10", "write 11"};
  EXPECT_FALSE(it_.StartMeasure());
  EXPECT_FALSE(it_.StopMeasure());
  const std::string box = "box 16 Corvane: An error occurred while attempting to update '";
  const std::string reason = "'.//Error: 4711 - No answer/(line)\n";
  EXPECT_EQ(host_.log.Only({"write", "box"}), "write 10\nwrite 10\n" + box + "Start Measure" +
                                                  reason + "write 11\n" + box + "Stop Measure" +
                                                  reason);
}

}  // namespace
}  // namespace vane
