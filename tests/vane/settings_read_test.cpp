// The whole read of the settings: its order, its stretches, and every way in which it can stop.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class SettingsRead : public testing::Test {
 protected:
  SettingsRead() { Attach(true); }

  void Attach(bool scanner) {
    auto& replies = host_.script.replies;
    for (int id = 5; id <= 8; ++id) replies["read " + std::to_string(id)] = "OFF";
    // Every number is its own, so that none can be taken for another.
    for (const int id : {26, 28, 32, 34, 36, 54, 58, 84, 106, 116}) {
      replies["read " + std::to_string(id)] = std::to_string(id);
    }
    replies["read 56"] = "3";
    replies["read 104"] = "2";
    replies["read 66"] = "6";
    replies["read 68"] = "12";
    replies["read 70"] = "5";
    for (int i = 0; i < 5; ++i) {
      replies["read 76 Index=" + std::to_string(i)] = std::to_string(i + 0.5);
    }
    replies["read 24"] = "EXP";
    replies["read 60"] = "SAMPLE N";
    replies["read 86"] = "on";
    replies["read 108"] = "2";
    replies["read 110"] = "";
    replies["read 110 Index=1"] = "1";
    replies["read 136"] = replies["read 112"] = "5";
    replies["read 168"] = "OHM";
    host_.ConnectWith(scanner);
  }
  void Reset() {
    host_.log.Clear();
    host_.steps = 0;
    host_.script.exchanges = 0;
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

constexpr char kSettings[] =
    "write 0\nread 18 mayfail\nread 43\nread 41\nread 5\nread 6\nread 7\nread 8\nread 43\n"
    "read 24\nread 26\nread 28\nread 168\nread 60\nread 58\nread 32\nread 34\nread 36\nread 66\n"
    "read 68\nread 70\nread 56\nread 54\nread 76 Index=0\nread 76 Index=1\nread 76 Index=2\n"
    "read 76 Index=3\nread 76 Index=4\nread 84\nread 86\n";
constexpr char kScanner[] =
    "read 116\nread 104\nread 106\nread 108\nread 110 Index=1\nread 110 Index=2\n";
constexpr char kInputs[] = "read 136 Channel=1\nread 136 Channel=2\n";

TEST_F(SettingsRead, AsksForEverythingInItsOrder) {
  std::string scannerchannels;
  for (int n = 1; n <= 10; ++n) scannerchannels += "read 112 Channel=" + std::to_string(n) + "\n";
  test::CTestWindow window;
  EXPECT_TRUE(it_.QueryInfo(&window));
  EXPECT_EQ(host_.log.Only({"read", "write"}),
            std::string(kSettings) + kScanner + kInputs + scannerchannels);
  EXPECT_EQ(host_.log.Only({"start", "hide", "finish", "busy", "box"}),
            "busy on\nstart Reading T312B settings... 3.8461538461538463\nhide\nfinish\n"
            "start Reading M420 settings... 25\nhide\nstart Reading scan sequence steps... 50\n"
            "finish\nbusy on\nstart Reading probe indexes... 50\nfinish\nbusy off\nbusy on\n"
            "start Reading probe indexes... 10\nfinish\nbusy off\nfinish\nbusy off\n");
  EXPECT_EQ(it_.FilterType(), ET312BFilterType::FT_EXPONENTIAL);
  EXPECT_EQ(it_.Units(), ET312BUnits::UNITS_OHMS);
  EXPECT_EQ(it_.SampleAction(), ET312BSampleAction::SA_SAMPLE_N);
  EXPECT_EQ(it_.Oven(), ET312BOven::OVEN_ON);
  EXPECT_EQ(
      std::vector<double>({it_.FilterRespTime(), it_.FilterThreshold(), double(it_.Interval()),
                           double(it_.ConversionTime()), double(it_.IntegrationTime()),
                           double(it_.Repetitions()), double(it_.SampleN()), it_.ADC(),
                           double(it_.ScanSeqChannels()), double(it_.ScanChannel())}),
      std::vector<double>({26, 28, 32, 34, 36, 54, 58, 84, 106, 116}));
  EXPECT_EQ(it_.Resolution() * 100 + it_.ResistanceResolution() * 10 + it_.RatioResolution(), 685);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(it_.CalParams(static_cast<ET312BCalParams>(i)), i + 0.5);
  EXPECT_EQ(it_.ChannelMode(), ET312BChannelMode::CM_SCANNER_CHANNEL);
  EXPECT_EQ(it_.ScannerScanMode(), ET312BScannerScanMode::SSM_INPUT_2_SCAN);
  EXPECT_EQ(host_.log.Count("step"), 1u + 25u + 4u + 1u + 2u + 2u + 10u);
  EXPECT_EQ(host_.log.Count("attach window"), 4u);
  EXPECT_EQ(it_.ScanChannels(), "3,2");
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_ENABLED);
  EXPECT_TRUE(it_.Changed());
}

