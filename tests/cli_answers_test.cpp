// Readings, downloads and what an odd readout is told of, as a user runs the program.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/cli.h"

namespace vane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

std::vector<int> ChannelsOf(const Outcome& outcome) {
  std::vector<int> channels;
  for (const Answer& reading : JsonLines(outcome.out)) {
    channels.push_back(static_cast<int>(reading["channel"].Number()));
  }
  return channels;
}

// On a simulated readout in the program, in a shell: `$T` is the program.
Outcome InShell(const std::string& script) {
  setenv("T", THERMOSCRIBE_PATH, 1);
  return CProcess("/bin/bash", {"-c", script}).Wait();
}

TEST_F(Cli, MeasuresTheChannelsOfAListInItsOrderRoundForRound) {
  StartSimulator();
  const Outcome outcome = Ask("measure --json --count 2 --channel 7,2,10-12");
  EXPECT_THAT(ChannelsOf(outcome), ElementsAre(7, 2, 10, 11, 12, 7, 2, 10, 11, 12));
  EXPECT_THAT(ChannelsOf(Ask("measure --json --channel ALL")),
              ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
  for (const std::string list : {"2,2", "2-4,3", "5-3", "0", "13", "1-13", "2,", "2-3-4", "-2"}) {
    const Outcome refused = Run({"measure", "--simulate", "--channel", list});
    EXPECT_EQ(refused.exitcode, 2) << list;
    EXPECT_THAT(refused.err, StartsWith("thermoscribe: --channel ")) << list;
  }
  StartSimulator("--no-scanner");
  std::filesystem::remove(TraceFile());
  const Outcome missing = Ask("measure --channel 1,5");
  EXPECT_EQ(missing.exitcode, 2);
  EXPECT_THAT(missing.err, HasSubstr("channel 5. The readout has the channels 1 to 2."));
  EXPECT_THAT(Trace(), Not(HasSubstr("MEASURE")));
}

// The seventh exchange, the first reading, takes longer than a round may.
TEST_F(Cli, ARoundThatComesLateIsNotMadeUpFor) {
  StartSimulator("--fault at=7:delay=0.7");
  const std::vector<Answer> readings = JsonLines(
      Run(Words("measure --json --count 3 --every 0.4 --timeout 9 --port " + Port())).out);
  ASSERT_EQ(readings.size(), 3u);
  const auto second = [&](std::size_t i) {
    return std::stod(readings[i]["time"].Text().substr(17, 6));
  };
  EXPECT_GT(std::fmod(60 + second(2) - second(1), 60), 0.25);
}

// The sixth exchange reads the units, the eighth and tenth read them again behind a reading.
TEST_F(Cli, AReadingBetweenTwoUnitsIsTakenAgain) {
  const struct {
    std::string faults;
    std::string unit;
    int readings;
  } cases[] = {{"", "\u00B0C", 1},
               {"--fault at=8:answer=K", "\u00B0C", 3},
               {"--fault at=8:answer=K --fault at=10:answer=K", "K", 2},
               {"--fault at=6:answer=OHM --fault at=8:answer=OHM", "Ohms", 1}};
  for (const auto& c : cases) {
    StartSimulator(c.faults);
    std::filesystem::remove(TraceFile());
    const std::vector<Answer> readings = JsonLines(Ask("measure --json").out);
    ASSERT_EQ(readings.size(), 1u) << c.faults;
    EXPECT_EQ(readings[0]["unit"], c.unit) << c.faults;
    int taken = 0;
    for (const std::string& line : Lines(Trace())) taken += line.find(" MEASURE 2?") != line.npos;
    EXPECT_EQ(taken, c.readings) << c.faults;
  }
  StartSimulator("--fault at=7:answer=-0.000");
  const Outcome text = Ask("measure");
  EXPECT_THAT(text.out, testing::ContainsRegex("Input 2 +\u00B0C +0\n$"));
  StartSimulator("--fault at=7:answer=1e400 --fault at=8:answer=1e400");
  EXPECT_THAT(Ask("measure").err, HasSubstr("answers \"1e400\" to MEASURE 2?"));
}

TEST_F(Cli, ALongSampleIntervalIsWaitedFor) {
  StartSimulator();
  Tell("SAMPLE:INTERVAL 300");
  Tell("MEASURE:STOP");
  EXPECT_EQ(Ask("measure --new --limit 0").exitcode, 1);
  EXPECT_THAT(Trace(), Not(HasSubstr("SAMPLE:INTERVAL?")));
  CProcess waiting(THERMOSCRIBE_PATH, OnPort("measure --new", Port()));
  while (Trace().find("SAMPLE:INTERVAL?") == std::string::npos) std::this_thread::yield();
  waiting.Signal(SIGTERM);
  EXPECT_EQ(waiting.Wait().exitcode, 7);
}

TEST_F(Cli, AppendsReadingsToAFileAndLosesNone) {
  const std::string file = folder_ / "bath.csv";
  const Arguments csv = {"--simulate", "measure", "--csv", "--channel", "2,3", "--output", file};
  EXPECT_THAT(Run(csv).out, IsEmpty());
  std::ofstream(file, std::ios::app) << "2026-01-01T00";  // what a power failure has left
  EXPECT_EQ(Run(csv).exitcode, 0);
  const std::vector<std::string> lines = Lines(FileText("bath.csv"));
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "time,channel,name,reading,unit\r");
  EXPECT_THAT(lines[2], testing::ContainsRegex(",3,Scanner 1,[0-9.]+,\u00B0C\r$"));
  EXPECT_EQ(lines[3], "2026-01-01T00");

  std::ofstream(folder_ / "other") << "a,b\n";
  Arguments other = csv;
  other.back() = folder_ / "other";
  EXPECT_EQ(Run(other).exitcode, 2);
  EXPECT_EQ(FileText("other"), "a,b\n");
  EXPECT_EQ(Run({"--json", "--simulate", "measure", "--csv"}).exitcode, 2);
  EXPECT_EQ(Run({"--port", "/dev/nothing", "measure", "--output", folder_ / "new"}).exitcode, 3);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "new"));

  // A file that may not grow holds whole lines, wherever it comes from.
  for (const std::string& target : {"--output " + file, ">> " + file, "> " + file}) {
    const Outcome full =
        InShell("ulimit -f 4; exec \"$T\" --simulate measure --count 100 " + target);
    EXPECT_EQ(full.exitcode, 1) << target;
    EXPECT_THAT(full.err, HasSubstr("File too large"));
    EXPECT_THAT(FileText("bath.csv"), testing::EndsWith("\n"));
  }
}

