// A channel read whole: the assigned probe, its record, and the values of its conversion.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/fake_probe.h"
#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class ChannelRead : public testing::Test {
 protected:
  ChannelRead() {
    auto& replies = host_.script.replies;
    replies.insert({{"read 112", "4"},
                    {"read 136", "2"},
                    {"read 122", "ab-12"},
                    {"read 138", "100 ohm"},
                    {"read 140", "1.0 mA"},
                    {"read 142", "0.25"},
                    {"read 225", "68"},
                    {"read 209", "25.5"},
                    {"read 205", "NONE"},
                    {"read 207", "NONE"},
                    {"read 130", "RATIO"}});
    for (int id = 211; id <= 261; id += 2) {
      replies.try_emplace("read " + std::to_string(id), std::to_string(id) + ".5");
    }
  }

  // The exchanges behind the conversion type, one word each: "id", fields.
  std::string ValuesRead(const std::string& type) {
    host_.script.replies["read 130"] = type;
    host_.log.Clear();
    EXPECT_TRUE(channel_.QueryProbeInfo(4));
    std::string reads = host_.log.Only({"read"});
    return reads.substr(reads.find("read 130 Probe=4\n") + 17);
  }

  template <class Settings>
  Settings& SettingsAs() {
    return dynamic_cast<Settings&>(*channel_.Probe()->Conversion().Settings());
  }

  CTestHost host_;
  CVaneT312BPRTTHRMChannel& channel_ = FirstScannerChannel();

 private:
  CVaneT312BPRTTHRMChannel& FirstScannerChannel() {
    host_.ConnectWith(true);
    return *host_.instrument->GetChannelReference(3);
  }
};

constexpr char kOpen[] = "progress\nattach none\ninvisible\nbusy on\n";
constexpr char kClose[] = "finish\nrelease\nbusy off\n";
constexpr char kRecord[] =
    "start Reading probe 4 information... 20\nread 122 Probe=4\nstep\nread 138 Probe=4\nstep\n"
    "read 140 Probe=4\nstep\nread 142 Probe=4\nstep\nCheckNonAscii off\nread 130 Probe=4\n"
    "CheckNonAscii on\nstep\nhide\n";

TEST_F(ChannelRead, AWholeChannelRunsUnderOneReporterInAnother) {
  test::CTestWindow window;
  EXPECT_TRUE(channel_.QueryInfo(&window));
  const std::string open = "progress\nattach window\nvisible\nbusy on\n";
  EXPECT_EQ(host_.log.Text(), open +
                                  "start Reading scanner channel 1 settings... 100\n"
                                  "read 112 Channel=1\nstep\nhide\n" +
                                  open + kRecord + kClose + kClose);
  EXPECT_EQ(channel_.ProbeIndex(), 4);
  EXPECT_EQ(channel_.Probe()->SerialNumber(), "AB-12");
  EXPECT_EQ(channel_.ProbeRefResistor(), ET312BProbeRefResistor::PRR_100_OHM);
  EXPECT_EQ(channel_.ProbeCurrent(), 1.0);
  EXPECT_EQ(channel_.Probe3WireOffset(), 0.25);
  EXPECT_EQ(channel_.Probe()->ConversionType(), EVaneConversionType::CONV_RATIO);

  host_.log.Clear();
  EXPECT_TRUE(host_.instrument->GetChannelReference(2)->QueryInfo());
  EXPECT_EQ(host_.log.Only({"start Reading channel", "read 136", "read 122"}),
            "start Reading channel 2 settings... 100\nread 136 Channel=2\nread 122 Probe=2\n");
}

TEST_F(ChannelRead, ReferenceResistorsAreTakenFromAnyReply) {
  const struct {
    const char* reply;
    int resistor;
  } rows[] = {{"10 KOHM", 4},     {"100 ohm", 3}, {"10 OHM", 2}, {"1 OHM", 1},  {"NEXT 1 OHM", 0},
              {"10 KOHM EXT", 0}, {"1OHM", -1},   {"", -1},      {"110 OHM", 2}};
  for (const auto& row : rows) {
    host_.script.replies["read 138"] = row.reply;
    EXPECT_TRUE(channel_.QueryRefResistor(7));
    EXPECT_EQ(static_cast<int>(channel_.ProbeRefResistor()), row.resistor) << row.reply;
  }
}

