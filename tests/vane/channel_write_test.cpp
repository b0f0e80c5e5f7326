// A channel written whole: the assigned probe, its record, and the values of its conversion.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/fake_probe.h"
#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;
using enum EVaneConversionType;

class ChannelWrite : public testing::Test {
 protected:
  ChannelWrite() {
    channel_.SetProbeIndex(4);
    channel_.Probe()->SetSerialNumber("ab-12");
    channel_.SetProbeRefResistor(ET312BProbeRefResistor::PRR_10K_OHM);
    channel_.SetProbeCurrent(1.5);
    channel_.SetProbe3WireOffset(-0.25);
    host_.instrument->SetConvPasscodeState(ET312BPasscodeState::PS_ENABLED);
    Reset();
  }
  void Reset() {
    host_.log.Clear();
    host_.steps = 0;
    host_.script.exchanges = 0;
    host_.script.failat.reset();
    host_.abortat.reset();
  }

  template <class Settings>
  Settings& Use(EVaneConversionType type) {
    channel_.SetConversionType(type);
    return dynamic_cast<Settings&>(*channel_.Probe()->Conversion().Settings());
  }

  // The exchanges behind the conversion type.
  std::string ValuesWritten() {
    Reset();
    EXPECT_TRUE(channel_.UpdateProbeInfo(4));
    const std::string writes = host_.log.Only({"write"});
    return writes.substr(writes.find('\n', writes.find("write 131")) + 1);
  }

  // What the user and the reporters see, from the first value on, of a run that ends early.
  std::string EndOfRun() {
    EXPECT_FALSE(channel_.UpdateProbeInfo(4));
    const std::string seen =
        host_.log.Only({"start", "write 2", "hide", "finish", "release", "busy", "box"});
    return seen.substr(seen.find("write 2"));
  }

  CTestHost host_;
  CVaneT312BPRTTHRMChannel& channel_ = FirstScannerChannel();

 private:
  CVaneT312BPRTTHRMChannel& FirstScannerChannel() {
    host_.ConnectWith(true);
    return *host_.instrument->GetChannelReference(3);
  }
};

constexpr char kRecord[] =
    "start Updating probe 4 information... 20\nwrite 123 Probe=4 value=ab-12\nstep\nqueue 300\n"
    "write 139 Probe=4 value=10K\nstep\nqueue 300\nwrite 141 Probe=4 value=1.5000\nstep\n"
    "queue 300\nwrite 143 Probe=4 value=-0.250000\nstep\nqueue 300\n";

TEST_F(ChannelWrite, AWholeChannelRunsUnderOneReporterInAnother) {
  channel_.SetConversionType(CONV_RATIO);
  test::CTestWindow window;
  const std::string open = "progress\nattach window\nvisible\nbusy on\n";
  const std::string close = "finish\nrelease\nbusy off\n";
  const std::string channel =
      open + "start Updating scanner channel 1 settings... 100\nwrite 113 Probe=4 Channel=1\n" +
      "step\nqueue 300\nhide\n" + open + kRecord;
  EXPECT_TRUE(channel_.UpdateInfo(&window));
  EXPECT_EQ(host_.log.Text(),
            channel + "write 131 Probe=4 value=R\nstep\nqueue 300\nhide\n" + close + close);
  Reset();
  host_.instrument->SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  EXPECT_TRUE(channel_.UpdateInfo(&window));
  EXPECT_EQ(host_.log.Text(), channel + close + close);

  Reset();
  auto& input = *host_.instrument->GetChannelReference(2);
  input.SetProbeIndex(16);
  EXPECT_TRUE(input.UpdateInfo());
  EXPECT_EQ(host_.log.Only({"start Updating channel", "write 137", "write 139"}),
            "start Updating channel 2 settings... 100\nwrite 137 Probe=16 Channel=2\n"
            "write 139 Probe=16\n");
}