TEST_F(SettingsRead, LeavesOutWhatIsNotThereOrNotWanted) {
  Attach(false);
  host_.script.replies["read 18"] = "T312B, 5.04";
  EXPECT_TRUE(it_.QueryInfo());
  EXPECT_EQ(host_.log.Only({"read", "write"}), std::string(kSettings) + kInputs);
  Reset();
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_EQ(host_.log.Only({"read", "write"}), kSettings);
  Reset();
  host_.script.replies["read 122"] = host_.script.replies["read 138"] =
      host_.script.replies["read 140"] = host_.script.replies["read 142"] = "1";
  host_.script.replies["read 130"] = "RATIO";
  EXPECT_TRUE(it_.QueryInfo(nullptr, true, true));
  EXPECT_EQ(host_.log.Count("read 130 Probe=5"), 2u);
  EXPECT_EQ(host_.log.Count("invisible") + host_.log.Count("attach none"), 2 * 6u);
  EXPECT_EQ(it_.Firmware(), 5.04);
}

TEST_F(SettingsRead, AModuleThatStopsIsNoFailureButOneThatFailsOrIsMissingIs) {
  host_.abortat = 1u + 25u + 4u + 2u + 1u + 1u;  // the first channel of the inputs
  EXPECT_TRUE(it_.QueryInfo());
  EXPECT_EQ(host_.log.Count("read 112 Channel=10"), 1u);
  host_.abortat.reset();
  host_.script.silent.insert("read 112");
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryInfo(); }).Source(), "CVaneT312B - QueryInfo");
  host_.probesfail = true;
  const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryInfo(); });
  EXPECT_EQ(error.Description(), "Module 1 could not be made.");
}

TEST_F(SettingsRead, EveryStepCanBeStopped) {
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  const std::size_t all = host_.steps;
  for (std::size_t step = 1; step <= all; ++step) {
    Reset();
    host_.abortat = step;
    // The advance before the first step asks nobody, and a stopped list of steps is only shorter.
    const bool asked = step != 1 && step != all - 2 && step != all - 1;
    EXPECT_EQ(it_.QueryInfo(nullptr, false), !asked) << step;
    EXPECT_EQ(host_.log.Only({"box"}),
              asked ? "box 64 Corvane: Aborted querying information.\n" : "");
    EXPECT_EQ(host_.log.Lines().back(), "busy off");
  }
  EXPECT_EQ(it_.ScanChannels(), "3,2");
  Reset();
  it_.SetFilterRespTime(1);
  it_.SetFilterThreshold(1);
  host_.abortat = 7;  // behind the response time
  EXPECT_FALSE(it_.QueryInfo());
  EXPECT_EQ(it_.FilterRespTime(), 26);
  EXPECT_EQ(it_.FilterThreshold(), 1);
  EXPECT_EQ(host_.log.Count("read 28"), 0u);
}

TEST_F(SettingsRead, EveryExchangeThatFailsEndsTheRunAndLeavesTheCursorToTheBox) {
  it_.SetHCIDCommError(4);
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  const std::size_t all = host_.script.exchanges;
  for (std::size_t exchange = 2; exchange <= all; ++exchange) {
    Reset();
    host_.script.failat = exchange;
    const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryInfo(nullptr, false); });
    EXPECT_EQ(error.Number(), kLineError) << exchange;
    EXPECT_EQ(error.Source(), "CVaneT312B - QueryInfo");
    EXPECT_EQ(error.HelpContext(), 4);
    EXPECT_EQ(host_.log.Only({"busy", "box"}), "busy on\n") << exchange;
    EXPECT_EQ(host_.log.Lines().back(), "release");
  }
}

TEST_F(SettingsRead, WhatWasReadBeforeAFailureStays) {
  host_.script.replies["read 24"] = "AVERAGE";
  host_.script.replies["read 168"] = "?";
  EXPECT_FALSE(it_.QueryInfo());
  EXPECT_EQ(host_.log.Only({"box", "hide", "finish"}),
            "hide\nbox 64 Corvane: Failed to successfully query 'Units'.\nfinish\n");
  EXPECT_EQ(it_.FilterType(), ET312BFilterType::FT_AVERAGE);
  EXPECT_EQ(it_.Units(), ET312BUnits::UNITS_NONE);
  EXPECT_EQ(host_.log.Count("read 60"), 0u);
}

TEST_F(SettingsRead, ASequenceWithoutStepsIsADivisionByZero) {
  host_.script.replies["read 108"] = "0";
  const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryInfo(); });
  EXPECT_EQ(error.Number(), ERR_PLATFORM_DIVISION);
  EXPECT_EQ(error.Source(), "CVaneT312B - QueryInfo");
  EXPECT_EQ(it_.ScanChannels(), "");
}

