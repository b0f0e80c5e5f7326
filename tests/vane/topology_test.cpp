// How the modules and channels of an instrument are found, laid out and numbered.
#include <gtest/gtest.h>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class Topology : public testing::Test {
 protected:
  // A whole `QueryChannelInfo` on a readout with this firmware.
  bool Query(const std::string& firmware) {
    host_.script.replies["read 18"] = "T312B, " + firmware;
    host_.Connect();
    result_ = false;
    error_ = CTestHost::ErrorOf([&] { result_ = it_.QueryChannelInfo(); });
    return result_;
  }

  std::string Counts() const {
    return std::to_string(it_.NumModules()) + "/" + std::to_string(it_.NumChannels());
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
  bool result_ = false;
  LibraryError error_{0, {}, {}};
};

constexpr char kHead[] =
    "progress\nbusy on\nwrite 0\nread 18 mayfail\nstart Reading T312B settings... "
    "33.333333333333336\nstep\n";
constexpr char kEnd[] = "finish\nrelease\nbusy off\n";
constexpr char kAborted[] =
    "hide\nbusy off\nbox 64 Corvane: Aborted querying information.\nfinish\nrelease\nbusy off\n";

TEST_F(Topology, NewFirmwareIsAskedForItsCounts) {
  for (const bool scanner : {true, false}) {
    host_.script.replies = {{"read 41", scanner ? "1" : "0"}, {"read 43", scanner ? "12" : "2"}};
    EXPECT_TRUE(Query("5.03"));
    EXPECT_EQ(host_.log.Text(), std::string(kHead) + "read 43\nstep\nread 41\nstep\n" + kEnd);
    EXPECT_EQ(Counts(), scanner ? "2/12" : "1/2");
    EXPECT_EQ(it_.HasScanners(), scanner);
    EXPECT_EQ(it_.Modules(1) != nullptr, scanner);
    EXPECT_EQ(it_.Modules(0)->Channels(0)->Enabled(), !scanner);
    EXPECT_TRUE(it_.Modules(0)->Channels(1)->Enabled());
  }
}

TEST_F(Topology, MoreModulesThanTwoAreRefusedInABoxAndNoneIsLeft) {
  host_.script.replies = {{"read 41", "2"}, {"read 43", "22"}};
  EXPECT_TRUE(Query("5.04"));
  EXPECT_EQ(host_.log.Text(),
            std::string(kHead) +
                "read 43\nstep\nread 41\nbusy off\nbox 16 Corvane: An error occurred while "
                "attempting to setup modules.//Error: -2147220502 - Invalid module index/"
                "(CVaneT312B - NumModules)\nstep\n" +
                kEnd);
  EXPECT_EQ(Counts(), "0/22");
  EXPECT_EQ(it_.Modules(0), nullptr);
  EXPECT_EQ(it_.GetChannelReference(3), nullptr);
}

TEST_F(Topology, ACountBeyondAnIntegerIsAnOverflowAndNeverWraps) {
  host_.script.replies = {{"read 41", "32767"}, {"read 43", "2"}};
  EXPECT_FALSE(Query("5.03"));
  EXPECT_EQ(error_.Number(), ERR_PLATFORM_OVERFLOW);
  host_.script.replies = {{"read 41", "0"}, {"read 43", "40000"}};
  EXPECT_FALSE(Query("5.03"));
  EXPECT_EQ(error_.Number(), ERR_PLATFORM_OVERFLOW);
}

// Every failure behind the proof of the scanner is swallowed, and the steps behind it still run.
TEST_F(Topology, OldFirmwareIsProbedForItsScannerAndNoFailureOfThatIsOneOfTheQuery) {
  const std::string unproved = "read 18\nReadTries=1\nread 104\nReadTries=2\nstep\n";
  const auto proved = [](const std::string& kept) {
    return "read 18\nReadTries=1\nread 104\nReadTries=2\nread 110 Index=1\n"
           "write 111 Channel=0 Index=1\nwrite 111 Channel=10 Index=1\n"
           "read 110 Channel=10 Index=1\nwrite 111 Channel=" +
           kept + " Index=1\nstep\n";
  };
  const struct {
    const char* silent;
    const char* counts;
    std::string first;  // of the two probings
    std::string second;
  } rows[] = {
      {"nothing", "2/12", proved("7"), proved("7")},
      {"read 104", "1/2", unproved, unproved},  // no scanner, and nothing is written
      {"read 110", "1/2", proved("0"), proved("0")},
      {"read 110 Channel=10 Index=1", "1/2", proved("7"), proved("7")},
      {"write 111 Channel=0 Index=1", "2/12", proved("7"), proved("7")},
      {"write 111 Channel=10 Index=1", "1/2", proved("7"), proved("7")},
      {"write 111 Channel=7 Index=1", "2/12", proved("7"), proved("10")},
  };
  for (const auto& row : rows) {
    host_.script.keepssteps = true;
    host_.script.steps["1"] = "7";
    host_.script.replies["read 104"] = "1";
    host_.script.silent = {row.silent};
    EXPECT_TRUE(Query("5.02")) << row.silent;
    EXPECT_EQ(Counts(), row.counts) << row.silent;
    EXPECT_EQ(host_.log.Text(), kHead + row.first + row.second + kEnd) << row.silent;
  }
  it_.Communications()->COMPort().SetReadTries(5);
  EXPECT_TRUE(it_.QueryChannelInfo());
  EXPECT_EQ(it_.Communications()->COMPort().ReadTries(), 5);
}

