// The scan sequence and the scan modes, read and written.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class ScanConfiguration : public testing::Test {
 protected:
  void Attach(bool scanner) { host_.ConnectWith(scanner); }
  LibraryError ErrorOfList(const std::string& list) {
    it_.SetScanChannels(list);
    host_.log.Clear();
    return CTestHost::ErrorOf([&] { it_.UpdateScanChannelList(); });
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

TEST_F(ScanConfiguration, SettingsGoOutInTheFieldsOfTheirCommands) {
  Attach(true);
  it_.SetChannelMode(ET312BChannelMode::CM_SCANNER_CHANNEL);
  it_.SetScannerScanMode(ET312BScannerScanMode::SSM_USER_DEFINED);
  it_.SetScanChannel(7);
  it_.SetScanSeqChannels(8);
  it_.SetScanSeqSteps(9);
  EXPECT_TRUE(it_.UpdateChannelMode() && it_.UpdateScannerScanMode() && it_.UpdateScanChannel() &&
              it_.UpdateScanSeqChannels() && it_.UpdateScanSeqSteps() && it_.UpdateScanSeqDelay());
  EXPECT_EQ(host_.log.Text(),
            "write 57 value=3\nwrite 105 value=5\nwrite 117 Channel=7\nwrite 107 value=8\n"
            "write 109 value=9\n");
  host_.script.silent.insert("write 117 Channel=7");
  const LibraryError error = CTestHost::ErrorOf([&] { it_.UpdateScanChannel(); });
  EXPECT_EQ(error.Source() + error.HelpFile(), "CVaneT312B - UpdateScanChannelVaneT312B.hlp");
}

TEST_F(ScanConfiguration, ModesAreNumbersWithAFallback) {
  Attach(true);
  const struct {
    const char* reply;
    int channelmode;
    int scannermode;
  } rows[] = {{"0", 0, 1}, {"1", 1, 1},   {"2", 2, 2}, {"3.0", 3, 3}, {"4", 4, 4},
              {"5", 1, 5}, {"2.5", 1, 1}, {"7", 1, 1}, {"-1", 1, 1},  {"", 0, 1}};
  for (const auto& row : rows) {
    host_.script.replies["read 56"] = host_.script.replies["read 104"] = row.reply;
    EXPECT_TRUE(it_.QueryChannelMode() && it_.QueryScannerScanMode());
    EXPECT_EQ(static_cast<int>(it_.ChannelMode()), row.channelmode) << row.reply;
    EXPECT_EQ(static_cast<int>(it_.ScannerScanMode()), row.scannermode) << row.reply;
  }
}

TEST_F(ScanConfiguration, AScanModeIsWrittenAsTheReadoutAtHandTakesIt) {
  const struct {
    bool override;
    bool scmode;
    const char* without;
    const char* with;
  } rows[] = {{false, false, "2", "2"},
              {false, true, "2", "2"},
              {true, false, "1", "1"},
              {true, true, "0", "5"}};
  for (const bool scanner : {false, true}) {
    Attach(scanner);
    it_.SetScanMode(ET312BScanMode::SM_INPUT_2_SCAN);
    for (const auto& row : rows) {
      host_.log.Clear();
      EXPECT_TRUE(it_.UpdateScanMode(row.override, row.scmode));
      EXPECT_EQ(host_.log.Text(),
                scanner ? std::string("write 57 value=4\nwrite 55 value=1\nwrite 105 value=") +
                              row.with + "\n"
                        : std::string("write 57 value=") + row.without + "\n");
    }
    EXPECT_EQ(it_.ScanMode(), ET312BScanMode::SM_INPUT_2_SCAN);
    EXPECT_EQ(static_cast<int>(it_.ChannelMode()), 0);
    host_.script.silent.insert("write 57");
    EXPECT_EQ(CTestHost::ErrorOf([&] { it_.UpdateScanMode(); }).Source(),
              "CVaneT312B - UpdateScanMode");
    host_.script.silent.clear();
  }
}

TEST_F(ScanConfiguration, AListGoesOutStepByStepWithAPauseBehindEach) {
  Attach(true);
  it_.SetScanChannels("2,12");
  test::CTestWindow window;
  host_.log.Clear();
  EXPECT_TRUE(it_.UpdateScanChannelList(&window));
  EXPECT_EQ(host_.log.Text(),
            "progress\nattach window\nvisible\nwrite 109 value=2\n"
            "start Updating scan sequence steps... 33.333333333333336\nstep\n"
            "write 111 Channel=0 Index=1 value=2\nstep\nqueue 300\n"
            "write 111 Channel=10 Index=2 value=2\nstep\nqueue 300\nfinish\nrelease\n");
  EXPECT_EQ(it_.ScanSeqSteps(), 2);

  // Items are whole numbers, halves to the even neighbour.
  for (const auto& [item, channel] : {std::pair("1.6", "0"), std::pair("12.4", "10"),
                                      std::pair("4.5x", "2"), std::pair(" 3.5", "2")}) {
    EXPECT_EQ(ErrorOfList(item).Number(), 0) << item;
    EXPECT_EQ(host_.log.Count(std::string("write 111 Channel=") + channel + " Index=1 value=1"),
              1u);
  }

  Attach(false);
  EXPECT_TRUE(it_.UpdateScanChannelList());
  EXPECT_EQ(host_.log.Text(), "");
}

TEST_F(ScanConfiguration, AnEventThatMovesTheNumberOfStepsLeavesTheWriteAsItIs) {
  Attach(true);
  for (const int steps : {0, 1, 5}) {
    it_.SetScanChannels("3,4,5");
    host_.log.Clear();
    const auto event = [&] {
      it_.SetScanSeqSteps(static_cast<std::int16_t>(steps));
      it_.SetScanChannels("99");
    };
    host_.script.beforeexchange = host_.platform.onqueue = event;
    EXPECT_TRUE(it_.UpdateScanChannelList()) << steps;
    EXPECT_EQ(host_.log.Only({"write", "start"}),
              "write 109 value=3\nstart Updating scan sequence steps... 25\n"
              "write 111 Channel=1 Index=1 value=3\nwrite 111 Channel=2 Index=2 value=3\n"
              "write 111 Channel=3 Index=3 value=3\n");
  }
}

TEST_F(ScanConfiguration, BadItemStopsAfterWritingTheStepsBeforeIt) {
  Attach(true);
  const struct {
    const char* list;
    std::size_t written;
    int steps;
  } rows[] = {{"13", 0, 1},   {"1", 0, 1},   {"", 0, 1},     {"3,12,13,4", 2, 4},
              {"3,,4", 1, 3}, {"1.4", 0, 1}, {"12.6", 0, 1}, {"3,40000", 1, 2}};
  for (const auto& row : rows) {
    const LibraryError error = ErrorOfList(row.list);
    EXPECT_EQ(error.Number(), ERR_INVALID_CHANNEL) << row.list;
    EXPECT_EQ(error.Description(), "Invalid channel in user-defined scan sequence.");
    EXPECT_EQ(error.Source(), "CVaneT312B - UpdateScanChannelList");
    const std::string writes = host_.log.Only({"write 111"});
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(writes, '\n')), row.written);
    EXPECT_EQ(it_.ScanSeqSteps(), row.steps) << row.list;
    EXPECT_EQ(host_.log.Only({"hide", "finish", "busy"}), "hide\n");
    EXPECT_EQ(host_.log.Count("write 109 value=" + std::to_string(row.steps)), 1u);
  }
  std::string list = "3";
  for (int n = 1; n < 32768; ++n) list += ",3";
  EXPECT_EQ(ErrorOfList(list).Number(), ERR_PLATFORM_OVERFLOW);
  EXPECT_EQ(host_.log.Only({"write"}), "");

  host_.script.replies["read 43"] = "9";
  it_.QueryChannelInfo();
  EXPECT_EQ(ErrorOfList("9").Number(), 0);
  EXPECT_EQ(ErrorOfList("10").Number(), ERR_INVALID_CHANNEL);
  host_.script.silent.insert("write 111");
  EXPECT_EQ(ErrorOfList("9").Number(), kLineError);
}

TEST_F(ScanConfiguration, AnAbortedListIsShorterAndNoFailure) {
  Attach(true);
  it_.SetScanChannels("3,4,5");
  host_.steps = 0;
  host_.abortat = 1;  // behind the number of steps, where nobody is asked
  EXPECT_TRUE(it_.UpdateScanChannelList());
  EXPECT_EQ(host_.log.Count("write 111 Channel=3 Index=3 value=3"), 1u);
  host_.steps = 0;
  host_.abortat = 2;
  host_.log.Clear();
  EXPECT_TRUE(it_.UpdateScanChannelList());
  EXPECT_EQ(host_.log.Only({"write 111", "queue", "box"}), "write 111 Channel=1 Index=1 value=3\n");
}

}  // namespace
}  // namespace vane
