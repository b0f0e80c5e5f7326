// Channels and modules as objects: creation, dirty marks, what is passed down, probe numbers.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/fake_probe.h"
#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class MadeChannel : public testing::Test {
 protected:
  CTestHost host_;
};

TEST_F(MadeChannel, IsMadeInOrderAndCountsAsChanged) {
  host_.logsettings = true;
  CVaneT312BPRTTHRMChannel channel(host_.components);
  EXPECT_EQ(host_.log.Text(),
            "probe HelpFile=VaneT312B.hlp\nprobe InputKind=2\nprobe FilePath=/opt/vane/lib\n");
  EXPECT_TRUE(channel.Changed() && channel.Probe()->Changed() && channel.Enabled());
  EXPECT_EQ(channel.ProbeIndex(), -1);
  EXPECT_EQ(channel.ProbeRefResistor(), ET312BProbeRefResistor::PRR_NONE);
}

TEST_F(MadeChannel, MarksItselfAndItsProbeTogether) {
  CVaneT312BPRTTHRMChannel channel(host_.components);
  const std::function<void()> tracked[] = {
      [&] { channel.SetProbeCurrent(25); },
      [&] { channel.SetProbe3WireOffset(-1); },
      [&] { channel.SetProbeRefResistor(ET312BProbeRefResistor::PRR_EXTERNAL); },
      [&] { channel.SetProbeIndex(0); },
  };
  for (const auto& set : tracked) {
    channel.SetChanged(false);
    EXPECT_FALSE(channel.Changed() || channel.Probe()->Changed());
    set();
    EXPECT_TRUE(channel.Changed() && channel.Probe()->Changed());
    channel.SetChanged(false);
    set();
    EXPECT_FALSE(channel.Changed());
  }
  channel.SetProbeCurrent(std::nan(""));
  EXPECT_EQ(channel.ProbeCurrent(), 25);
  channel.SetEnabled(false);
  EXPECT_FALSE(channel.Changed());
  channel.Probe()->SetChanged(true);
  EXPECT_TRUE(channel.Changed());
}

TEST_F(MadeChannel, KeepsTheRegistryThatItsProbeHandsBack) {
  CVaneT312BPRTTHRMChannel channel(host_.components);
  auto& probe = dynamic_cast<test::CFakeProbe&>(*channel.Probe());
  channel.SetRegistry(host_.registry);
  EXPECT_EQ(channel.Registry(), host_.registry);
  probe.replacement = std::make_shared<test::CFakeRegistry>();
  channel.SetRegistry(host_.registry);
  EXPECT_EQ(channel.Registry(), probe.replacement);
}

TEST_F(MadeChannel, CreationFailsUnderTheLabelOfWhatIsMade) {
  host_.probesfail = true;
  EXPECT_EQ(CTestHost::ErrorOf([&] { CVaneT312BPRTTHRMChannel made(host_.components); }).Source(),
            "CVaneT312BPRTTHRMChannel - Class_Initialize");
  EXPECT_EQ(CTestHost::ErrorOf([&] { CVaneM420Multiplexer made(host_.components); }).Source(),
            "CVaneM420Multiplexer - Class_Initialize");
}

TEST_F(MadeChannel, CannotReadWithoutAnInstrument) {
  CVaneT312BPRTTHRMChannel channel(host_.components);
  EXPECT_EQ(CTestHost::ErrorOf([&] { channel.QueryProbeIndex(); }).Source(),
            "CVaneT312BPRTTHRMChannel - QueryProbeIndex");
}

