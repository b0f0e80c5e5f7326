// The programs as a user runs them: `thermoscribe` against `thermoscribe-sim`, each a process of
// its own.

#include "tests/support/cli.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace vane {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST_F(Cli, IdentifiesEveryKindOfReadout) {
  const std::string inputs = R"({"number":0,"model":"T312B","numchannels":2})";
  const std::string both = inputs + R"(,{"number":1,"model":"M420","numchannels":10})";
  const struct {
    std::string simulator;
    std::string firmware;
    std::string recent;
    std::string numchannels;
    std::string modules;
  } cases[] = {
      {"", "5.03", "true", "12", both},
      {"--no-scanner", "5.03", "true", "2", inputs},
      {"--firmware 5.02", "5.02", "false", "12", both},
      {"--firmware 5.02 --no-scanner", "5.02", "false", "2", inputs},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.simulator);
    StartSimulator(c.simulator);
    const Outcome outcome = Ask("identify --json");
    EXPECT_EQ(outcome.exitcode, 0);
    EXPECT_THAT(outcome.err, IsEmpty());
    EXPECT_EQ(outcome.out, R"({"version":1,"kind":"identification","model":"T312B","firmware":)" +
                               c.firmware + R"(,"minfirmware":5.03,"firmwarerecent":)" + c.recent +
                               R"(,"identification":"T312B, )" + c.firmware +
                               R"(","numchannels":)" + c.numchannels + R"(,"modules":[)" +
                               c.modules + "]}\n");
    EXPECT_THAT(Ask("identify").out,
                HasSubstr(c.recent == "true" ? "5.03 (recent enough" : "5.02 (older than 5.03"));
  }
}

TEST_F(Cli, ListsEachChannelWithItsNumbers) {
  const std::string head = R"({"version":1,"kind":"channel","channel":)";
  StartSimulator();
  const std::vector<std::string> objects = Lines(Ask("channels --json").out);
  ASSERT_EQ(objects.size(), 12u);
  EXPECT_EQ(objects[0], head + R"(1,"name":"Input 1","module":0,"modulemodel":"T312B",)"
                               R"("modulechannel":1,"index":0,"scanstep":null,"enabled":false,)"
                               R"("probe":1})");
  EXPECT_EQ(objects[1], head + R"(2,"name":"Input 2","module":0,"modulemodel":"T312B",)"
                               R"("modulechannel":2,"index":1,"scanstep":0,"enabled":true,)"
                               R"("probe":2})");
  EXPECT_EQ(objects[11], head + R"(12,"name":"Scanner 10","module":1,"modulemodel":"M420",)"
                                R"("modulechannel":10,"index":9,"scanstep":10,"enabled":true,)"
                                R"("probe":12})");

  const std::vector<std::string> lines = Lines(Ask("channels").out);
  ASSERT_EQ(lines.size(), 13u);
  EXPECT_THAT(lines[1], ContainsRegex("^ +1 +Input 1 +0 +T312B +1 +0 +- +no +1$"));
  EXPECT_THAT(lines[12], ContainsRegex("^ +12 +Scanner 10 +1 +M420 +10 +9 +10 +yes +12$"));
  for (const std::string& line : lines) EXPECT_EQ(line.size(), lines[0].size()) << line;
}

TEST_F(Cli, GivesAReadingWithAllTheDigitsOfTheLine) {
  StartSimulator();
  for (const std::string channel : {"1", "2", "3", "12"}) {
    SCOPED_TRACE(channel);
    const Outcome outcome = Ask("measure --json --channel " + channel);
    EXPECT_EQ(outcome.exitcode, 0);
    const Answer object = ParsedJson(outcome.out);
    EXPECT_EQ(object["channel"], std::stoi(channel));
    EXPECT_THAT(LastNumber(), Not(IsEmpty()));
    EXPECT_EQ(object["reading"].Number(), std::stod(LastNumber()));
    EXPECT_THAT(object["time"].Text(),
                testing::MatchesRegex(
                    "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2}"));
    const Outcome text = Ask("measure --channel " + channel);
    const std::string line = Lines(text.out).at(0);
    EXPECT_EQ(line.substr(line.rfind(' ') + 1), LastNumber());
    EXPECT_THAT(line, HasSubstr("  " + object["name"].Text() + " "));
  }
  // Input 1 carries the scanner.
  EXPECT_EQ(ParsedJson(Ask("measure --json").out)["channel"], 2);
}

