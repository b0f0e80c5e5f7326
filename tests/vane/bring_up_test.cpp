// Bringing up the line, and finding out who is on the other end.
#include <gtest/gtest.h>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;

class BringUp : public testing::Test {
 protected:
  std::string Initialize(const std::string& fp) {
    host_.log.Clear();
    EXPECT_TRUE(
        it_.InitializeCommunications(fp, static_cast<EVanePortNumber>(3), EVaneBaudRate::BR_2400));
    return host_.log.Text();
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

TEST_F(BringUp, SetsUpThePortInOrderAndSendsNothing) {
  it_.SetRegistry(host_.registry);
  EXPECT_EQ(Initialize("/data"),
            "ReadTries=2\nDataPath=/opt/vane\nInstrumentKind=9\nBaudRate=4\nPortNumber=3\n"
            "AutoClose off\n");
  EXPECT_EQ(host_.registry->asked, "2147483649/");
  host_.registry->values["COMAutoClose"] = 2;  // any value but 0 is true
  EXPECT_NE(Initialize("").find("AutoClose on"), std::string::npos);
}

TEST_F(BringUp, TheDataFolderFollowsFromWhereTheLibraryLies) {
  const struct {
    const char* folder;
    const char* system;
    const char* datapath;
  } rows[] = {
      {"/opt/vane/lib", "/usr/lib", "DataPath=/opt/vane\n"},
      {"/usr/lib", "/usr/lib", "DataPath=/data\n"},
      {"/USR", "/usr/lib", "DataPath=/data\n"},
      {"/usr/lib/vane", "/usr/lib", "DataPath=/usr/lib\n"},
      {"/vane", "/usr/lib", "DataPath=/\n"},
  };
  it_.SetRegistry(host_.registry);
  for (const auto& row : rows) {
    host_.platform.folderoflibrary = row.folder;
    host_.platform.systemfolder = row.system;
    EXPECT_NE(Initialize("/data").find(row.datapath), std::string::npos) << row.folder;
  }
}

TEST_F(BringUp, WithoutARegistryFailsWithItsArgumentsAndKeepsTheNewLine) {
  it_.SetHCIDCommError(5);
  const LibraryError error = CTestHost::ErrorOf([&] {
    it_.InitializeCommunications("/My Data", EVanePortNumber::PORT_2, EVaneBaudRate::BR_9600);
  });
  EXPECT_EQ(error.Source(), "CVaneT312B - InitializeCommunications(),/My Data,2,6");
  EXPECT_EQ(error.Number(), ERR_PLATFORM_CALL);
  EXPECT_NE(it_.Communications(), nullptr);
  host_.registry->values["fails"] = 1;  // with a help topic of its own, which isn't passed on
  it_.SetRegistry(host_.registry);
  const LibraryError helped = CTestHost::ErrorOf([&] { it_.InitializeCommunications(); });
  EXPECT_EQ(helped.HelpFile() + std::to_string(helped.HelpContext()), "0");
}

TEST_F(BringUp, AFailedInitializationIsShownAndGivesFalse) {
  host_.Connect();
  EXPECT_TRUE(it_.InitializeCommunicationSettings());
  host_.script.silent.insert("write 0");
  EXPECT_FALSE(it_.InitializeCommunicationSettings());
  EXPECT_EQ(host_.log.Text(),
            "write 0\nwrite 0\nbusy off\nbox 16 Corvane: An error occurred while attempting to "
            "initialize communications.//Error: 4711 - No answer/(line)\n");
}

TEST(Identification, ModelAndFirmwareAreTakenApartAtTheFirstComma) {
  const struct {
    const char* id;
    const char* model;
    double firmware;
  } rows[] = {
      {"T312B, 5.03", "T312B", 5.03},
      {"  X 1 ,-2e1 rest", "X 1", -20},
      {"T312B", "<unknown>", 0},
      {"T312B,", "T312B", 0},
      {",5.03", "", 5.03},
      {"", "<unknown>", 0},
      {"A,B,5.03", "A", 0},
      {"\tA\t,1", "\tA\t", 1},
  };
  for (const auto& row : rows) {
    std::string model = "before";
    double firmware = 1;
    ExtractModFWFromID(row.id, model, firmware);
    EXPECT_EQ(model, row.model) << row.id;
    EXPECT_EQ(firmware, row.firmware) << row.id;
  }
  std::string model;
  double firmware = 0;
  const LibraryError error =
      CTestHost::ErrorOf([&] { ExtractModFWFromID("T, 1e999", model, firmware); });
  EXPECT_EQ(error.Source(), "ExtractModFWFromID - T, 1e999");
  EXPECT_EQ(error.Number(), ERR_PLATFORM_OVERFLOW);
}

TEST_F(BringUp, IdentificationStoresWhatItIsToldToStore) {
  host_.Connect();
  const struct {
    const char* reply;
    bool setprops;
    bool known;
    double firmware;
    bool recent;
  } rows[] = {{"T312B, 5.03 ", false, true, 0, false},
              {"T312B, 5.03 ", true, true, 5.03, true},
              {"OTHER, 5.02", true, true, 5.02, false},
              {"", true, false, 5.02, false}};
  for (const auto& row : rows) {
    host_.script.replies["read 18"] = row.reply;
    EXPECT_EQ(it_.QueryIdentification(row.setprops), row.known) << row.reply;
    EXPECT_EQ(it_.Identification(), row.reply);
    EXPECT_EQ(it_.Firmware(), row.firmware);
    EXPECT_EQ(it_.VerifyMinimumFirmware(), row.recent);
  }
  EXPECT_EQ(it_.Model(), "OTHER");
  EXPECT_EQ(host_.log.Count("read 18 mayfail"), 4u);
}

TEST_F(BringUp, AFailedIdentificationCarriesTheInstrumentsHelp) {
  host_.Connect();
  it_.SetHelpFile("mine.hlp");
  it_.SetHCIDCommError(77);
  host_.script.silent.insert("read 18");
  const LibraryError error = CTestHost::ErrorOf([&] { it_.QueryIdentification(); });
  EXPECT_EQ(error.Source() + error.Description(), "CVaneT312B - QueryIdentificationNo answer");
  EXPECT_EQ(error.HelpFile() + std::to_string(error.HelpContext()), "mine.hlp77");
}

}  // namespace
}  // namespace vane