TEST_F(MadeChannel, ModulesRefuseAChannelThatTheyDoNotHave) {
  CVaneT312BBaseModule inputs(host_.components);
  CVaneM420Multiplexer scanner(host_.components);
  const struct {
    CModule& md;
    int channels;
    const char* label;
  } rows[] = {{inputs, 2, "CVaneT312BBaseModule - Get Channels"},
              {scanner, 10, "CVaneM420Multiplexer - Get Channels"}};
  for (const auto& row : rows) {
    EXPECT_FALSE(row.md.Changed());
    EXPECT_EQ(row.md.Channels(static_cast<std::int16_t>(row.channels - 1))->ModuleChannel(),
              row.channels);
    for (const int outside : {-1, row.channels}) {
      const LibraryError error =
          CTestHost::ErrorOf([&] { row.md.Channels(static_cast<std::int16_t>(outside)); });
      EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x800403E9));
      EXPECT_EQ(error.Source(), row.label);
      EXPECT_EQ(error.Description(), "Invalid channel index");
    }
  }
}

class ProbeNumbers : public MadeChannel {
 protected:
  ProbeNumbers() {
    host_.ConnectWith(true);
    host_.script.replies["read 136"] = "2";
    host_.script.replies["read 112"] = "7.5";
  }
  CVaneT312B& it_ = *host_.instrument;
};

TEST_F(ProbeNumbers, AreReadByTheNumberThatTheCommandTakes) {
  for (const int chn : {1, 2, 3, 12}) {
    const auto number = static_cast<std::int16_t>(chn);
    EXPECT_TRUE(it_.GetChannelReference(number)->QueryProbeIndex());
  }
  EXPECT_EQ(host_.log.Text(),
            "read 136 Channel=1\nread 136 Channel=2\nread 112 Channel=1\nread 112 Channel=10\n");
  EXPECT_EQ(it_.GetChannelReference(2)->ProbeIndex(), 2);
  EXPECT_EQ(it_.GetChannelReference(3)->ProbeIndex(), 8);
  host_.script.replies["read 136"] = "40000";
  const LibraryError error =
      CTestHost::ErrorOf([&] { it_.GetChannelReference(1)->QueryProbeIndex(); });
  EXPECT_EQ(error.Number(), ERR_PLATFORM_OVERFLOW);
  EXPECT_EQ(error.HelpFile(), "");
  EXPECT_EQ(it_.GetChannelReference(1)->ProbeIndex(), 2);
}

TEST_F(ProbeNumbers, OfAModuleAreReadUnderOneReporterAndAnAbortCountsBehindTheLast) {
  const std::string run =
      "visible\nbusy on\nstart Reading probe indexes... 50\n"
      "read 136 Channel=1\nstep\nread 136 Channel=2\nstep\n";
  test::CTestWindow window;
  EXPECT_TRUE(it_.Modules(0)->QueryInfo(&window));
  EXPECT_EQ(host_.log.Text(), "progress\nattach window\n" + run + "finish\nrelease\nbusy off\n");
  host_.log.Clear();
  host_.abortat = host_.steps + 2;
  EXPECT_FALSE(it_.Modules(0)->QueryInfo());
  EXPECT_EQ(host_.log.Text(), "progress\nattach none\nin" + run +
                                  "hide\nbusy off\nbox 64 Corvane: Aborted querying information.\n"
                                  "finish\nrelease\nbusy off\n");
  EXPECT_EQ(it_.GetChannelReference(2)->ProbeIndex(), 2);
}

TEST_F(ProbeNumbers, OfAModuleClimbWhenTheyFail) {
  host_.script.silent.insert("read 112 Channel=3");
  const LibraryError error = CTestHost::ErrorOf([&] { it_.Modules(1)->QueryInfo(); });
  EXPECT_EQ(error.Source(), "CVaneM420Multiplexer - QueryInfo");
  EXPECT_EQ(error.Number(), kLineError);
  EXPECT_EQ(host_.log.Only({"hide", "finish", "release", "busy"}), "busy on\nhide\nrelease\n");
  EXPECT_EQ(it_.GetChannelReference(4)->ProbeIndex(), 8);
  EXPECT_EQ(it_.GetChannelReference(5)->ProbeIndex(), -1);
}

// Conversion set-ups: the members in their order, and the type that a code becomes.
class ConversionSetUp : public MadeChannel {
 protected:
  std::string SetTo(int ct) {
    host_.log.Clear();
    EXPECT_TRUE(channel_.SetConversionType(static_cast<EVaneConversionType>(ct)));
    return host_.log.Text();
  }