TEST_F(Cli, SwitchesMeasuringOffAndOn) {
  StartSimulator();
  EXPECT_THAT(Ask("measure --stop").out, HasSubstr("off"));
  EXPECT_EQ(Ask("measure").exitcode, 0);  // takes what was new before
  const Outcome none = Ask("measure --new --limit 0");
  EXPECT_EQ(none.exitcode, 1);
  EXPECT_THAT(none.out, IsEmpty());
  EXPECT_THAT(none.err, HasSubstr("No new reading came in time"));
  EXPECT_THAT(Ask("--json measure --start").out, HasSubstr(R"("on":true)"));
  EXPECT_EQ(Lines(Ask("measure --new --count 2").out).size(), 2u);
}

// The seventh exchange is the first reading; a command is sent twice at most.
TEST_F(Cli, TellsEachFailureByItsExitCodeAndATextAndPrintsNoValue) {
  const struct {
    std::string simulator;
    int exitcode;
    std::string text;
  } cases[] = {
      {"--fault at=7:drop --fault at=8:drop", 4, "No answer"},
      {"--fault at=7:late=0.4 --fault at=8:late=0.4", 4, "No answer"},
      {"--fault at=7:garble --fault at=8:garble", 8, "garbled"},
      {"--fault at=7:hangup", 8, "lost"},
      {"--fault at=7:refuse", 6, "Unable to successfully query measurement."},
      {"--fault at=1:refuse", 6, "attempting to initialize communications"},
      {"--fault at=1:drop --fault at=2:drop", 4, "attempting to initialize"},
      {"--fault at=3:drop --fault at=4:drop", 4, "No answer"},
      {"--model T999", 5, "is not a model 'T312B'"},
      {"--no-scanner", 2, "The readout has the channels 1 to 2."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.simulator);
    StartSimulator(c.simulator);
    const Outcome outcome = Ask("measure --channel 3");
    EXPECT_EQ(outcome.exitcode, c.exitcode);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_THAT(outcome.err, HasSubstr(c.text));
    EXPECT_THAT(Lines(outcome.err).back(), StartsWith("thermoscribe: "));  // what to do next
  }
}

TEST_F(Cli, RecoversFromASingleDamageOnTheLine) {
  for (const std::string fault : {"drop", "garble", "split", "late=0.15", "delay=0.05"}) {
    SCOPED_TRACE(fault);
    StartSimulator("--fault at=7:" + fault);
    const Outcome outcome = Ask("measure --channel 3 --count 3 --json");
    EXPECT_EQ(outcome.exitcode, 0) << outcome.err;
    const std::vector<Answer> readings = JsonLines(outcome.out);
    ASSERT_EQ(readings.size(), 3u);
    EXPECT_EQ(readings[2]["reading"].Number(), std::stod(LastNumber()));
    EXPECT_NEAR(readings[0]["reading"].Number(), readings[2]["reading"].Number(), 0.1);
  }
}

TEST_F(Cli, TakesNoLateAnswerForTheAnswerToTheNextCommand) {
  // The number of modules comes while the reading is awaited, and before it.
  StartSimulator("--fault at=5:late=0.15 --fault at=8:delay=0.08");
  const Outcome outcome = Ask("measure --channel 2 --json");
  EXPECT_EQ(outcome.exitcode, 0) << outcome.err;
  EXPECT_THAT(Trace(), HasSubstr("late answer, skipped"));
  const double reading = ParsedJson(outcome.out)["reading"].Number();
  const double again = ParsedJson(Ask("measure --channel 2 --json").out)["reading"].Number();
  EXPECT_NEAR(reading, again, 0.1);
}

TEST_F(Cli, TellsWhatIsWrongWithThePort) {
  EXPECT_EQ(Run(OnPort("identify", folder_ / "nothing")).exitcode, 3);

  int near = -1;
  int far = -1;
  char path[64];
  ASSERT_EQ(openpty(&near, &far, path, nullptr, nullptr), 0);
  termios raw{};
  cfmakeraw(&raw);
  tcsetattr(far, TCSANOW, &raw);
  const Outcome silent = Run(OnPort("identify", path));
  EXPECT_EQ(silent.exitcode, 4);
  EXPECT_THAT(silent.err, HasSubstr(std::string("No answer from the readout on ") + path));
  EXPECT_EQ(silent.err.find("Corvane"), silent.err.rfind("Corvane")) << silent.err;  // one box

  ASSERT_EQ(flock(far, LOCK_EX | LOCK_NB), 0);
  const Outcome taken = Run(OnPort("identify", path));
  EXPECT_EQ(taken.exitcode, 3);
  EXPECT_THAT(taken.err, HasSubstr("in use by another program"));
  close(far);
  close(near);
}