TEST_F(ChannelWrite, ResistorsAndTypesHaveShortCodes) {
  const struct {
    int resistor;
    const char* resistorcode;
    EVaneConversionType type;
    const char* typecode;
  } rows[] = {{0, " value=EXT", CONV_ITS90, " value=90"},
              {1, " value=1", CONV_IPTS68, " value=68"},
              {2, " value=10", CONV_CVD, " value=CVD"},
              {3, " value=100", CONV_POLYNOMIAL, " value=POLY"},
              {4, " value=10K", CONV_THERMISTOR_TR, " value=TR"},
              {-1, "", CONV_THERMISTOR_RT, " value=TT"},
              {5, "", CONV_RESISTANCE, " value=O"},
              {0, " value=EXT", CONV_WT90, " value=W"},
              {0, " value=EXT", CONV_RATIO, " value=R"},
              {0, " value=EXT", CONV_NONE, ""}};
  for (const auto& row : rows) {
    Reset();
    channel_.SetProbeRefResistor(static_cast<ET312BProbeRefResistor>(row.resistor));
    channel_.SetConversionType(row.type);
    EXPECT_TRUE(channel_.UpdateProbeInfo(0));
    EXPECT_EQ(host_.log.Only({"write 139", "write 131"}),
              std::string("write 139 Probe=0") + row.resistorcode + "\nwrite 131 Probe=0" +
                  row.typecode + "\n");
  }
}

TEST_F(ChannelWrite, EveryConversionSendsItsValuesInItsFormats) {
  Use<CCVDSettings>(CONV_CVD).SetCoefficients(0, 99.97831);
  host_.platform.separator = ",";
  EXPECT_EQ(ValuesWritten(),
            "write 244 Probe=4 value=99.97831\nwrite 246 Probe=4 value=0.00385\n"
            "write 248 Probe=4 value=1.507\nwrite 250 Probe=4 value=0.111\n");
  EXPECT_EQ(host_.log.Only({"start"}),
            "start Updating probe 4 information... 20\nstart Updating CVD coefficients... 25\n");

  auto& ipts68 = Use<CIPTS68Settings>(CONV_IPTS68);
  ipts68.SetScaleEnabled(false);
  ipts68.SetCoefficients(4, -1.25e-7);
  const std::string values =
      "write 230 Probe=4 value=100.0\nwrite 232 Probe=4 value=0.00392597\n"
      "write 234 Probe=4 value=1.496334\nwrite 240 Probe=4 Range=4 value=0.0E00\n"
      "write 242 Probe=4 Range=4 value=-1.25E-07\n";
  for (const auto& [scale, code] :
       {std::pair(0, " value=90"), std::pair(1, " value=68"), std::pair(2, "")}) {
    ipts68.SetIPTS68Scale(scale);
    EXPECT_EQ(ValuesWritten(), std::string("write 226 Probe=4") + code + "\n" + values);
  }

  Use<CWT90Settings>(CONV_WT90).SetRTPW(25.123456789012);
  EXPECT_EQ(ValuesWritten(), "write 210 Probe=4 value=25.123456789012\n");

  auto& thermistor = Use<CThermistorSettings>(CONV_THERMISTOR_TR);
  thermistor.SetCoefficients(3, 1.234567894e-10);
  EXPECT_EQ(ValuesWritten(),
            "write 260 Probe=4 Index=0 value=0.0E00\nwrite 260 Probe=4 Index=1 value=0.0E00\n"
            "write 260 Probe=4 Index=2 value=0.0E00\n"
            "write 260 Probe=4 Index=3 value=1.23456789E-10\n");
  Use<CThermistorSettings>(CONV_THERMISTOR_RT);
  EXPECT_EQ(ValuesWritten().substr(0, 39), "write 258 Probe=4 Index=0 value=0.0E00\n");
  Use<CPolynomialSettings>(CONV_POLYNOMIAL);
  EXPECT_TRUE(ValuesWritten().ends_with("write 262 Probe=4 Index=10 value=0.0E00\n"));
  test::CFakePolynomial::hasnone = true;
  EXPECT_EQ(ValuesWritten(), "");
  test::CFakePolynomial::hasnone = false;
  EXPECT_EQ(host_.log.Only({"box"}), "");
}