  CVaneT312BPRTTHRMChannel channel_{host_.components};
};

TEST_F(ConversionSetUp, EveryCodeBecomesAKnownTypeOrNone) {
  for (int ct = -2; ct <= 21; ++ct) {
    const bool known = ct == 0 || ct == 1 || ct == 2 || ct == 4 || ct == 5 || ct == 6 || ct == 10 ||
                       ct == 14 || ct == 15;
    SetTo(ct);
    EXPECT_EQ(static_cast<int>(channel_.Probe()->ConversionType()), known ? ct : -1) << ct;
    EXPECT_EQ(channel_.Probe()->Conversion().Settings() != nullptr, known && ct != 10 && ct != 15);
  }
}

TEST_F(ConversionSetUp, SetsFormatsLimitsAndDefaultsInOrder) {
  host_.logsettings = true;
  const std::string end = "conversion FilePath=/opt/vane/lib\n";
  EXPECT_EQ(SetTo(0),
            "probe ConversionType=0\nITS-90.RTPWFormat=##0.0############\n"
            "low.ValueFormat=0.0########E-00\nlow.MinRange=1\nlow.MaxRange=5\n"
            "high.ValueFormat=0.0########E-00\nhigh.MinRange=6\nhigh.MaxRange=11\n"
            "ITS-90.RTPW=25\nlow.Range=-1\nhigh.Range=-1\n" +
                end);
  EXPECT_EQ(SetTo(1),
            "probe ConversionType=1\nIPTS-68.ScaleEnabled=1\n"
            "IPTS-68.ValueFormat(0)=##0.0##########\nIPTS-68.ValueFormat(1)=0.0############\n"
            "IPTS-68.ValueFormat(2)=0.0############\nIPTS-68.ValueFormat(3)=0.0########E-00\n"
            "IPTS-68.ValueFormat(4)=0.0########E-00\nIPTS-68.IPTS68Scale=1\n"
            "IPTS-68.Coefficients(0)=100\nIPTS-68.Coefficients(1)=0.00392597\n"
            "IPTS-68.Coefficients(2)=1.496334\nIPTS-68.Coefficients(3)=0\n"
            "IPTS-68.Coefficients(4)=0\n" +
                end);
  EXPECT_EQ(SetTo(2),
            "probe ConversionType=2\nCVD.ValueFormat(0)=##0.0##########\n"
            "CVD.ValueFormat(1)=0.0############\nCVD.ValueFormat(2)=0.0############\n"
            "CVD.ValueFormat(3)=0.0############\nCVD.Coefficients(0)=100\n"
            "CVD.Coefficients(1)=0.00385\nCVD.Coefficients(2)=1.507\nCVD.Coefficients(3)=0.111\n" +
                end);
  EXPECT_EQ(
      SetTo(14),
      "probe ConversionType=14\nW(T90).RTPWFormat=##0.0###########\nW(T90).RTPW=25.5\n" + end);
  EXPECT_EQ(SetTo(10), "probe ConversionType=10\n" + end);
  EXPECT_EQ(SetTo(15), "probe ConversionType=15\n" + end);
  EXPECT_EQ(SetTo(3), "probe ConversionType=-1\n" + end);
  EXPECT_EQ(SetTo(-1), end);
}

TEST_F(ConversionSetUp, TheSameTypeAgainKeepsItsValuesAndAnotherTypeForgetsThem) {
  SetTo(2);
  const auto cvd = [&]() -> CCVDSettings& {
    return dynamic_cast<CCVDSettings&>(*channel_.Probe()->Conversion().Settings());
  };
  cvd().SetCoefficients(0, 99.5);
  host_.logsettings = true;
  EXPECT_EQ(SetTo(2), "conversion FilePath=/opt/vane/lib\n");
  EXPECT_EQ(cvd().Coefficients(0), 99.5);
  SetTo(0);
  SetTo(2);
  EXPECT_EQ(cvd().Coefficients(0), 100.0);
}

}  // namespace
}  // namespace vane