TEST_F(Cli, ReadsEveryProbeOfTheReadoutWhole) {
  StartSimulator();
  const struct {
    int probe;
    const char* conversion;
    std::vector<std::string> names;
  } cases[] = {
      {1, "ITS-90", {"RTPW", "a4", "b4", "a7", "b7", "c7"}},
      {2, "ITS-90", {"RTPW", "a6", "b6", "c6", "d"}},
      {3, "ITS-90", {"RTPW", "a1", "b1", "c1", "c2", "c3", "c4", "c5", "a10"}},
      {4, "ITS-90", {"RTPW", "a2", "b2", "c1", "c2", "c3", "a9", "b9"}},
      {5, "ITS-90", {"RTPW", "a3", "b3", "c1", "a8", "b8"}},
      {6, "ITS-90", {"RTPW", "a5", "b5", "a11"}},
      {7, "ITS-90", {"RTPW"}},
      {8, "IPTS-68", {"R0", "alpha", "delta", "a4", "c4"}},
      {9, "IPTS-68", {"R0", "alpha", "delta", "a4", "c4"}},
      {10, "Callendar-Van Dusen", {"R0", "alpha", "delta", "beta"}},
      {11, "Polynomial", {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9", "c10"}},
      {12, "T(R)", {"B0", "B1", "B2", "B3"}},
      {13, "R(T)", {"A0", "A1", "A2", "A3"}},
      {14, "Ohms", {}},
      {15, "W(T90)", {"RTPW"}},
      {16, "Ratio", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.probe);
    const std::string number = std::to_string(c.probe);
    const Outcome outcome = Ask("probe --json " + number);
    EXPECT_EQ(outcome.exitcode, 0);
    EXPECT_THAT(outcome.err, IsEmpty());
    const Answer record = ParsedJson(outcome.out);
    EXPECT_EQ(record["probe"], c.probe);
    EXPECT_EQ(record["conversion"], c.conversion);
    std::vector<std::string> names;
    for (const auto& [name, value] : record["coefficients"].Items()) {
      names.push_back(name);
      // The number is the one that stood on the line, digit for digit of its 64 bits.
      EXPECT_TRUE(AnswersHold(value.Number())) << name;
    }
    EXPECT_EQ(names, c.names);
    const std::string text = Ask("probe " + number).out;
    for (const std::string& name : c.names) EXPECT_THAT(text, HasSubstr("\n  " + name + " "));
  }
  const Answer channel = ParsedJson(Ask("channel 3 --json").out);
  EXPECT_EQ(channel["name"], "Scanner 1");
  EXPECT_EQ(channel["probe"], 3);
  EXPECT_EQ(channel["serial"], "CAP-1881");
  EXPECT_EQ(channel["lowrange"], 1);
  EXPECT_EQ(ParsedJson(Ask("probe 9 --json").out)["scale"], Answer());
  EXPECT_EQ(Ask("channel 13").exitcode, 2);
  EXPECT_EQ(Ask("probe 17").exitcode, 2);
  StartSimulator("--no-scanner");
  EXPECT_EQ(Ask("channel 3").exitcode, 2);
}

// A line that loses answers may cost a record, but never changes one.
TEST_F(Cli, ALineThatDropsAnswersGivesTheRightRecordOrAClearError) {
  const std::string right = Run({"--simulate", "channel", "3", "--json"}).out;
  int records = 0;
  int errors = 0;
  for (const std::string fault : {"every=20:drop", "p=0.2:drop"}) {
    for (int seed = 1; seed <= 20; ++seed) {
      const Outcome outcome =
          Run({"--simulate=--seed " + std::to_string(seed) + " --fault " + fault, "--timeout",
               "0.02", "channel", "3", "--json"});
      if (outcome.exitcode == 0) {
        EXPECT_EQ(outcome.out, right) << fault << " " << seed;
        ++records;
      } else {
        EXPECT_EQ(outcome.exitcode, 4) << fault << " " << seed;
        EXPECT_THAT(outcome.out, IsEmpty());
        EXPECT_THAT(outcome.err, HasSubstr("No answer from the readout"));
        ++errors;
      }
    }
  }
  EXPECT_GE(records, 20);
  EXPECT_GE(errors, 5);
}

TEST_F(Cli, CtrlCStopsAChannelReadBetweenTwoValues) {
  StartSimulator("--fault every=1:delay=0.04");
  CProcess program(THERMOSCRIBE_PATH, OnPort("channel 3", Port()));
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  program.Signal(SIGINT);
  const Outcome outcome = program.Wait();
  EXPECT_EQ(outcome.exitcode, 7);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.err, HasSubstr("Aborted querying information."));
}

TEST_F(Cli, ShowsEverySettingAsTheReadoutHasIt) {
  const struct {
    std::string command;
    std::string property;
    Answer value;
  } cases[] = {{"FILTER:TYPE e", "FilterType", "Exponential"},
               {"FILTER:RESPONSE 3.5", "FilterRespTime", 3.5},
               {"FILTER:THRESHOLD 0.0125", "FilterThreshold", 0.0125},
               {"UNITS K", "Units", "K"},
               {"SAMPLE:ACTION SN", "SampleAction", "Sample n"},
               {"SAMPLE:COUNT 321", "SampleN", 321},
               {"SAMPLE:INTERVAL 99999", "Interval", 99999},
               {"SAMPLE:INTEGRATION 44", "IntegrationTime", 44},
               {"SAMPLE:CONVERSION 6", "ConversionTime", 6},
               {"RESOLUTION:TEMPERATURE 3", "Resolution", 3},
               {"RESOLUTION:RESISTANCE 7", "ResistanceResolution", 7},
               {"RESOLUTION:RATIO 8", "RatioResolution", 8},
               {"SAMPLE:REPETITIONS 17", "Repetitions", 17},
               {"CAL:PARAM 0 330.0000125", "CalParams0", 330.0000125},
               {"CAL:PARAM 1 1.25", "CalParams1", 1.25},
               {"CAL:PARAM 2 10.75", "CalParams2", 10.75},
               {"CAL:PARAM 3 101.5", "CalParams3", 101.5},
               {"CAL:PARAM 4 10001.5", "CalParams4", 10001.5},
               {"CAL:ADC -1.5", "ADC", -1.5},
               {"CAL:OVEN OFF", "Oven", "Off"},
               {"CHANNEL:MODE 0", "ChannelMode", "Alternate input 1/input 2"},
               {"SCANNER:MODE 2", "ScannerScanMode", "Input 2 and scanner channels"},
               {"SCANNER:CHANNEL 9", "ScanChannel", 9},
               {"SCANNER:SEQUENCE:CHANNELS 5", "ScanSeqChannels", 5},
               {"SCANNER:SEQUENCE:STEPS 2", "ScanSeqSteps", 2},
               {"SCANNER:STEP 1 10", "ScanChannels", "12,2"}};
  for (const bool scanner : {true, false}) {
    StartSimulator(scanner ? "--protect Sampling" : "--no-scanner --protect sampling");
    const auto isthere = [&](const auto& c) { return scanner || !c.command.starts_with("SCAN"); };
    for (const auto& c : cases) {
      if (isthere(c)) Tell(c.command);
    }
    const Answer settings = ParsedJson(Ask("settings show --json").out);
    for (const auto& c : cases) {
      EXPECT_EQ(settings[c.property], isthere(c) ? c.value : Answer()) << c.property;
    }
    const Answer scan = ParsedJson(Ask("scan show --json").out);
    for (const std::string name : {"ChannelMode", "ScannerScanMode", "ScanChannel"}) {
      EXPECT_EQ(scan[name], settings[name]) << name;
    }
    const Answer steps = scan["sequence"];
    EXPECT_EQ(steps.IsNone() ? 0u : steps.Elements().size(), scanner ? 2u : 0u);
    EXPECT_EQ(
        Ask("scan show").out.find("  Step 1                12  Scanner 10\n") != std::string::npos,
        scanner);
    EXPECT_THAT(Ask("settings show --group sampling").out,
                HasSubstr("\n  Sample interval         Interval              99999 s               "
                          "    2 to 99999\n"));
    EXPECT_THAT(Ask("protection show").out,
                HasSubstr("Calibration     not protected\nSampling        protected\n"));
  }
}

TEST_F(Cli, AScanSequenceThatWasStoppedHalfWayIsNotShown) {
  StartSimulator("--fault at=43:delay=0.09");
  CProcess program(THERMOSCRIBE_PATH, OnPort("scan show", Port()));
  while (Trace().find("SCANNER:STEP 2?") == std::string::npos) std::this_thread::yield();
  program.Signal(SIGINT);
  const Outcome outcome = program.Wait();
  EXPECT_EQ(outcome.exitcode, 7);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.err, HasSubstr("Aborted querying information"));
}