TEST_F(ChannelRead, ConversionTypesAndRangesAreTakenFromAnyReply) {
  const struct {
    const char* reply;
    int type;
  } types[] = {{"ITS-90", 0},    {"IPTS-68", 1},    {"CVD", 2},           {"THRM-R(T)", 6},
               {"THRM-T(R)", 5}, {"POLYNOMIAL", 4}, {"R(\xCE\xA9)", 10},  {"W(T90)", 14},
               {"ratio", 15},    {"POLY", -1},      {"W(T90) ITS-90", 0}, {"RATIO R(", 10}};
  for (const auto& row : types) {
    host_.script.replies["read 130"] = row.reply;
    EXPECT_TRUE(channel_.QueryConversionType(0));
    EXPECT_EQ(static_cast<int>(channel_.Probe()->ConversionType()), row.type) << row.reply;
  }
  const struct {
    const char* reply;
    int low;
    int high;
  } ranges[] = {{"1 (", 1, -1},    {"5 (-38 TO 29C)", 5, -1}, {"11 (", 1, 11},
                {"10 (", -1, 10},  {"16 (", -1, 6},           {"3(", -1, -1},
                {"5 ( 1 (", 1, -1}};
  for (const auto& row : ranges) {
    host_.script.replies["read 205"] = host_.script.replies["read 207"] = row.reply;
    ValuesRead("ITS-90");
    EXPECT_EQ(SettingsAs<CITS90Settings>().LowRange().Range(), row.low) << row.reply;
    EXPECT_EQ(SettingsAs<CITS90Settings>().HighRange().Range(), row.high) << row.reply;
  }
}

TEST_F(ChannelRead, TheConversionTypeOfTheAssignedProbeNeedsItsNumberFirst) {
  EXPECT_TRUE(channel_.QueryConversionType());
  EXPECT_TRUE(channel_.QueryConversionType(0));
  EXPECT_EQ(host_.log.Only({"read"}), "read 112 Channel=1\nread 130 Probe=4\nread 130 Probe=0\n");
}

TEST_F(ChannelRead, TheCheckForNonAsciiIsOffForTheConversionTypeAlone) {
  CVaneCOMPort& port = host_.instrument->Communications()->COMPort();
  bool during = true;
  host_.script.beforeexchange = [&] { during = port.CheckNonAscii(); };
  for (const bool before : {false, true}) {
    port.SetCheckNonAscii(before);
    EXPECT_TRUE(channel_.QueryConversionType(1));
    EXPECT_FALSE(during);
    EXPECT_EQ(port.CheckNonAscii(), before);
  }
  host_.script.silent.insert("read 130");
  EXPECT_EQ(CTestHost::ErrorOf([&] { channel_.QueryConversionType(1); }).Source(),
            "CVaneT312BPRTTHRMChannel - QueryConversionType");
  EXPECT_FALSE(port.CheckNonAscii());
}

TEST_F(ChannelRead, SequencesReadTheirValuesInOrder) {
  EXPECT_EQ(ValuesRead("CVD"),
            "read 243 Probe=4\nread 245 Probe=4\nread 247 Probe=4\nread 249 Probe=4\n");
  EXPECT_EQ(host_.log.Count("start Reading CVD coefficients... 25"), 1u);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(SettingsAs<CCVDSettings>().Coefficients(i), 243.5 + 2 * i);
  }
  EXPECT_EQ(ValuesRead("IPTS-68"),
            "read 225 Probe=4\nread 229 Probe=4\nread 231 Probe=4\nread 233 Probe=4\n"
            "read 239 Probe=4 Range=4\nread 241 Probe=4 Range=4\n");
  EXPECT_EQ(host_.log.Count("start Reading IPTS-68 coefficients... 16.666666666666668"), 1u);
  const double ipts68[] = {229.5, 231.5, 233.5, 239.5, 241.5};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(SettingsAs<CIPTS68Settings>().Coefficients(i), ipts68[i]);
  }
  EXPECT_EQ(ValuesRead("W(T90)"), "read 209 Probe=4\n");
  EXPECT_EQ(SettingsAs<CWT90Settings>().RTPW(), 25.5);
  EXPECT_EQ(host_.log.Only({"start Reading W"}), "start Reading W(T90) coefficients... 100\n");
  for (const char* none : {"R(", "RATIO", "?"}) EXPECT_EQ(ValuesRead(none), "") << none;
}

