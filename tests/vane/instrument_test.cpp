// The instrument object as a copy of the settings: defaults, dirty tracking, limits.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;

class Instrument : public testing::Test {
 protected:
  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

TEST_F(Instrument, StartsWithItsDefaults) {
  EXPECT_EQ(it_.Model() + it_.FilePath() + it_.HelpFile(), "T312B/opt/vane/libVaneT312B.hlp");
  EXPECT_EQ(it_.SelectedChannel(), -1);
  EXPECT_EQ(it_.Modules(0), nullptr);
  EXPECT_EQ(it_.Units(), ET312BUnits::UNITS_DEGREESC);
  EXPECT_EQ(it_.Oven(), ET312BOven::OVEN_ON);
  EXPECT_FALSE(it_.Changed() || it_.AllowSetSerial() || it_.ReadAfterApply() || it_.HasScanners());
  EXPECT_TRUE(it_.ProtectCalParams() && it_.ProtectConversion() && it_.ProtectSampling() &&
              it_.ProtectUnitsTime());
  for (const auto state : {it_.CalParamPasscodeState(), it_.ConvPasscodeState(),
                           it_.SamplingPasscodeState(), it_.UnitsTimePasscodeState()}) {
    EXPECT_EQ(state, ET312BPasscodeState::PS_DISABLED);
  }
}

// Every tracked setting: writing a new value marks, writing it again does not.
TEST_F(Instrument, OnlyAChangeOfATrackedSettingMarksTheObject) {
  const auto cal = static_cast<ET312BCalParams>(5);
  const std::function<void()> tracked[] = {
      [&] { it_.SetOven(ET312BOven::OVEN_OFF); },
      [&] { it_.SetADC(1.5); },
      [&] { it_.SetCalParams(cal, 2); },
      [&] { it_.SetSampleAction(ET312BSampleAction::SA_STOP); },
      [&] { it_.SetResolution(3); },
      [&] { it_.SetResistanceResolution(-1); },
      [&] { it_.SetRatioResolution(8); },
      [&] { it_.SetScanChannels("2,3"); },
      [&] { it_.SetScanChannel(4); },
      [&] { it_.SetScanSeqChannels(5); },
      [&] { it_.SetScanSeqSteps(6); },
      [&] { it_.SetScanMode(ET312BScanMode::SM_USER_DEFINED); },
      [&] { it_.SetUnits(ET312BUnits::UNITS_W); },
      [&] { it_.SetInterval(99999); },
      [&] { it_.SetConversionTime(2); },
      [&] { it_.SetIntegrationTime(3); },
      [&] { it_.SetSampleN(1); },
      [&] { it_.SetRepetitions(1); },
      [&] { it_.SetChannelMode(ET312BChannelMode::CM_INPUT_1); },
      [&] { it_.SetScannerScanMode(ET312BScannerScanMode::SSM_SCAN); },
      [&] { it_.SetFilterRespTime(2); },
      [&] { it_.SetFilterThreshold(0.5); },
      [&] { it_.SetFilterType(ET312BFilterType::FT_AVERAGE); },
  };
  std::size_t row = 0;
  for (const auto& set : tracked) {
    it_.SetChanged(false);
    set();
    EXPECT_TRUE(it_.Changed()) << row;
    it_.SetChanged(false);
    set();
    EXPECT_FALSE(it_.Changed()) << row++;
  }
  it_.SetADCFormat("0");
  it_.SetCalParamsFormat(cal, "0");
  it_.SetLogSessionInterval(3);
  it_.SetSystemClock(4);
  it_.SetAllowSetSerial(true);
  it_.SetSerial("S");
  it_.SetProtectSampling(false);
  it_.SetUnitsTimePasscodeState(ET312BPasscodeState::PS_ENABLED);
  it_.SetSelectedChannel(-5);
  EXPECT_FALSE(it_.Changed());
}

TEST_F(Instrument, ResolutionsStopAtTheTop) {
  it_.SetResolution(9);
  EXPECT_EQ(it_.Resolution(), 8);
  it_.SetChanged(false);
  it_.SetResolution(9);
  EXPECT_TRUE(it_.Changed()) << "it isn't the value that was asked for";
}

TEST_F(Instrument, AProtectionFlagMovesItsOwnStateAndAStateMovesAlone) {
  it_.SetProtectCalParams(false);
  EXPECT_EQ(it_.CalParamPasscodeState(), ET312BPasscodeState::PS_ENABLED);
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_DISABLED);
  it_.SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
  EXPECT_FALSE(it_.ProtectCalParams());
  it_.SetProtectConversion(false);
  it_.SetProtectConversion(true);
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_DISABLED);
}

TEST_F(Instrument, CalibrationPlacesAndLimits) {
  const struct {
    double minimum;
    double maximum;
    const char* format;
  } rows[] = {{0.1, 990000.0, "0.00000000000"},       {0.1, 5.0, "0.0000000000000"},
              {5.0, 50.0, "0.000000000000"},          {50.0, 500.0, "0.00000000000"},
              {5000.0, 1000000.0, "0.000000000E+00"}, {0, 0, ""}};
  for (int i = 0; i < 6; ++i) {
    const auto cp = static_cast<ET312BCalParams>(i);
    EXPECT_EQ(it_.CalParamsFormat(cp), rows[i].format) << i;
    EXPECT_EQ(CVaneT312B::MinCalParamValue(cp), rows[i].minimum) << i;
    EXPECT_EQ(CVaneT312B::MaxCalParamValue(cp), rows[i].maximum) << i;
  }
  for (const int outside : {-1, 6}) {
    const auto index = static_cast<ET312BCalParams>(outside);
    const std::function<void()> accesses[] = {
        [&] { it_.CalParams(index); }, [&] { it_.SetCalParams(index, 1); },
        [&] { it_.CalParamsFormat(index); }, [&] { it_.SetCalParamsFormat(index, ""); }};
    for (const auto& access : accesses) {
      EXPECT_EQ(CTestHost::ErrorOf(access).Number(), ERR_PLATFORM_OUT_OF_RANGE) << outside;
    }
  }
}

TEST_F(Instrument, FilePathAndRegistryReachTheModules) {
  host_.ConnectWith(true);
  EXPECT_EQ(it_.Modules(1)->Registry(), host_.registry);
  EXPECT_EQ(it_.Modules(1)->Channels(9)->Registry(), host_.registry);
  it_.SetFilePath("/data");
  EXPECT_EQ(it_.Modules(0)->FilePath(), "/data");
  EXPECT_EQ(it_.Modules(1)->Channels(9)->FilePath(), "/data");
}

}  // namespace
}  // namespace vane