TEST_F(ChannelWrite, SubrangesSendTheCoefficientsThatTheyHave) {
  auto& its90 = Use<CITS90Settings>(CONV_ITS90);
  const auto written = [&](std::int32_t low, std::int32_t high) {
    its90.LowRange().SetRange(low);
    its90.HighRange().SetRange(high);
    std::string fields;
    std::istringstream lines(ValuesWritten());
    for (std::string line; std::getline(lines, line);) {
      fields += line.substr(6, line.find(" value") - 6) + "; ";
    }
    return fields;
  };
  const std::string head = "210 Probe=4; 206 Probe=4; 208 Probe=4; ";
  EXPECT_EQ(written(-1, -1), head);
  EXPECT_EQ(host_.log.Only({"write 206", "write 208"}),
            "write 206 Probe=4 value=0\nwrite 208 Probe=4 value=12\n");
  EXPECT_EQ(written(5, 6), head +
                               "212 Probe=4 Range=5; 214 Probe=4 Range=5; "
                               "218 Probe=4 Range=6; 220 Probe=4 Range=6; "
                               "222 Probe=4 Range=6; 224 Probe=4; ");
  EXPECT_EQ(host_.log.Only({"write 206", "write 208"}),
            "write 206 Probe=4 value=5\nwrite 208 Probe=4 value=6\n");
  EXPECT_EQ(written(2, 10), head +
                                "212 Probe=4 Range=2; 214 Probe=4 Range=2; "
                                "216 Probe=4 Range=2 Index=1; 216 Probe=4 Range=2 Index=2; "
                                "216 Probe=4 Range=2 Index=3; 218 Probe=4 Range=10; ");
  for (std::int32_t i = 0; i < 7; ++i) its90.LowRange().SetCoefficients(i, i + 1);
  for (std::int32_t i = 0; i < 4; ++i) its90.HighRange().SetCoefficients(i, -i - 1);
  written(1, 6);
  EXPECT_EQ(host_.log.Only({"write 21", "write 22"}),
            "write 210 Probe=4 value=25.0\nwrite 212 Probe=4 Range=1 value=1.0E00\n"
            "write 214 Probe=4 Range=1 value=2.0E00\n"
            "write 216 Probe=4 Range=1 Index=1 value=3.0E00\n"
            "write 216 Probe=4 Range=1 Index=2 value=4.0E00\n"
            "write 216 Probe=4 Range=1 Index=3 value=5.0E00\n"
            "write 216 Probe=4 Range=1 Index=4 value=6.0E00\n"
            "write 216 Probe=4 Range=1 Index=5 value=7.0E00\n"
            "write 218 Probe=4 Range=6 value=-1.0E00\nwrite 220 Probe=4 Range=6 value=-2.0E00\n"
            "write 222 Probe=4 Range=6 value=-3.0E00\nwrite 224 Probe=4 value=-4.0E00\n");
  written(2, 10);
  // The run of the conversion leaves the pauses to its ranges.
  EXPECT_EQ(host_.log.Count("queue 300"), 5u + 3u + 6u);
  EXPECT_EQ(host_.log.Count("step"), 5u + 3u + 6u + 2u);
}