TEST_F(Cli, TakesThePasscodeFromAFileOrDescriptorOnce) {
  StartSimulator("--passcode K9zQ");
  const std::string file = folder_ / "passcode";
  const struct {
    std::string content;
    int exitcode;
    std::string message;
  } cases[] = {{"K9zQ", 0, ""},
               {"K9zQ\r\nmore\n", 0, ""},
               {"k9zq\nK9zQ\n", 9, "incorrect"},
               {"K9zQ \n", 9, "incorrect"},
               {"", 9, "empty"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.content);
    std::ofstream(file) << c.content;
    const int handed = open(file.c_str(), O_RDONLY);
    for (const std::string& source : {file, std::to_string(handed)}) {
      const Outcome outcome = Ask("protection unlock --passcode-file " + source);
      EXPECT_EQ(outcome.exitcode, c.exitcode) << source << outcome.err;
      EXPECT_THAT(outcome.err, HasSubstr(c.message));
    }
    close(handed);
  }
  EXPECT_EQ(Ask("protection unlock --passcode-file 999").exitcode, 2);
  EXPECT_EQ(Ask("protection unlock --passcode-file " + file + "x").exitcode, 1);
  EXPECT_THAT(Ask("protection unlock").err, HasSubstr("there is no terminal"));
  EXPECT_EQ(Trace().find("K9zQ"), std::string::npos);
}