TEST_F(ChannelRead, TheScaleOfIPTS68IsOneOfTwoOrOff) {
  const struct {
    const char* reply;
    int scale;
    bool enabled;
  } rows[] = {
      {"68", 1, true}, {"90 68", 0, true}, {"", 0, false}, {"IPTS-68", 1, true}, {"48", 1, false}};
  for (const auto& row : rows) {
    host_.script.replies["read 225"] = row.reply;
    ValuesRead("IPTS-68");
    EXPECT_EQ(SettingsAs<CIPTS68Settings>().IPTS68Scale(), row.scale) << row.reply;
    EXPECT_EQ(SettingsAs<CIPTS68Settings>().ScaleEnabled(), row.enabled) << row.reply;
  }
}

TEST_F(ChannelRead, SeriesReadEveryCoefficientUnderItsIndex) {
  const struct {
    const char* type;
    const char* id;
    int count;
    const char* start;
  } rows[] = {
      {"THRM-T(R)", "259", 4, "start Reading Thermistor T(R) coefficients... 25"},
      {"THRM-R(T)", "257", 4, "start Reading Thermistor R(T) coefficients... 25"},
      {"POLYNOMIAL", "261", 11, "start Reading Polynomial coefficients... 9.090909090909092"}};
  for (const auto& row : rows) {
    std::string reads;
    for (int i = 0; i < row.count; ++i) {
      const std::string command =
          std::string("read ") + row.id + " Probe=4 Index=" + std::to_string(i);
      host_.script.replies[command] = std::to_string(i) + "E-3";
      reads += command + "\n";
    }
    EXPECT_EQ(ValuesRead(row.type), reads);
    EXPECT_EQ(host_.log.Count(row.start), 1u);
    EXPECT_EQ(SettingsAs<CThermistorSettings>().Coefficients(row.count - 1),
              (row.count - 1) * 1e-3);
  }
  test::CFakePolynomial::hasnone = true;
  EXPECT_FALSE(channel_.QueryProbeInfo(4));
  test::CFakePolynomial::hasnone = false;
  EXPECT_NE(host_.log.Only({"box 16"}).find("Error: 11 - Division by zero"), std::string::npos);
}

TEST_F(ChannelRead, EverySubrangeReadsItsOwnCoefficients) {
  const std::string subranges[] = {"211 213 215.1 215.2 215.3 215.4 215.5 ",
                                   "211 213 215.1 215.2 215.3 ",
                                   "211 213 215.1 ",
                                   "211 213 ",
                                   "211 213 ",
                                   "217 219 221 223 ",
                                   "217 219 221 ",
                                   "217 219 ",
                                   "217 219 ",
                                   "217 ",
                                   "217 "};
  for (int n = 1; n <= 11; ++n) {
    const std::string number = std::to_string(n);
    host_.script.replies["read 205"] = n <= 5 ? number + " (" : "";
    host_.script.replies["read 207"] = n > 5 ? number + " (" : "";
    std::string expected = "read 209 Probe=4\nread 205 Probe=4\nread 207 Probe=4\n";
    std::vector<double> values;
    std::istringstream ids(subranges[n - 1]);
    for (std::string id; ids >> id;) {
      std::string command = "read " + id.substr(0, 3) + " Probe=4";
      if (id != "223") command += " Range=" + number;
      if (id.size() > 3) command += " Index=" + id.substr(4);
      expected += command + "\n";
      host_.script.replies[command] = id;
      values.push_back(std::stod(id));
    }
    EXPECT_EQ(ValuesRead("ITS-90"), expected) << n;
    auto& its90 = SettingsAs<CITS90Settings>();
    CITS90Range& range = n <= 5 ? its90.LowRange() : its90.HighRange();
    for (std::size_t place = 0; place < values.size(); ++place) {
      EXPECT_EQ(range.Coefficients(static_cast<std::int32_t>(place)), values[place]) << n;
    }
  }
}

TEST_F(ChannelRead, AProbeWithoutRangesReadsNoneAlsoWhenItsComponentCountsPlaces) {
  ValuesRead("ITS-90");
  auto& low = dynamic_cast<test::CFakeRange&>(SettingsAs<CITS90Settings>().LowRange());
  for (const bool counts : {false, true}) {
    low.countsalways = counts;
    EXPECT_EQ(ValuesRead("ITS-90"), "read 209 Probe=4\nread 205 Probe=4\nread 207 Probe=4\n");
    EXPECT_EQ(host_.log.Only({"start Reading low", "start Reading high"}),
              counts ? "start Reading low range coefficients... 14.285714285714286\n" : "");
  }
}