TEST_F(SettingsRead, NumbersBeyondTheirWidthNeverWrap) {
  host_.script.replies["read 32"] = "70000";
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_EQ(it_.Interval(), 70000);
  for (const auto& [command, reply] :
       {std::pair("read 32", "2147483648"), std::pair("read 58", "32768"),
        std::pair("read 110", "32766")}) {
    host_.script.replies[command] = reply;
    EXPECT_EQ(CTestHost::ErrorOf([&] { it_.QueryInfo(nullptr, false); }).Number(),
              ERR_PLATFORM_OVERFLOW)
        << command;
    host_.script.replies[command] = "2.5";
  }
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_EQ(it_.Interval() + it_.SampleN(), 4);
}

TEST_F(SettingsRead, WordsAreFoundAnywhereInTheirOrder) {
  const auto read = [&](const char* id, const char* reply) {
    host_.script.replies[id] = reply;
    it_.QueryInfo(nullptr, false);
  };
  const struct {
    const char* reply;
    int units;
  } units[] = {{"OHM", 4},   {"K OHM", 2}, {"C", 0},  {"RATIO C", 0}, {"F", 1},
               {"RATIO", 6}, {"W", 10},    {"c", -1}, {"", -1},       {"F K", 1},
               {"OHM R", 4}, {"R W", 6},   {"O", -1}};
  for (const auto& row : units) {
    read("read 168", row.reply);
    EXPECT_EQ(static_cast<int>(it_.Units()), row.units) << row.reply;
  }
  host_.script.replies["read 168"] = "C";
  const struct {
    const char* reply;
    int filter;
    int action;
    int oven;
  } rows[] = {{"NONE", 0, 1, 0},         {"AVERAGE", 1, 0, 1},     {"EXPONENTIAL", 2, 1, 0},
              {"SAMPLE N", 0, 2, 1},     {"STOP", 0, 1, 1},        {"RST", 0, 0, 1},
              {"on", 0, 1, 0},           {"off", 0, 1, 1},         {"", 0, 1, 1},
              {"NONE AVERAGE", 0, 0, 0}, {"AVERAGE EXP", 1, 0, 1}, {"ON OFF", 0, 1, 0},
              {"ST SAMPLE N", 0, 1, 1},  {"EXP", 2, 1, 1}};
  for (const auto& row : rows) {
    host_.script.replies["read 60"] = host_.script.replies["read 86"] = row.reply;
    read("read 24", row.reply);
    EXPECT_EQ(static_cast<int>(it_.FilterType()), row.filter) << row.reply;
    EXPECT_EQ(static_cast<int>(it_.SampleAction()), row.action) << row.reply;
    EXPECT_EQ(static_cast<int>(it_.Oven()), row.oven) << row.reply;
  }
}

TEST_F(SettingsRead, AllFourProtectionFlagsAreRead) {
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_FALSE(it_.ProtectConversion() || it_.ProtectCalParams() || it_.ProtectSampling() ||
               it_.ProtectUnitsTime());
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_ENABLED);
  host_.script.replies["read 5"] = "ON";
  host_.script.replies["read 6"] = "NO";
  host_.script.replies["read 7"] = "PROTECTION ON";
  host_.script.replies["read 8"] = "on";
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_TRUE(it_.ProtectConversion() && it_.ProtectSampling());
  EXPECT_FALSE(it_.ProtectCalParams() || it_.ProtectUnitsTime());
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_DISABLED);
}

TEST_F(SettingsRead, SingleReadsHaveTheirOwnLabels) {
  const struct {
    const char* name;
    bool (CVaneT312B::*query)();
    const char* command;
  } rows[] = {{"Units", &CVaneT312B::QueryUnits, "read 168"},
              {"SampleAction", &CVaneT312B::QuerySampleAction, "read 60"},
              {"ChannelMode", &CVaneT312B::QueryChannelMode, "read 56"},
              {"ScannerScanMode", &CVaneT312B::QueryScannerScanMode, "read 104"}};
  for (const auto& row : rows) {
    host_.script.silent.insert(row.command);
    EXPECT_EQ(CTestHost::ErrorOf([&] { std::invoke(row.query, it_); }).Source(),
              std::string("CVaneT312B - Query") + row.name);
  }
}

TEST_F(SettingsRead, TheSequenceIsReadToItsLastStep) {
  it_.SetScanChannels("7,8");
  const struct {
    const char* steps;
    std::size_t abort;
    const char* list;
  } rows[] = {{"1", 0, "3"}, {"2", 31, "3"}, {"-4", 0, ""}};
  for (const auto& row : rows) {
    Reset();
    host_.script.replies["read 108"] = row.steps;
    host_.abortat = row.abort;
    EXPECT_TRUE(it_.QueryInfo(nullptr, false));
    EXPECT_EQ(it_.ScanChannels(), row.list) << row.steps;
  }
  host_.script.replies["read 108"] = "32767";
  EXPECT_TRUE(it_.QueryInfo(nullptr, false));
  EXPECT_EQ(host_.log.Count("read 110 Index=32767"), 1u);
}

}  // namespace
}  // namespace vane