TEST_F(Cli, ATypedPasscodeIsNeverShownAndTheEchoComesBack) {
  StartSimulator("--passcode K9zQ");
  const struct {
    std::vector<std::string> typed;
    int exitcode;
  } cases[] = {
      {{"K9zQ\n"}, 0}, {{"K9z\n", "K9zQ\n"}, 0},     {{"K9z\x03"}, 7},
      {{"\x04"}, 9},   {{"K9z\x1A\x1C\n", "\n"}, 9},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed[0]);
    int terminal = -1;
    CProcess program(THERMOSCRIBE_PATH, OnPort("protection unlock", Port()), &terminal);
    std::string screen;
    std::size_t asked = 0;
    termios mode{};
    for (char character = 0; read(terminal, &character, 1) == 1;) {
      screen += character;
      if (asked == c.typed.size() || !screen.ends_with("give up): ")) continue;
      dprintf(terminal, "%s", c.typed[asked++].c_str());
    }
    EXPECT_EQ(program.Wait().exitcode, c.exitcode) << screen;
    EXPECT_EQ(asked, c.typed.size());
    EXPECT_EQ(screen.find("K9z"), std::string::npos) << screen;
    EXPECT_TRUE(tcgetattr(terminal, &mode) == 0 && (mode.c_lflag & ECHO));
    close(terminal);
  }
  EXPECT_THAT(Trace(), HasSubstr("(not shown)"));
  EXPECT_EQ(Trace().find("K9zQ"), std::string::npos);
}

TEST_F(Cli, EndsAtOnceOnCtrlCWithEveryFinishedReadingPrinted) {
  const struct {
    std::string command;
    int exitcode;
  } cases[] = {
      {"measure --json --count 0 --every 1", 0},
      {"measure --json --count 0 --every 3600", 0},
      {"measure --json --count 0", 0},
      {"measure --json --count 0 --new", 0},
      {"measure --json --count 100000 --every 1", 7},
  };
  StartSimulator();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    CProcess program(THERMOSCRIBE_PATH, OnPort(c.command, Port()));
    EXPECT_TRUE(ParsedJson(program.ReadLine())["reading"].IsNumber());
    const auto pressed = std::chrono::steady_clock::now();
    program.Signal(SIGINT);
    const Outcome outcome = program.Wait();
    EXPECT_LT(std::chrono::steady_clock::now() - pressed, std::chrono::seconds(1));
    EXPECT_EQ(outcome.exitcode, c.exitcode) << outcome.err;
    EXPECT_TRUE(outcome.out.empty() || outcome.out.back() == '\n');
    for (const Answer& reading : JsonLines(outcome.out)) EXPECT_EQ(reading["kind"], "reading");
    EXPECT_EQ(outcome.err.empty(), c.exitcode == 0) << outcome.err;
  }
}