TEST_F(ChannelRead, ITS90RunsItsRangesInReportersOfTheirOwn) {
  host_.script.replies["read 205"] = "";
  host_.script.replies["read 207"] = "10 (";
  host_.script.replies["read 130"] = "ITS-90";
  channel_.QueryInfo();
  host_.log.Clear();
  EXPECT_TRUE(channel_.QueryProbeInfo(4));
  const std::string text = host_.log.Text();
  EXPECT_EQ(text.substr(text.find("start Reading ITS-90")),
            "start Reading ITS-90 coefficients... 33.333333333333336\nread 209 Probe=4\nstep\n"
            "read 205 Probe=4\nstep\nread 207 Probe=4\nstep\nhide\nstep\n" +
                std::string(kOpen) +
                "start Reading high range coefficients... 25\nread 217 Probe=4 Range=10\nstep\n"
                "finish\nrelease\nstep\n" +
                kClose + kClose);
}

TEST_F(ChannelRead, AConversionReplacedWhileItIsReadIsAnErrorInItsBox) {
  for (const char* type : {"POLYNOMIAL", "ITS-90"}) {
    host_.script.replies["read 205"] = "1 (";
    ValuesRead(type);
    host_.log.Clear();
    int reads = 0;
    host_.script.beforeexchange = [&] {
      if (++reads == 10) channel_.SetConversionType(EVaneConversionType::CONV_RATIO);
    };
    EXPECT_FALSE(channel_.QueryProbeInfo(4));
    host_.script.beforeexchange = nullptr;
    EXPECT_NE(host_.log.Only({"box 16"}).find("Error: 13 - Type mismatch\n"), std::string::npos)
        << type;
  }
}

// What the user sees of a whole channel read that stops at each step or at each exchange in turn.
class StoppedRead : public ChannelRead {
 protected:
  void Prepare(const std::string& type) {
    host_.script.replies["read 130"] = type;
    host_.script.replies["read 205"] = "5 (";
    host_.script.replies["read 207"] = "10 (";
    channel_.QueryInfo();
    Reset();
  }
  void Reset() {
    host_.log.Clear();
    host_.steps = 0;
    host_.script.exchanges = 0;
  }
  std::string Boxes() const {
    std::string boxes;
    std::istringstream lines(host_.log.Only({"box"}));
    for (std::string line; std::getline(lines, line);) {
      boxes += line.substr(line.find(": ") + 2) + "\n";
    }
    return boxes;
  }
};

constexpr char kAborted[] = "Aborted querying information.\n";
constexpr char kWholeFailed[] = "Failed to successfully query '3 probe index'.\n";
constexpr char kTypeFailed[] = "Failed to successfully query 'Conversion type'.\n";

TEST_F(StoppedRead, AnAbortIsToldWhereItHappensAndByEveryRunAroundIt) {
  const std::string whole = kWholeFailed;
  const std::string type = kTypeFailed + whole;
  const auto range = [&](const char* name) {
    return "Failed to successfully query '" + std::string(name) + " range coefficients'.\n" + type;
  };
  // By the step at which the user stops; the record's come first.
  std::vector<std::string> record(6, kAborted + whole);
  record.front() = kAborted;
  const struct {
    const char* type;
    std::vector<std::string> values;
  } rows[] = {
      {"CVD", std::vector<std::string>(4, kAborted + type)},
      {"THRM-R(T)", std::vector<std::string>(4, kAborted + type)},
      // A range that is stopped leaves the word to the conversion around it.
      {"ITS-90",
       {kAborted + type, kAborted + type, kAborted + type, range("low"), range("low"),
        kAborted + type, range("high"), kAborted + type}},
  };
  for (const auto& row : rows) {
    std::vector<std::string> boxes = record;
    boxes.insert(boxes.end(), row.values.begin(), row.values.end());
    boxes.emplace_back();  // not stopped at all
    Prepare(row.type);
    for (std::size_t step = 1; step <= boxes.size(); ++step) {
      Reset();
      host_.abortat = step;
      const bool last = step == boxes.size();
      EXPECT_EQ(channel_.QueryInfo(), last) << row.type << " " << step;
      EXPECT_EQ(Boxes(), boxes[step - 1]) << row.type << " " << step;
      EXPECT_EQ(host_.log.Count("progress"), host_.log.Count("finish"));
      EXPECT_EQ(host_.log.Lines().back(), "busy off");
    }
    EXPECT_EQ(host_.steps, boxes.size() - 1) << row.type;
    host_.abortat.reset();
  }
}

