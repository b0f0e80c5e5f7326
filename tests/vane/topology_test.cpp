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
  host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
  EXPECT_TRUE(Query("5.03"));
  EXPECT_EQ(host_.log.Text(), std::string(kHead) + "read 43\nstep\nread 41\nstep\n" + kEnd);
  EXPECT_EQ(Counts(), "2/12");
  EXPECT_TRUE(it_.HasScanners());
  EXPECT_FALSE(it_.Modules(0)->Channels(0)->Enabled());
  EXPECT_TRUE(it_.Modules(0)->Channels(1)->Enabled());

  host_.script.replies = {{"read 41", "0"}, {"read 43", "2"}};
  EXPECT_TRUE(Query("5.03"));
  EXPECT_EQ(Counts(), "1/2");
  EXPECT_FALSE(it_.HasScanners());
  EXPECT_EQ(it_.Modules(1), nullptr);
  EXPECT_TRUE(it_.Modules(0)->Channels(0)->Enabled());
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

constexpr char kProbing[] =
    "read 18\nReadTries=1\nread 104\nReadTries=2\nread 110 Index=1\n"
    "write 111 Channel=0 Index=1\nwrite 111 Channel=10 Index=1\nread 110 Channel=10 Index=1\n"
    "write 111 Channel=7 Index=1\nstep\n";

TEST_F(Topology, OldFirmwareIsProbedForItsScanner) {
  host_.script.keepssteps = true;
  host_.script.steps["1"] = "7";
  host_.script.replies["read 104"] = "1";
  EXPECT_TRUE(Query("5.02"));
  EXPECT_EQ(host_.log.Text(), std::string(kHead) + kProbing + kProbing + kEnd);
  EXPECT_EQ(Counts(), "2/12");
  EXPECT_EQ(host_.script.steps["1"], "7");
}

TEST_F(Topology, OldFirmwareWithoutAScannerIsNeverWrittenTo) {
  host_.script.silent.insert("read 104");
  EXPECT_TRUE(Query("5.02"));
  it_.Communications()->COMPort().SetReadTries(5);
  host_.log.Clear();
  EXPECT_TRUE(it_.QueryChannelInfo());
  const std::string probing = "read 18\nReadTries=1\nread 104\nReadTries=5\nstep\n";
  EXPECT_EQ(host_.log.Text(), std::string(kHead) + probing + probing + kEnd);
  EXPECT_EQ(Counts(), "1/2");
}

TEST_F(Topology, AScannerThatDoesNotKeepTheStepIsNoneAndItsStepIsRestored) {
  host_.script.replies = {{"read 104", "1"}, {"read 110", "4"}};
  EXPECT_TRUE(Query("5.02"));
  EXPECT_EQ(Counts(), "1/2");
  EXPECT_EQ(host_.log.Count("write 111 Channel=4 Index=1"), 2u);
}