TEST_F(Topology, AFailedExchangeClimbsWithTheOutermostLabelAndLeavesTheBusyCursorUp) {
  host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
  it_.SetHCIDCommError(9);
  for (const std::size_t failing : {2u, 3u, 4u}) {
    host_.script.exchanges = 0;
    host_.script.failat = failing;
    EXPECT_FALSE(Query("5.03"));
    EXPECT_EQ(error_.Source(), "CVaneT312B - QueryChannelInfo");
    EXPECT_EQ(error_.Number(), kLineError);
    EXPECT_EQ(error_.HelpFile() + std::to_string(error_.HelpContext()), "VaneT312B.hlp9");
    EXPECT_EQ(host_.log.Only({"hide", "finish", "release", "busy", "box"}),
              "busy on\nhide\nrelease\n")
        << failing;
  }
  // The old way: its identification is a step that must not fail.
  host_.script.exchanges = 0;
  host_.script.failat = 3;
  EXPECT_FALSE(Query("5.02"));
  EXPECT_EQ(error_.Number(), kLineError);
}

TEST_F(Topology, TheUserCanStopAfterEachStep) {
  const std::string first = std::string(kHead) + "read 43\nstep\n";
  const std::string second = first + "read 41\nstep\n";
  const struct {
    std::size_t step;
    std::string log;
    const char* counts;
  } rows[] = {
      {2, first + kAborted, "0/12"},
      {3, second + kAborted, "2/12"},
      // The reporter's first advance comes before any step: the next one tells.
      {1, second + kEnd, "2/12"},
  };
  for (const auto& row : rows) {
    host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
    host_.steps = 0;
    host_.abortat = row.step;
    EXPECT_EQ(Query("5.03"), row.step == 1);
    EXPECT_EQ(host_.log.Text(), row.log);
    EXPECT_EQ(Counts(), row.counts);
  }
}

TEST_F(Topology, AnotherModelIsRefusedWithItsMessageAndSilenceWithNone) {
  host_.Connect();
  const auto query = [&](const char* id) {
    host_.log.Clear();
    host_.script.replies["read 18"] = id;
    return it_.QueryChannelInfo();
  };
  EXPECT_FALSE(query("X200, 5.03"));
  EXPECT_EQ(host_.log.Text(),
            "progress\nbusy on\nwrite 0\nread 18 mayfail\nhide\nbusy off\nbox 64 Corvane: The "
            "connected instrument is not a model 'T312B'. You must connect a model 'T312B' to "
            "continue.\nfinish\nrelease\nbusy off\n");
  EXPECT_FALSE(query("t312b, 5.03"));
  EXPECT_FALSE(query(""));
  EXPECT_EQ(host_.log.Text(),
            "progress\nbusy on\nwrite 0\nread 18 mayfail\nfinish\nrelease\nbusy off\n");
  host_.script.replies["read 41"] = "0";
  host_.script.replies["read 43"] = "2";
  host_.script.silent.insert("read 104");
  EXPECT_TRUE(query("T312B"));  // no comma: firmware 0, the old way
  EXPECT_EQ(it_.Model(), "<unknown>");
  EXPECT_TRUE(query("ACME, 5.03 T312B"));
}

TEST_F(Topology, EveryChannelHasItsNumbers) {
  host_.ConnectWith(true);
  for (std::int16_t chn = 1; chn <= 12; ++chn) {
    const CVaneT312BPRTTHRMChannel* channel = it_.GetChannelReference(chn);
    ASSERT_NE(channel, nullptr);
    EXPECT_EQ(channel->ActualChannel(), chn);
    EXPECT_EQ(channel->ModuleChannel(), chn <= 2 ? chn : chn - 2);
    EXPECT_EQ(channel->Module(), it_.Modules(chn <= 2 ? 0 : 1));
    EXPECT_EQ(it_.GetScanSeqChannelName(chn),
              chn <= 2 ? "Input " + std::to_string(chn) : "Scanner " + std::to_string(chn - 2));
  }
  EXPECT_EQ(it_.GetChannelReference(0), nullptr);
  EXPECT_EQ(it_.GetChannelReference(13), nullptr);
  EXPECT_EQ(it_.Modules(1)->ModuleNumber(), 1);
}

TEST_F(Topology, IndexesOutsideTheInstrumentAreRefused) {
  host_.ConnectWith(true);
  it_.SetSelectedChannel(11);
  host_.script.replies["read 43"] = "22";
  const struct {
    std::function<void()> access;
    const char* label;
    std::int32_t number;
  } rows[] = {
      {[&] { it_.Modules(-1); }, "Modules", ERR_INVALID_MODULE},
      {[&] { it_.Modules(2); }, "Modules", ERR_INVALID_MODULE},
      {[&] { it_.SetSelectedChannel(12); }, "SelectedChannel", ERR_INVALID_CHANNEL},
      {[&] { it_.QueryChannelInfo(), it_.GetChannelReference(13); }, "GetChannelReference()",
       ERR_INVALID_CHANNEL},
  };
  for (const auto& row : rows) {
    const LibraryError error = CTestHost::ErrorOf(row.access);
    EXPECT_EQ(error.Number(), row.number) << row.label;
    EXPECT_EQ(error.Source(), std::string("CVaneT312B - ") + row.label);
  }
  EXPECT_EQ(it_.SelectedChannel(), 11);
}

TEST_F(Topology, AModuleThatCannotBeMadeIsShownAndTheQueryGoesOn) {
  host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
  host_.probesfail = true;
  EXPECT_TRUE(Query("5.03"));
  EXPECT_EQ(host_.log.Count("box 16 Corvane: An error occurred while attempting to setup "
                            "modules.//Error: 4711 - No probe/(CVaneT312BBaseModule - "
                            "Class_Initialize)"),
            1u);
  EXPECT_EQ(it_.GetChannelReference(1), nullptr);
}

}  // namespace
}  // namespace vane