TEST_F(Cli, TextFollowsTheUsersLocaleAndNothingElseDoes) {
  setenv("LOCPATH", TEST_LOCALES, 1);
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  StartSimulator();
  EXPECT_THAT(Ask("settings show --group filter").out, HasSubstr(" 0,01   "));
  EXPECT_THAT(Ask("settings show --group filter").out, HasSubstr("0,0001 to 1000000"));
  EXPECT_EQ(JsonLines(Ask("settings show --json").out)[0]["FilterThreshold"], 0.01);
  const std::string lines = Ask("settings set ADC=1.5 FilterRespTime=2.5 --dry-run").out;
  EXPECT_THAT(lines, HasSubstr("CAL:ADC 1.50*"));
  EXPECT_THAT(lines, HasSubstr("FILTER:RESPONSE 2.5*"));
  EXPECT_THAT(lines, HasSubstr("CAL:PARAM 4 1.000037000E+04*"));
  EXPECT_THAT(lines, Not(HasSubstr(",")));
  EXPECT_EQ(Ask("download --readings 1 --resolution 1 --folder " + folder_.string()).exitcode, 0);
  EXPECT_THAT(FileText("download.txt"), ContainsRegex("<no time>   [0-9]+,[0-9] °C"));
  EXPECT_THAT(Ask("clock set --time 2026-02-03T15:07:09 --dry-run").out,
              ContainsRegex("CLOCK:DATE 02-03-2026.*\n.*CLOCK:TIME 15:07:09\\*"));
  setenv("LC_ALL", "en_US.UTF-8", 1);
  EXPECT_THAT(Ask("clock set --time '2026-02-03T15:07' --dry-run").err,
              HasSubstr("is a date and time"));
  EXPECT_THAT(Ask("clock set --time 2026-02-03T15:07 --dry-run").out,
              HasSubstr("CLOCK:TIME 3:07:00PM*"));
  unsetenv("LOCPATH");
}

TEST_F(Cli, AFinishedDownloadIsOfferedAtTheTerminal) {
  StartSimulator();
  const std::string opened = folder_ / "opened";
  for (const char* name : {"xdg-open", "lp", "lpstat"}) {
    const std::string program = folder_ / name;
    std::ofstream(program) << "#!/bin/sh\necho " << name << " \"$@\" >> " << opened << "\n";
    chmod(program.c_str(), 0755);
  }
  const std::string path = std::getenv("PATH");
  setenv("PATH", (folder_.string() + ":" + path).c_str(), 1);
  int terminal = -1;
  CProcess program(THERMOSCRIBE_PATH,
                   OnPort("download --readings 4 --folder " + folder_.string() + " --csv " +
                              (folder_ / "log.csv").string(),
                          Port()),
                   &terminal);
  setenv("PATH", path.c_str(), 1);
  std::string screen;
  std::vector<std::string> typed = {"1\n", "2\n", "a\n", "1\n", "\n"};
  for (char character = 0; read(terminal, &character, 1) == 1;) {
    screen += character;
    if (typed.empty() || !screen.ends_with("goes on: ")) continue;
    dprintf(terminal, "%s", typed.front().c_str());
    typed.erase(typed.begin());
  }
  close(terminal);
  EXPECT_EQ(program.Wait().exitcode, 0) << screen;
  EXPECT_THAT(screen, HasSubstr("There is no such choice."));
  EXPECT_THAT(screen, HasSubstr("a  [x] Send"));
  const std::string file = folder_ / "download.txt";
  EXPECT_THAT(FileText("opened"), StartsWith("xdg-open " + file + "\n"));
  EXPECT_THAT(FileText("opened"), ContainsRegex("\nlp .*" + file + "\n"));
  EXPECT_EQ(Lines(FileText("download.txt")).size(), 3u + 4u);
  EXPECT_THAT(FileText("log.csv"), ContainsRegex("^number,unit,third\r\n[0-9.]+,C,1\r\n"));
}