TEST_F(ChannelWrite, EveryConversionNamesItsStepsAndWindows) {
  const struct {
    EVaneConversionType type;
    const char* starts;
    std::vector<std::string> steps;  // of the exchanges behind the type
  } rows[] = {
      {CONV_IPTS68,
       "start Updating IPTS-68 coefficients... 16.666666666666668\n",
       {"IPTS-68 scale", "IPTS-68 R0", "IPTS-68 ALPHA", "IPTS-68 DELTA", "IPTS-68 A4",
        "IPTS-68 C4"}},
      {CONV_WT90, "start Updating W(T90) coefficients... 100\n", {"W(T90) RTPW"}},
      {CONV_POLYNOMIAL,
       "start Updating Polynomial coefficients... 9.090909090909092\n",
       {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
      {CONV_THERMISTOR_RT,
       "start Updating Thermistor R(T) coefficients... 25\n",
       {"0", "1", "2", "3"}},
      {CONV_ITS90,
       "start Updating ITS-90 coefficients... 33.333333333333336\n"
       "start Updating low range coefficients... 14.285714285714286\n"
       "start Updating high range coefficients... 25\n",
       {"ITS-90 RTPW", "low range", "high range", "low range coefficients",
        "low range coefficients", "high range coefficients"}},
  };
  test::CTestWindow window;
  for (const auto& row : rows) {
    channel_.SetConversionType(row.type);
    if (row.type == CONV_ITS90) {
      auto& its90 = dynamic_cast<CITS90Settings&>(*channel_.Probe()->Conversion().Settings());
      its90.LowRange().SetRange(5);
      its90.HighRange().SetRange(11);
    }
    Reset();
    EXPECT_TRUE(channel_.UpdateProbeInfo(4, &window));
    const std::string starts = host_.log.Only({"start"});
    EXPECT_EQ(starts.substr(starts.find('\n') + 1), row.starts);
    EXPECT_EQ(host_.log.Count("attach window"), host_.log.Count("progress"));
    for (std::size_t i = 0; i < row.steps.size(); ++i) {
      Reset();
      host_.script.failat = 6 + i;
      EXPECT_FALSE(channel_.UpdateProbeInfo(4));
      EXPECT_NE(host_.log.Only({"box"}).find("attempting to update '" + row.steps[i] + "'."),
                std::string::npos)
          << host_.log.Only({"box"});
      EXPECT_EQ(host_.script.exchanges, 6 + i);
    }
  }
  // Stopped behind the values, the whole of them stay.
  Reset();
  host_.instrument->SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
  EXPECT_TRUE(channel_.UpdateProbeInfo(4));
  EXPECT_EQ(host_.script.exchanges, 4u);
}

TEST_F(ChannelWrite, AStopKeepsWhatIsWrittenAndItsFormatsAreTheChannels) {
  Use<CPolynomialSettings>(CONV_POLYNOMIAL);
  channel_.SetProbeCurrentFormat("0.0");
  channel_.SetProbe3WireOffsetFormat("0.00");
  host_.abortat = 5 + 5;
  EXPECT_FALSE(channel_.UpdateProbeInfo(4));
  EXPECT_EQ(host_.log.Only({"write 141", "write 143"}),
            "write 141 Probe=4 value=1.5\nwrite 143 Probe=4 value=-0.25\n");
  EXPECT_EQ(host_.log.Count("write 262 Probe=4 Index=4 value=0.0E00"), 1u);
  EXPECT_EQ(host_.log.Count("write 262 Probe=4 Index=5 value=0.0E00"), 0u);
}

TEST_F(ChannelWrite, TheSequenceFormShowsAnErrorAndOnlyReleasesItsReporter) {
  Use<CCVDSettings>(CONV_CVD);
  host_.script.failat = 7;
  EXPECT_EQ(EndOfRun(),
            "write 244 Probe=4 value=100.0\nwrite 246 Probe=4 value=0.00385\nbusy off\n"
            "box 16 Corvane: An error occurred while attempting to update 'CVD ALPHA'.//Error: "
            "4711 - No answer/(CVaneT312BPRTTHRMChannel - UpdateCVDALPHA)\nrelease\n"
            "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'Conversion type'.\n"
            "finish\nrelease\nbusy off\n");
  Reset();
  host_.abortat = 6;
  EXPECT_EQ(EndOfRun(),
            "write 244 Probe=4 value=100.0\nhide\nbusy off\n"
            "box 64 Corvane: Aborted updating information.\nfinish\nrelease\nbusy off\n"
            "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'Conversion type'.\n"
            "finish\nrelease\nbusy off\n");
}

TEST_F(ChannelWrite, TheLoopFormHidesAndFinishes) {
  Use<CThermistorSettings>(CONV_THERMISTOR_TR);
  host_.script.failat = 7;
  EXPECT_EQ(EndOfRun(),
            "write 260 Probe=4 Index=0 value=0.0E00\nwrite 260 Probe=4 Index=1 value=0.0E00\n"
            "hide\nbusy off\nbox 16 Corvane: An error occurred while attempting to update '1'.//"
            "Error: 4711 - No answer/(CVaneT312BPRTTHRMChannel - UpdateThermistorTRCoefficient)\n"
            "finish\nrelease\nbusy off\n"
            "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'Conversion type'.\n"
            "finish\nrelease\nbusy off\n");
  Reset();
  host_.abortat = 7;
  EXPECT_EQ(EndOfRun(),
            "write 260 Probe=4 Index=0 value=0.0E00\nwrite 260 Probe=4 Index=1 value=0.0E00\n"
            "hide\nbusy off\nbox 64 Corvane: Aborted updating information.\n"
            "finish\nrelease\nbusy off\n"
            "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'Conversion type'.\n"
            "finish\nrelease\nbusy off\n");
}

TEST_F(ChannelWrite, TheRangeFormLeavesTheWordAndTheCursorToTheConversion) {
  auto& its90 = Use<CITS90Settings>(CONV_ITS90);
  its90.LowRange().SetRange(4);
  const std::string head =
      "write 210 Probe=4 value=25.0\nwrite 206 Probe=4 value=4\nwrite 208 Probe=4 value=12\nhide\n"
      "busy on\nstart Updating low range coefficients... 14.285714285714286\n"
      "write 212 Probe=4 Range=4 value=0.0E00\n";
  const std::string tail =
      "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'low range coefficients'.\n"
      "finish\nrelease\nbusy off\n"
      "hide\nbusy off\nbox 64 Corvane: Failed to successfully update 'Conversion type'.\n"
      "finish\nrelease\nbusy off\n";
  host_.script.failat = 9;
  EXPECT_EQ(EndOfRun(),
            head +
                "hide\nbusy off\nbox 16 Corvane: An error occurred while attempting to update "
                "'low range coefficients'.//Error: 4711 - No answer/(CVaneT312BPRTTHRMChannel - "
                "UpdateITS90LowRangeACoefficient)\nfinish\nrelease\n" +
                tail);
  Reset();
  host_.abortat = 9;
  EXPECT_EQ(EndOfRun(), head + "finish\nrelease\n" + tail);
}

TEST_F(ChannelWrite, EarlyEndsOfTheRecordKeepWhatIsWritten) {
  channel_.SetConversionType(CONV_RATIO);
  for (std::size_t exchange = 1; exchange <= 6; ++exchange) {
    Reset();
    host_.script.failat = exchange;
    const LibraryError error = CTestHost::ErrorOf([&] { channel_.UpdateInfo(); });
    EXPECT_EQ(error.Number(), kLineError);
    EXPECT_EQ(error.Source(), "CVaneT312BPRTTHRMChannel - UpdateInfo");
    EXPECT_TRUE(host_.log.Text().ends_with("finish\nrelease\nbusy off\n")) << exchange;
    EXPECT_EQ(host_.log.Only({"box"}), "");
    // Each level finishes its own reporter, and hides none for an error.
    EXPECT_EQ(host_.log.Count("finish"), exchange == 1 ? 1u : 2u);
    EXPECT_EQ(host_.log.Count("hide"), exchange == 1 ? 0u : 1u);
  }
  for (std::size_t step = 1; step <= 6; ++step) {
    Reset();
    host_.abortat = step;
    EXPECT_FALSE(channel_.UpdateInfo());
    EXPECT_EQ(
        host_.log.Only({"box"}),
        std::string("box 64 Corvane: Aborted updating information.\n") +
            (step == 1 ? "" : "box 64 Corvane: Failed to successfully update '3 probe index'.\n"));
    EXPECT_EQ(host_.log.Count("hide"), step == 1 ? 0u : 2u);
    EXPECT_EQ(host_.script.exchanges, step);
  }
}

}  // namespace
}  // namespace vane