// Every failure behind the proof of the scanner is swallowed, and the steps behind it still run.
TEST_F(Topology, FailuresOfTheProbeAreNotFailuresOfTheQuery) {
  const struct {
    const char* silent;
    const char* counts;
  } rows[] = {
      {"read 110", "1/2"},
      {"read 110 Channel=10 Index=1", "1/2"},
      {"write 111 Channel=0 Index=1", "2/12"},
      {"write 111 Channel=10 Index=1", "1/2"},
      {"write 111 Channel=7 Index=1", "2/12"},
  };
  for (const auto& row : rows) {
    host_.script.keepssteps = true;
    host_.script.steps["1"] = "7";
    host_.script.replies["read 104"] = "1";
    host_.script.silent = {row.silent};
    EXPECT_TRUE(Query("5.02")) << row.silent;
    EXPECT_EQ(Counts(), row.counts) << row.silent;
    EXPECT_EQ(host_.log.Count("read 18"), 2u);
  }
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

TEST_F(Topology, AFailedInitializationIsShownAndTheRunGoesOn) {
  host_.script.replies = {{"read 41", "0"}, {"read 43", "2"}};
  host_.script.failat = 1;
  EXPECT_TRUE(Query("5.03"));
  EXPECT_EQ(host_.log.Only({"box"}),
            "box 16 Corvane: An error occurred while attempting to initialize "
            "communications.//Error: 4711 - No answer/(line)\n");
}

TEST_F(Topology, TheUserCanStopAfterEachStep) {
  host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
  const struct {
    std::size_t step;
    std::string log;
    const char* counts;
  } rows[] = {
      // The reporter's first advance comes before any step: the next one tells.
      {2, std::string(kHead) + "read 43\nstep\n" + kAborted, "0/12"},
      {3, std::string(kHead) + "read 43\nstep\nread 41\nstep\n" + kAborted, "2/12"},
  };
  for (const auto& row : rows) {
    CTestHost host;
    host.script.replies = host_.script.replies;
    host.script.replies["read 18"] = "T312B, 5.03";
    host.Connect();
    host.abortat = row.step;
    EXPECT_FALSE(host.instrument->QueryChannelInfo());
    EXPECT_EQ(host.log.Text(), row.log);
    EXPECT_EQ(std::to_string(host.instrument->NumModules()) + "/" +
                  std::to_string(host.instrument->NumChannels()),
              row.counts);
  }
}

TEST_F(Topology, TheFirstAdvanceOfTheReporterAsksNobody) {
  host_.script.replies = {{"read 41", "0"}, {"read 43", "2"}, {"read 18", "T312B, 5.03"}};
  host_.Connect();
  host_.abortat = 1;
  EXPECT_TRUE(it_.QueryChannelInfo());
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
  }
  for (const int outside : {-1, 0, 13}) {
    EXPECT_EQ(it_.GetChannelReference(static_cast<std::int16_t>(outside)), nullptr);
  }
  EXPECT_EQ(it_.Modules(0)->StartChannel(), 1);
  EXPECT_EQ(it_.Modules(1)->StartChannel(), 3);
  EXPECT_EQ(it_.Modules(1)->ModuleNumber(), 1);
  EXPECT_EQ(it_.Modules(1)->BaseUnit(), &it_);
  EXPECT_EQ(it_.GetScanSeqChannelName(2), "Input 2");
  EXPECT_EQ(it_.GetScanSeqChannelName(3), "Scanner 1");
  EXPECT_EQ(it_.GetScanSeqChannelName(12), "Scanner 10");
  EXPECT_EQ(it_.GetScanSeqChannelName(-1), "Input -1");
}

TEST_F(Topology, IndexesOutsideTheInstrumentAreRefused) {
  host_.ConnectWith(true);
  for (const int outside : {-1, 2}) {
    const LibraryError error =
        CTestHost::ErrorOf([&] { it_.Modules(static_cast<std::int16_t>(outside)); });
    EXPECT_EQ(error.Number(), ERR_INVALID_MODULE);
    EXPECT_EQ(error.Source() + error.Description(), "CVaneT312B - ModulesInvalid module index");
  }
  host_.script.replies["read 43"] = "22";
  it_.QueryChannelInfo();
  const LibraryError behind = CTestHost::ErrorOf([&] { it_.GetChannelReference(13); });
  EXPECT_EQ(behind.Number(), ERR_INVALID_CHANNEL);
  EXPECT_EQ(behind.Source(), "CVaneT312B - GetChannelReference()");
  host_.ConnectWith(true);
  it_.SetSelectedChannel(11);
  const LibraryError error = CTestHost::ErrorOf([&] { it_.SetSelectedChannel(12); });
  EXPECT_EQ(error.Number(), ERR_INVALID_CHANNEL);
  EXPECT_EQ(error.Source(), "CVaneT312B - SelectedChannel");
  EXPECT_EQ(it_.SelectedChannel(), 11);
  EXPECT_FALSE(it_.Changed());
}

TEST_F(Topology, ARebuildThrowsAwayWhatTheChannelsHeld) {
  host_.ConnectWith(true);
  it_.Modules(1)->Channels(0)->SetProbeIndex(5);
  EXPECT_TRUE(it_.QueryChannelInfo());
  EXPECT_EQ(it_.Modules(1)->Channels(0)->ProbeIndex(), -1);
  EXPECT_TRUE(it_.Changed());
}

TEST_F(Topology, AModuleThatCannotBeMadeIsShownAndTheQueryGoesOn) {
  host_.script.replies = {{"read 41", "1"}, {"read 43", "12"}};
  host_.probesfail = true;
  EXPECT_TRUE(Query("5.03"));
  EXPECT_EQ(host_.log.Only({"box"}),
            "box 16 Corvane: An error occurred while attempting to setup modules.//Error: 4711 - "
            "No probe/(CVaneT312BBaseModule - Class_Initialize)\n");
  EXPECT_EQ(it_.GetChannelReference(1), nullptr);
}

}  // namespace
}  // namespace vane