TEST_F(StoppedRead, AnErrorOfTheRecordClimbsAndLeavesReporterAndBusyCursorToTheBox) {
  Prepare("CVD");
  for (std::size_t failing = 1; failing <= 6; ++failing) {
    Reset();
    host_.script.failat = failing;
    const LibraryError error = CTestHost::ErrorOf([&] { channel_.QueryInfo(); });
    EXPECT_EQ(error.Source() + error.HelpFile(), "CVaneT312BPRTTHRMChannel - QueryInfo");
    EXPECT_EQ(error.Number(), kLineError);
    EXPECT_EQ(host_.log.Only({"hide", "release", "finish", "busy off", "box"}),
              failing == 1 ? "hide\nrelease\n" : "hide\nhide\nrelease\nhide\nrelease\n")
        << failing;
  }
}

TEST_F(StoppedRead, AnErrorOfAConversionIsShownThereAndReportedAsFailedByEveryRunAround) {
  const struct {
    const char* type;
    // By the exchange that fails, from the conversion's first: its name and its operation.
    std::vector<std::pair<std::string, std::string>> shown;
  } rows[] = {
      {"CVD",
       {{"CVD R0", "CVDR0"},
        {"CVD ALPHA", "CVDALPHA"},
        {"CVD DELTA", "CVDDELTA"},
        {"CVD BETA", "CVDBETA"}}},
      {"IPTS-68",
       {{"IPTS-68 scale", "IPTS68Scale"},
        {"IPTS-68 R0", "IPTS68R0"},
        {"IPTS-68 ALPHA", "IPTS68ALPHA"},
        {"IPTS-68 DELTA", "IPTS68DELTA"},
        {"IPTS-68 A4", "IPTS68A4"},
        {"IPTS-68 C4", "IPTS68C4"}}},
      {"W(T90)", {{"W(T90) RTPW", "ITS90RTPW"}}},
      {"ITS-90",
       {{"ITS-90 RTPW", "ITS90RTPW"},
        {"low range", "ITS90LowRange"},
        {"high range", "ITS90HighRange"},
        {"low range coefficients", "ITS90LowRangeACoefficient"},
        {"low range coefficients", "ITS90LowRangeBCoefficient"},
        {"high range coefficients", "ITS90HighRangeACoefficient"}}},
      {"THRM-T(R)", {{"0", "ThermistorTRCoefficient"}, {"1", "ThermistorTRCoefficient"}}},
      {"POLYNOMIAL", {{"0", "POLYCoefficient"}, {"1", "POLYCoefficient"}}},
  };
  for (const auto& row : rows) {
    Prepare(row.type);
    for (std::size_t i = 0; i < row.shown.size(); ++i) {
      const auto& [name, operation] = row.shown[i];
      Reset();
      host_.script.failat = 7 + i;
      EXPECT_FALSE(channel_.QueryInfo());
      std::string boxes = "An error occurred while attempting to query '" + name +
                          "'.//Error: 4711 - No answer/(CVaneT312BPRTTHRMChannel - Query" +
                          operation + ")\n";
      if (name.ends_with("coefficients")) {
        boxes += "Failed to successfully query '" + name + "'.\n";
      }
      EXPECT_EQ(Boxes(), boxes + kTypeFailed + kWholeFailed) << row.type << " " << i;
      EXPECT_EQ(host_.log.Count("progress"), host_.log.Count("finish")) << row.type << " " << i;
      const std::string end = host_.log.Only({"hide", "busy off", "box 16", "finish", "release"});
      const std::size_t box = end.find("box 16");
      ASSERT_GE(box, 14u);
      EXPECT_EQ(end.substr(box - 14, 14), "hide\nbusy off\n") << row.type << " " << i;
      EXPECT_EQ(end.substr(end.find('\n', box) + 1, 15), "finish\nrelease\n");
      EXPECT_EQ(host_.log.Lines().back(), "busy off");
    }
    host_.script.failat.reset();
  }
}

TEST_F(StoppedRead, AModuleReadsEveryChannelWholeWhateverComesOfThem) {
  Prepare("RATIO");
  host_.abortat = 1;
  EXPECT_TRUE(host_.instrument->Modules(0)->QueryInfo(nullptr, true));
  EXPECT_EQ(Boxes(), kAborted);
  EXPECT_EQ(host_.log.Only({"start", "read 1"}),
            "start Reading channel 1 settings... 100\nread 136 Channel=1\n"
            "start Reading channel 2 settings... 100\nread 136 Channel=2\n"
            "start Reading probe 2 information... 20\nread 122 Probe=2\nread 138 Probe=2\n"
            "read 140 Probe=2\nread 142 Probe=2\nread 130 Probe=2\n");
}

}  // namespace
}  // namespace vane