TEST_F(Cli, RefusesBadUsageBeforeItTouchesAnything) {
  for (const std::string words : {"",
                                  "nonsense",
                                  "identify channels",
                                  "identify --nonsense",
                                  "identify --baud 9601",
                                  "identify --timeout 0",
                                  "identify --port /dev/x --simulate",
                                  "identify --simulate=--nonsense",
                                  "measure --channel 0",
                                  "measure --channel 13",
                                  "measure --count -1",
                                  "measure --every 1",
                                  "measure --start --stop",
                                  "measure --start --count 2",
                                  "settings",
                                  "settings show --group all",
                                  "settings diff - -",
                                  "scan nonsense",
                                  "settings set Interval=1",
                                  "settings set Foo=1",
                                  "settings set Units=X",
                                  "settings set Units",
                                  "scan set",
                                  "scan set --channel 11",
                                  "clock set --time 2026-02-30T00:00",
                                  "download --log both",
                                  "download --readings 0"}) {
    SCOPED_TRACE(words);
    const Outcome outcome = Run(Words(words));
    EXPECT_EQ(outcome.exitcode, 2);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_THAT(outcome.err, StartsWith("thermoscribe: "));
    EXPECT_EQ(Lines(outcome.err).size(), 2u) << outcome.err;
  }
}

TEST_F(Cli, HelpNamesEveryCommandAndEachTellsItsOwn) {
  const Outcome help = Run({"--help"});
  EXPECT_EQ(help.exitcode, 0);
  EXPECT_EQ(Run({"help"}).out, help.out);
  EXPECT_THAT(help.out, HasSubstr("  8  line damaged or lost"));
  for (const std::string command : {"ports", "identify", "channels", "measure"}) {
    EXPECT_THAT(help.out, HasSubstr("\n  " + command + " "));
    const Outcome own = Run({command, "--help"});
    EXPECT_EQ(own.exitcode, 0);
    EXPECT_THAT(own.out, HasSubstr("\n  thermoscribe " + command));
  }
}

TEST_F(Cli, NeedsNoReadoutForPortsAndNoHardwareForASimulatedOne) {
  for (const Answer& port : JsonLines(Run({"ports", "--json"}).out)) {
    EXPECT_THAT(port["path"].Text(), StartsWith("/dev/"));
  }
  EXPECT_THAT(Run({"ports"}).out, Not(IsEmpty()));

  std::filesystem::create_directory(folder_ / "tmp");
  setenv("TMPDIR", (folder_ / "tmp").c_str(), 1);
  EXPECT_EQ(Lines(Run({"--simulate", "channels"}).out).size(), 13u);
  EXPECT_EQ(JsonLines(Run({"channels", "--json", "--simulate=--no-scanner --seed 3"}).out).size(),
            2u);
  EXPECT_EQ(Run({"--simulate=--model T999", "identify"}).exitcode, 5);
  CProcess killed(THERMOSCRIBE_PATH, Words("--simulate measure --count 0"));
  EXPECT_THAT(killed.ReadLine(), Not(IsEmpty()));
  killed.Signal(SIGKILL);
  killed.Wait();
  unsetenv("TMPDIR");
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "tmp"));
}

TEST_F(Cli, ATraceWithHolesIsToldOfAndIsAFailure) {
  const Outcome untraced = Run(Words("--simulate --trace /dev/full identify"));
  EXPECT_EQ(untraced.exitcode, 1);
  EXPECT_THAT(untraced.err, HasSubstr("trace file /dev/full could not be written"));
}

TEST_F(Cli, SimulatedReadoutTakesItsLinkAwayAndTellsThatNobodyGetsItsPath) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    StartSimulator();
    EXPECT_TRUE(std::filesystem::exists(Port()));
    simulator_->Signal(signal);
    EXPECT_EQ(simulator_->Wait().exitcode, 0);
    EXPECT_FALSE(std::filesystem::is_symlink(Port()));
  }
  const std::string nowhere = std::string(THERMOSCRIBE_SIM_PATH) + " --link " + Port();
  for (const char* output : {" 1>&-", " >/dev/full"}) {
    const Outcome outcome = CProcess("/bin/sh", {"-c", nowhere + output}).Wait();
    EXPECT_EQ(outcome.exitcode, 1);
    EXPECT_THAT(outcome.err, HasSubstr("the output can't be written"));
  }
}

}  // namespace
}  // namespace vane
