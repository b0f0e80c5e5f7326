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
  const auto check = [&](std::int16_t chan, bool wait) {
    const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryMeasurement(chan, wait); });
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x800403EC));
    EXPECT_EQ(error.Source() + error.Description(),
              "CVaneT312B - QueryMeasurementUnable to successfully query measurement.");
    EXPECT_EQ(error.HelpFile() + std::to_string(error.HelpContext()), "mine.hlp5");
  };
  host_.script.silent = {"read 12", "read 103", "read 15"};
  for (const bool wait : {false, true}) {
    check(1, wait);
    check(3, wait);
  }
  // A selected channel behind the last one is refused by the scanner's own check, within the trap.
  host_.script.silent.clear();
  it_.SetSelectedChannel(6);
  host_.script.replies["read 43"] = "5";
  host_.script.replies["read 41"] = "0";
  it_.QueryChannelInfo();
  check(-1, false);
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
  EXPECT_EQ(it_.NewDataLimit(), 120000);
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(1, true); }).Number(), ERR_MEASUREMENT);
  EXPECT_EQ(host_.log.Count("queue 1000"), 120u);
  host_.log.Clear();
  it_.SetNewDataLimit(0);
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryMeasurement(1, true); }).Number(), ERR_MEASUREMENT);
  EXPECT_EQ(host_.log.Text(), "read 15\n");
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