TEST_F(Cli, EndsQuietlyWhenNobodyReadsTheAnswer) {
  for (const std::string& command : std::vector<std::string>{
           "--help", "ports", "--simulate measure --count 0", "--simulate --json channels",
           "--simulate settings save -", "--simulate settings save /dev/stdout",
           "--simulate settings set Units=K --dry-run",
           "--simulate --quiet download --readings 2 --csv - --folder " + folder_.string(),
           "--simulate --quiet download --readings 2 --csv /dev/stdout --folder " +
               folder_.string()}) {
    const Outcome outcome =
        InShell("exec 3> >(true); wait $!; \"$T\" " + command + " >&3; echo $? >&2");
    EXPECT_EQ(outcome.err, "141\n") << command;
  }
  EXPECT_EQ(
      InShell("exec 3> >(true); wait $!; " THERMOSCRIBE_SIM_PATH " --help >&3; echo $? >&2").err,
      "141\n");
  EXPECT_THAT(InShell("\"$T\" --help > /dev/full").err, HasSubstr("No space left"));
}

TEST_F(Cli, TellsOfAnOddReadoutWhatIsKnownAndThenWhatIsWrong) {
  const struct {
    std::string simulator;
    int exitcode;
    std::string known;
    std::string trouble;
  } cases[] = {
      {"--model T999", 5, R"("model":"T999","firmware":5.03.*,"numchannels":null,"modules":null)",
       "is not a model 'T312B'"},
      {"--fault at=3:answer=T312B", 0,
       R"("model":null,"firmware":null,"minfirmware":5.03,"firmwarerecent":null,.*,"numchannels":12)",
       "names no firmware version"},
      {"--fault at=4:answer=-5 --fault at=5:answer=-5", 8, R"("numchannels":null,"modules":null)",
       "answers ..-5"},
      {"--fault at=4:answer=7", 8, R"("numchannels":null,"modules":\[.*M420)",
       "counts 7 channels, but with its scanner it has 12"},
      {"--fault at=5:answer=0", 8, R"("numchannels":null,"modules":\[[^M]*\])",
       "counts 12 channels, but without a scanner it has 2"},
      {"--fault at=5:answer=2", 8, R"("numchannels":null,"modules":null)", "one is the most"},
      {"--fault at=2:refuse", 6, R"("numchannels":12,"modules":\[)", "initialize communications"},
      {"--fault at=4:refuse=-2147220219", 6, R"("numchannels":null,"modules":null)", "refused"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.simulator);
    const Outcome outcome = Run({"--json", "identify", "--simulate=" + c.simulator});
    EXPECT_EQ(outcome.exitcode, c.exitcode);
    EXPECT_THAT(outcome.out, testing::ContainsRegex(c.known));
    EXPECT_THAT(outcome.err, testing::ContainsRegex(c.trouble));
    if (c.exitcode == 0) continue;
    // Whatever needs more than that does without a readout like this one.
    const Outcome channels = Run({"channels", "--simulate=" + c.simulator});
    EXPECT_EQ(channels.exitcode, c.exitcode);
    EXPECT_THAT(channels.out, IsEmpty());
  }
  int terminal = -1;
  CProcess program(THERMOSCRIBE_PATH, {"identify", "--simulate=--model T999"}, &terminal);
  std::string screen;
  for (char character = 0; read(terminal, &character, 1) == 1;) screen += character;
  close(terminal);
  EXPECT_LT(screen.find("Identification  T999"), screen.find("is not a model"));
}

TEST_F(Cli, ADownloadKeepsItsFilesApartAndTellsWhatBecameOfThem) {
  const std::string folder = folder_;
  const std::string file = folder_ / "download.txt";
  std::filesystem::create_symlink("download.txt", folder_ / "link");
  const auto download = [&](const std::string& more) {
    return Run(Words("--simulate download --readings 3 --folder " + folder + " " + more));
  };
  for (const std::string& csv : {file, folder + "/./x/../download.txt", folder + "/link"}) {
    EXPECT_EQ(download("--csv " + csv).exitcode, 2);
    EXPECT_FALSE(std::filesystem::exists(file));
  }
  EXPECT_EQ(download("--csv - --json").exitcode, 2);
  EXPECT_EQ(InShell("cd " + folder + " && \"$T\" --simulate download > download.txt").exitcode, 2);
  std::filesystem::remove(file);
  for (const std::string name : {"-", "/dev/stdout"}) {
    const Outcome toout = download("--quiet --csv " + name);
    EXPECT_THAT(toout.out, StartsWith("number,unit,third\r\n"));
    EXPECT_EQ(Lines(toout.out).size(), 4u) << toout.out;
    EXPECT_THAT(toout.err, IsEmpty());
  }
  std::filesystem::remove(file);
  const Outcome nowhere = download("--csv " + folder + "/none/a.csv");
  EXPECT_EQ(nowhere.exitcode, 1);
  EXPECT_FALSE(std::filesystem::exists(file));
  const Outcome form = download("--json");
  EXPECT_THAT(form.err, IsEmpty());
  EXPECT_THAT(form.out, HasSubstr(R"("readings":3,"csv":null})"));
  EXPECT_THAT(download("").err, HasSubstr("Downloaded files"));
  const Outcome full = download("--csv /dev/full");
  EXPECT_EQ(full.exitcode, 1);
  EXPECT_THAT(full.err, HasSubstr(file + " holds 3 readings; no CSV file was written."));

  // The tenth exchange fetches the third reading.
  std::filesystem::remove(file);
  StartSimulator("--fault at=10:answer=25.0");
  EXPECT_THAT(Ask("download --json --readings 3 --folder " + folder).out,
              HasSubstr(R"("readings":2,)"));
  EXPECT_EQ(Lines(FileText("download.txt")).size(), 3u + 2u);

  std::filesystem::remove(file);
  std::filesystem::remove(TraceFile());
  StartSimulator("--fault every=1:delay=0.05");
  CProcess stopped(THERMOSCRIBE_PATH, OnPort("download --readings 90 --folder " + folder, Port()));
  while (Trace().find("LOG:HISTORY 2?") == std::string::npos) std::this_thread::yield();
  stopped.Signal(SIGINT);
  const Outcome outcome = stopped.Wait();
  EXPECT_EQ(outcome.exitcode, 7);
  EXPECT_THAT(outcome.err, HasSubstr("Aborted. No file was written."));
  EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace vane
