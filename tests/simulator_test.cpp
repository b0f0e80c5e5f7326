#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "gmock/gmock.h"
#include "physics/sensor.h"
#include "protocol/command_table.h"
#include "protocol/framing.h"
#include "simulator/answer_queue.h"
#include "simulator/fault_plan.h"
#include "simulator/line_server.h"
#include "simulator/options.h"
#include "simulator/readout.h"
#include "simulator/sensor_model.h"
#include "tests/support/host_machine.h"

namespace vane::simulator {
namespace {

using namespace std::chrono_literals;
using enum ECommand;

// Fields that fit any row of a probe with the ITS-90 subranges 4 and 11.
CommandParams FieldsFor(const protocol::CommandRow& row, const std::string& value = {}) {
  const bool high = row.text.find("HIGH") != row.text.npos;
  return {value, "1", "1", high ? "11" : "4", "1", value};
}

std::string Ask(CReadout& readout, ECommand id, const CommandParams& fields) {
  std::string problem;
  const auto command = protocol::BuildCommand(*protocol::FindCommand(id), fields, problem);
  return command ? readout.Answer(*command).value_or("(silence)") : problem;
}

std::string Ask(CReadout& readout, const std::string& command) {
  return readout.Answer(command).value_or("(silence)");
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

// Says the commands of `script`, lines of "command -> answer", and expects those answers.
void ExpectTalk(CReadout& readout, const std::string& script) {
  std::string talk;
  for (const std::string& line : Split(script, '\n')) {
    const std::string command = line.substr(0, line.find(" -> "));
    talk += command + " -> " + Ask(readout, command) + "\n";
  }
  EXPECT_EQ(talk, script);
}

TEST(Readout, EachWriteIsWhatItsReadThenTells) {
  // Read id, what is written, what is then told; a coefficient takes any number and isn't listed.
  const std::string cases =
      R"(24|e|EXPONENTIAL;26|12.5|12.5;28|1000000|1E+06;32|99999|99999;34|10|10;36|9999|9999
;54|32000|32000;56|4|4;58|1|1;60|SN|SAMPLE N;66|0|0;68|8|8;70|3|3;84|-3.00|-3;86|OFF|OFF;104|5|5
;76|1.0000000000001|1.0000000000001;106|4|4;108|100|100;110|7|7;112|9|9;116|6|6;122|AB-12345|AB-12345
;130|TT|THRM-R(T);136|16|16;138|10K|10 KOHM;140|21.0000|21;168|O|OHM;142|0.000001|1E-06;225|68|68
;205|4|4 (83.8058 K to 273.16 K);207|11|11 (0 C to 29.7646 C))";
  std::map<ECommand, std::pair<std::string, std::string>> listed;
  for (const std::string& text : Split(cases, ';')) {
    const std::vector<std::string> parts = Split(text.substr(0, text.find('\n')), '|');
    listed[ECommand{std::stoi(parts[0])}] = {parts[1], parts[2]};
  }
  CReadout readout({});
  Ask(readout, "PROBE 1:ITS90:LOW:RANGE 1");
  std::map<ECommand, std::string> told;
  int writes = 0;
  for (const protocol::CommandRow& row : protocol::CommandTable()) {
    writes += row.IsRead() ? 0 : 1;
    const protocol::CommandRow* const write = protocol::FindCommand(WriteOf(row.id));
    if (!row.IsRead() || !write || write->symbol.substr(6) != row.symbol.substr(5)) continue;
    SCOPED_TRACE(row.symbol);
    const std::string id = std::to_string(static_cast<std::int32_t>(row.id));
    ASSERT_TRUE(listed.contains(row.id) || row.text.starts_with("PROBE {Probe}:"));
    const auto [value, answer] =
        listed.contains(row.id)
            ? listed.at(row.id)
            : std::pair(id + ".50E-07", id.substr(0, 1) + "." + id.substr(1) + "5E-05");
    const CommandParams readfields = FieldsFor(row);
    CommandParams fields = FieldsFor(row, value);
    if (row.id == READ_SCAN_STEP || row.id == READ_SCAN_CHANNEL) fields.Channel = value;
    if (row.id == READ_SCANNER_PROBE_INDEX || row.id == READ_PROBE_INDEX) fields.Probe = value;

    const std::string before = Ask(readout, row.id, readfields);
    ASSERT_EQ(before.front(), '=') << before;
    EXPECT_NE(before, "=" + answer);
    if (write->text.ends_with("{value}") || write->text.ends_with("{FilterCode}")) {
      EXPECT_EQ(Ask(readout, write->id, readfields), "=");
      EXPECT_EQ(Ask(readout, row.id, readfields), before) << "after an empty write";
    }
    EXPECT_EQ(Ask(readout, write->id, fields), "=");
    told[row.id] = "=" + answer;
  }
  EXPECT_EQ(static_cast<int>(told.size()), writes - 5)
      << "all but initialize, start, stop, date and time";
  // Read after all the writes, so that no two settings share a place.
  for (const protocol::CommandRow& row : protocol::CommandTable()) {
    if (!row.IsRead()) continue;
    const std::string answer = Ask(readout, row.id, FieldsFor(row));
    EXPECT_EQ(answer.front(), '=') << row.symbol;
    if (told.contains(row.id)) {
      EXPECT_EQ(answer, told.at(row.id)) << row.symbol;
    }
  }
}

TEST(Readout, EachCodeHasItsWord) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"FILTER:TYPE", "n=NONE;a=AVERAGE;e=EXPONENTIAL"},
      {"SAMPLE:ACTION", "R=RUN;ST=STOP;SN=SAMPLE N"},
      {"CAL:OVEN", "ON=ON;OFF=OFF"},
      {"UNITS", "C=C;F=F;K=K;O=OHM;R=RATIO;W=W"},
      {"PROBE 3:REFERENCE", "EXT=EXT;1=1 OHM;10=10 OHM;100=100 OHM;10K=10 KOHM"},
      {"PROBE 3:CONVERSION",
       "90=ITS-90;68=IPTS-68;CVD=CVD;POLY=POLYNOMIAL;TR=THRM-T(R);"
       "TT=THRM-R(T);O=R(\xF4);W=W(T90);R=RATIO"},
      {"PROBE 3:IPTS68:SCALE", "90=90;68=68"}};
  CReadout readout({});
  for (const auto& [setting, words] : cases) {
    for (const std::string& word : Split(words, ';')) {
      Ask(readout, setting + " " + word.substr(0, word.find('=')));
      EXPECT_EQ(Ask(readout, setting + "?"), word.substr(word.find('='))) << setting;
    }
  }
}

TEST(Readout, EveryAnswerHasTheFormOfItsCommand) {
  int answers = 0;
  for (const char* text : {"", "--no-scanner --seed 7", "--firmware 5.02 --protect units --seed 99",
                           "--firmware 5.02 --no-scanner", "--model \"T312B REV C\" --seed 123"}) {
    Moment now{};
    CReadout readout(ParseOptions(text).readout, [&now] { return now; });
    for (const std::string unit : {"C", "F", "K", "O", "R", "W"}) {
      Ask(readout, "UNITS " + unit);
      Ask(readout, "RESOLUTION:TEMPERATURE " + std::to_string(unit[0] % 9));
      now += 1h;
      for (const protocol::CommandRow& row : protocol::CommandTable()) {
        if (!row.IsRead()) continue;
        const bool isloose = row.id == READ_IDENTIFICATION || row.id == READ_HISTORY_LOG ||
                             row.id == READ_MEMORY_LOG;
        EXPECT_EQ(protocol::FitsForm(row.form, readout.Identification()), isloose) << row.symbol;
        for (int i = 0; i < 16 * 12; ++i) {
          const std::string number = std::to_string(i % 16 + 1);  // of a probe or a channel
          const std::string part = std::to_string(i / 16);        // a range or an index
          const std::string answer = Ask(readout, row.id, {"", number, number, part, part, ""});
          if (answer.front() != '=') continue;
          ++answers;
          EXPECT_TRUE(protocol::FitsForm(row.form, answer.substr(1))) << row.symbol << answer;
        }
      }
    }
  }
  EXPECT_GT(answers, 100000);
}

TEST(Readout, RefusesWhatIsBeyondItsLimitsAndKeepsTheOldValue) {
  CReadout readout({});
  ExpectTalk(readout, R"(SAMPLE:INTERVAL 1 -> !3 out of range
SAMPLE:INTERVAL 100000 -> !3 out of range
SAMPLE:INTERVAL 2.5 -> !2 not a number
SAMPLE:INTERVAL? -> =2
CAL:ADC inf -> !2 not a number
CAL:PARAM 4 4999 -> !3 out of range
UNITS X -> !5 unknown code
PROBE 0:SERIAL? -> !3 out of range
PROBE 17:SERIAL? -> !3 out of range
PROBE 1:SERIAL 123456789 -> !7 text too long
PROBE 1:SERIAL A,5.03 -> !9 not a serial number
PROBE 1:SERIAL    -> !9 not a serial number
PROBE 1:POLY:C 11? -> !3 out of range
PROBE 1:ITS90:LOW 3:A? -> !6 not a range of this probe
PROBE 1:ITS90:LOW 7:A? -> !3 out of range
PROBE 1:ITS90:LOW:RANGE 6 -> !3 out of range
PROBE 1:ITS90:LOW:RANGE 0 -> =
PROBE 1:ITS90:LOW:RANGE? -> =NONE
SCANNER:STEP 101 1 -> !3 out of range
SCANNER:STEP 1 11 -> !3 out of range
SCANNER:STEP 1 0 -> =
SCANNER:STEP 2? -> =
SCANNER:PROBE 11 1 -> !3 out of range
MEASURE 3? -> !3 out of range
CLOCK:DATE 02-30-2024 -> !8 not a date or time
CLOCK:TIME 24:00:00 -> !8 not a date or time
CLOCK:TIME 13:00:00PM -> !8 not a date or time
LOG:HISTORY 0? -> !3 out of range
LOG:HISTORY 321? -> =
NONSENSE -> !1 unknown command
)");
}

TEST(Readout, OldFirmwareAndAbsentScannerAnswerDifferently) {
  const std::string commands = "SCANNER:MODULES?;CHANNEL:COUNT?;SCANNER:MODE?;CHANNEL:MODE 3";
  const auto talk = [&commands](const std::string& options) {
    CReadout readout(ParseOptions(options).readout);
    std::string answers;
    for (const std::string& command : Split(commands, ';')) answers += Ask(readout, command) + ";";
    return answers;
  };
  EXPECT_EQ(talk(""), "=1;=12;=1;=;");
  EXPECT_EQ(talk("--no-scanner"), "=0;=2;!4 no scanner attached;!4 no scanner attached;");
  EXPECT_EQ(talk("--firmware 5.02"), "!1 unknown command;!1 unknown command;=1;=;");
  EXPECT_EQ(talk("--firmware 5.02 --no-scanner"),
            "!1 unknown command;!1 unknown command;(silence);!4 no scanner attached;");
}

TEST(Readout, NewDataComesWithTheIntervalWhileMeasuring) {
  Moment now{};
  CReadout readout({}, [&now] { return now; });
  const auto isnew = [&](std::chrono::milliseconds passed) {
    now += passed;
    return Ask(readout, "MEASURE:NEW?");
  };
  EXPECT_EQ(isnew(1999ms), "=0");
  EXPECT_EQ(isnew(1ms), "=1");
  EXPECT_EQ(isnew(0ms), "=1") << "until a reading is fetched";
  const std::string first = Ask(readout, "SCANNER:MEASURE 1?");
  EXPECT_EQ(isnew(0ms), "=0");
  EXPECT_EQ(Ask(readout, "SCANNER:MEASURE 1?"), first) << "the same sample";
  now += 1500ms;
  Ask(readout, "SAMPLE:INTERVAL 10");
  EXPECT_EQ(isnew(9999ms), "=0");
  EXPECT_EQ(isnew(1ms), "=1");
  EXPECT_NE(Ask(readout, "SCANNER:MEASURE 1?"), first);
  Ask(readout, "MEASURE:STOP");
  EXPECT_EQ(isnew(1h), "=0");
  Ask(readout, "MEASURE:START");
  EXPECT_EQ(isnew(10s), "=1");
}

TEST(Readout, ReadingsFollowTheUnitsAndTheResolution) {
  Moment now{};
  CReadout readout({}, [&now] { return now; });
  // Input 2 stands at the triple point of water, with the 2.5 ohm probe; 10 ohm is the reference,
  // and truly 10.000123.
  const std::vector<std::tuple<std::string, double, double>> cases = {
      {"C", 0.01, 0.01},    {"F", 32.018, 0.02},   {"K", 273.16, 0.01},
      {"O", 2.53189, 1e-4}, {"R", 0.253186, 1e-5}, {"W", 1, 1e-4}};
  for (const auto& [code, value, tolerance] : cases) {
    Ask(readout, "UNITS " + code);
    EXPECT_NEAR(std::stod(Ask(readout, "MEASURE 2?").substr(1)), value, tolerance) << code;
  }
  EXPECT_EQ(Ask(readout, "MEASURE 2?").find('.'), 2u);
  EXPECT_EQ(Ask(readout, "MEASURE 2?").size(), 3u + 7u);
  Ask(readout, "RESOLUTION:RATIO 0");
  EXPECT_EQ(Ask(readout, "MEASURE 2?"), "=1");
}

// As on a bench: what is written into the readout moves its readings, and nothing in the bath.
TEST(Readout, ReadingsComeFromTheNumbersThatItHolds) {
  Moment now{};
  ReadoutOptions options;
  options.bath = {.levels = {{3, 100}}, .drift = 0, .noise = 0, .steps = {{2, 0.5}}};
  CReadout readout(options, [&now] { return now; });
  const auto reading = [&](const std::string& units) {
    Ask(readout, "UNITS " + units);
    return std::stod(Ask(readout, "SCANNER:MEASURE 1?").substr(1));
  };
  EXPECT_EQ(reading("C"), 100);
  EXPECT_NEAR(reading("K"), 373.15, 1e-9);
  const double ohms = reading("O");
  const double ratio = reading("R");
  EXPECT_NEAR(reading("W") * 25.4786312, ohms, 1e-5);
  // RTPW 1e-5 larger: colder by that part of R / (dR/dT). The resistance stays.
  Ask(readout, "PROBE 3:ITS90:RTPW 25.478886");
  EXPECT_NEAR(reading("C"), 100 - 1e-5 * 35.4835 / 0.0985318, 2e-4);
  EXPECT_EQ(reading("O"), ohms);
  // A larger reference resistor is a larger resistance for the same ratio.
  Ask(readout, "CAL:PARAM 3 100.998697");
  EXPECT_NEAR(reading("O") / ohms, 1.01, 2e-5);
  EXPECT_EQ(reading("R"), ratio);
  now += 4s;
  EXPECT_NEAR(reading("R") / ratio, 1 + 0.5 * 0.0985318 / 35.4835, 1e-6);
}

// What a wrong digit costs somewhere in the range of the probe: more than the last digit of a
// reading, or it can't be seen in one.
TEST(SensorModel, AWrongDigitInANumberOfARecordShows) {
  std::vector<std::string> unseen;
  for (const Probe& probe : MakeProbes()) {
    const auto record = RecordOf(probe);
    if (!record) continue;
    const physics::CSensor sensor(*record);
    physics::Record changed = *record;
    for (const auto& [name, number] : physics::ParametersOf(changed)) {
      if (*number == 0) continue;
      const double whole = *number;
      *number += std::pow(10, std::floor(std::log10(std::abs(whole))));  // its first digit
      double most = 0;
      for (double kelvin = 14; kelvin < 1235; kelvin += 1) {
        try {
          const physics::Marked ohms = sensor.Resistance(kelvin);
          if (ohms.Has(physics::EMark::EXTRAPOLATED)) continue;
          if (ohms.Has(physics::EMark::UNBOUNDED) && (kelvin < 250 || kelvin > 500)) continue;
          const double off = physics::CSensor(changed).Temperature(ohms.value).value - kelvin;
          most = std::max(most, std::abs(off));
        } catch (const std::exception&) {
          continue;  // beyond its curve
        }
      }
      *number = whole;
      if (most < 1e-4) unseen.push_back(probe.serial + " " + name);
    }
  }
  // Over its short range that one moves no reading by more than 0.06 mK.
  EXPECT_THAT(unseen, testing::ElementsAre("RT-0077 b5"));
}

TEST(Readout, ClockTakesBothHourForms) {
  Moment now{};
  CReadout readout({}, [&now] { return now; });
  const std::chrono::sys_days day = std::chrono::year(2024) / 2 / 29;
  EXPECT_EQ(Ask(readout, "CLOCK:DATE 02-29-2024"), "=");
  const std::vector<std::pair<std::string, std::chrono::seconds>> cases = {
      {"23:59:58", 86398s}, {"3:07:09PM", 54429s}, {"12:00:01AM", 1s}, {"0:00:01PM", 43201s}};
  for (const auto& [text, time] : cases) {
    EXPECT_EQ(Ask(readout, "CLOCK:TIME " + text), "=") << text;
    EXPECT_EQ(readout.ClockTime(), day + time) << text;
  }
  now += 3s;
  EXPECT_EQ(readout.ClockTime(), day + 43204s);
}

TEST(FaultPlan, StrikesAsWritten) {
  const auto struck = [](const std::string& text) {
    const CFaultPlan plan({ParseFaultRule(text)}, 7);
    std::vector<std::uint64_t> exchanges;
    for (std::uint64_t i = 1; i <= 1000; ++i) {
      if (plan.Strike(i, i % 10 == 0 ? i / 10 : 0)) exchanges.push_back(i);
    }
    return exchanges;
  };
  EXPECT_EQ(struck("at=3:drop"), (std::vector<std::uint64_t>{3}));
  EXPECT_EQ(struck("every=400:garble"), (std::vector<std::uint64_t>{400, 800}));
  EXPECT_EQ(struck("Write=3:DROP"), (std::vector<std::uint64_t>{30}));
  EXPECT_EQ(struck("p=1:refuse").size(), 1000u);
  EXPECT_NEAR(static_cast<double>(struck("p=0.1:refuse").size()), 100, 40);
  EXPECT_EQ(ParseFaultRule("at=1:late").seconds, 1.5);
  EXPECT_EQ(ParseFaultRule("at=1:late=0.25").seconds, 0.25);
  for (const char* text : {"drop", "at=0:drop", "at=x:drop", "p=2:drop", "at=1:burn", "at=1:drop=2",
                           "at=1:late=-1", "on=1:drop", "write=0:drop", "at=1:refuse=0",
                           "at=1:answer", "at=1:answer=\t", "at=1:identify=x"}) {
    EXPECT_THROW(ParseFaultRule(text), std::invalid_argument) << text;
  }
}

TEST(FaultPlan, GarbledLineNeverPassesItsCheck) {
  const CFaultPlan plan({}, 3);
  const std::string line = protocol::FrameLine(0x1A2B, "=R(\xF4) 12.5");
  for (std::uint64_t i = 1; i <= 2000; ++i) {
    const std::string garbled = plan.Garble(line, i);
    ASSERT_EQ(garbled.find_first_of("\r\n"), garbled.npos);
    ASSERT_FALSE(protocol::ParseLine(garbled)) << garbled;
  }
}

TEST(AnswerQueue, PacesAsALineOfThatSpeed) {
  CAnswerQueue queue(1000);  // 10 ms a byte
  const Moment start{};
  const Moment arrived = queue.CommandArrives(5, start);
  EXPECT_EQ(arrived - start, 50ms);
  queue.Add("abcd", arrived);
  EXPECT_EQ(queue.TakeDue(start + 59ms), "");
  EXPECT_EQ(queue.TakeDue(start + 75ms), "ab");
  EXPECT_EQ(queue.NextDue(), start + 80ms);
  queue.Add("ef", arrived);
  EXPECT_EQ(queue.TakeDue(start + 100ms), "cde") << "one byte after the other";
  EXPECT_EQ(queue.TakeDue(start + 1s), "f");
  EXPECT_FALSE(queue.NextDue());
  EXPECT_EQ(queue.CommandArrives(1, start) - start, 60ms) << "behind the first command";
}

TEST(AnswerQueue, HeldAnswerIsPassedAndNeverMixed) {
  CAnswerQueue queue(0);
  const Moment start{};
  queue.Add("late\n", start + 2s);
  queue.Add("split\n", start, 100ms);
  queue.Add("next\n", start + 50ms);
  EXPECT_EQ(queue.TakeDue(start), "spl");
  EXPECT_EQ(queue.TakeDue(start + 60ms), "");
  EXPECT_EQ(queue.TakeDue(start + 100ms), "it\nnext\n");
  EXPECT_EQ(queue.TakeDue(start + 2s), "late\n");
}

TEST(SimulatorOptions, WrongOnesAreToldAndHelpIsText) {
  for (const char* text : {"--burn", "--fault at=0:drop", "--protect everything", "--baud -1",
                           "--firmware new", "--seed x", "--scanner --no-scanner", "stray"}) {
    EXPECT_THROW(ParseOptions(std::string(text)), std::invalid_argument) << text;
  }
  const Options options = ParseOptions(
      "--protect calibration,units --passcode \"a b\" --fault at=1:drop --fault every=2:late");
  CReadout readout(options.readout);
  ExpectTalk(readout, R"(PROTECT:CONVERSION? -> =OFF
PROTECT:CALIBRATION? -> =ON
PROTECT:SAMPLING? -> =OFF
PROTECT:UNITS? -> =ON
)");
  EXPECT_EQ(Ask(readout, std::string(protocol::kPasscodeCommand)), "=a b");
  EXPECT_EQ(options.faults.size(), 2u);
  EXPECT_NE(ParseOptions("--help").help.find("--fault"), std::string::npos);
  EXPECT_TRUE(ParseOptions("--version").help.starts_with("thermoscribe-sim "));

  const test::CTemporaryFolder folder;
  const std::string file = folder / "passcode";
  const std::pair<const char*, const char*> files[] = {{"K9 zQ\r\n1234\n", "K9 zQ"},
                                                       {"7", "7"},
                                                       {"", nullptr},
                                                       {"\n7", nullptr},
                                                       {"1,2\n", nullptr}};
  for (const auto& [text, passcode] : files) {
    std::ofstream(file, std::ios::trunc) << text;
    const auto parse = [&] { return ParseOptions("--passcode-file " + file).readout.passcode; };
    if (passcode == nullptr) {
      EXPECT_THROW(parse(), std::invalid_argument) << text;
    } else {
      EXPECT_EQ(parse(), passcode);
    }
  }
  EXPECT_THROW(ParseOptions("--passcode 1 --passcode-file " + file), std::invalid_argument);
  EXPECT_THROW(ParseOptions("--passcode-file " + file + "x"), std::invalid_argument);
}

// What comes for `text` until a line ends; "(lost)" when the line is gone.
std::string Talk(const std::string& path, const std::string& text) {
  const int file = open(path.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  std::string answer;
  char c = 0;
  while (!answer.ends_with('\n')) {
    pollfd ready{file, POLLIN, 0};
    if (poll(&ready, 1, 500) != 1) break;
    if (read(file, &c, 1) != 1) {
      answer += "(lost)";
      break;
    }
    answer += c;
  }
  close(file);
  return answer;
}

TEST(SimulatedLine, KilledClientKeepsNobodyOutAndALivingOneItsOwn) {
  CSimulatedLine line(ParseOptions(""));
  line.Start();
  const int client = open(line.Path().c_str(), O_RDWR | O_NOCTTY);
  const auto isexclusive = [client] {
    int state = -1;
    EXPECT_EQ(ioctl(client, TIOCGEXCL, &state), 0);
    return state == 1;
  };
  ASSERT_EQ(flock(client, LOCK_EX), 0);
  ASSERT_EQ(ioctl(client, TIOCEXCL), 0);
  std::this_thread::sleep_for(1200ms);
  EXPECT_TRUE(isexclusive());
  ASSERT_EQ(flock(client, LOCK_UN), 0);
  for (int tries = 0; tries < 400 && isexclusive(); ++tries) std::this_thread::sleep_for(5ms);
  EXPECT_FALSE(isexclusive());
  close(client);
}

TEST(SimulatedLine, HasNoFileUnderTheNumberOfAStandardOne) {
  const auto withoutfiles = [] {
    for (const int file : {0, 1, 2}) close(file);
    CSimulatedLine line(ParseOptions(""));
    line.Start();
    bool isgood = line.Ask("UNITS?") == "=C";
    for (const int file : {0, 1, 2}) isgood = isgood && fcntl(file, F_GETFD) == -1;
    line.Stop();
    _exit(isgood ? 0 : 1);
  };
  EXPECT_EXIT(withoutfiles(), testing::ExitedWithCode(0), "");
}

TEST(SimulatedLine, LogsWhatItGivesAndIsSwitchedOffAndOn) {
  const std::filesystem::path log =
      std::filesystem::temp_directory_path() / ("readings_log." + std::to_string(getpid()));
  CSimulatedLine line(
      ParseOptions("--fault at=2:garble --fault at=4:power=0.05 --readings-log " + log.string()));
  line.Start();
  const std::string path = line.Path();
  const std::string first = Talk(path, "MEASURE 1?\r");
  Talk(path, "SCANNER:MEASURE 10?\r");
  Talk(path, "UNITS K\r");
  EXPECT_EQ(Talk(path, "MEASURE:NEW?\r"), "(lost)") << "switched off";
  for (int tries = 0, file = -1; tries < 400 && file < 0; ++tries) {
    std::this_thread::sleep_for(5ms);
    file = open(path.c_str(), O_RDWR | O_NOCTTY);
    if (file >= 0) close(file);
  }
  EXPECT_EQ(Talk(path, "MEASURE:NEW?\r"), "=0\r\n") << "the next sample is an interval away";
  EXPECT_EQ(Talk(path, "UNITS?\r"), "=K\r\n");
  line.Stop();
  std::ifstream file(log);
  std::vector<std::string> words;
  for (std::string word; file >> word;) words.push_back(word);
  std::filesystem::remove(log);
  using testing::_;
  ASSERT_EQ(words.size(), 10u);
  EXPECT_EQ(words[3] + "\r\n", first);
  EXPECT_THAT(words, testing::ElementsAre(_, "0", "1", _, "sent", _, "0", "12", _, "garble"));
}

TEST(SimulatedLine, FaultsOnARealTerminal) {
  CSimulatedLine line(ParseOptions(
      "--fault at=3:drop --fault at=4:split=0.1 --fault at=5:refuse --fault at=6:identify "
      "--fault at=7:hangup=0.05 --fault write=2:answer=12.3.4 --fault write=3:refuse=-5 "
      "--fault write=4:answer= --fault at=12:overlong "
      "--fault at=13:late=0.2 --fault at=14:hangup=0.05"));
  line.Start();
  const std::string path = line.Path();
  const std::string firstdevice = std::filesystem::read_symlink(path);
  const auto framed = [](std::uint16_t tag, const std::string& body) {
    return protocol::FrameLine(tag, body) + "\r\n";
  };
  EXPECT_EQ(Talk(path, "ID?\r"), "=T312B, 5.03\r\n");
  EXPECT_EQ(Talk(path, "\r\n" + framed(0xABCD, "UNITS?")), framed(0xABCD, "=C"));
  const std::string ignored = "#0001 UNITS?*0000\r\n" + std::string(600, 'x') + "\r\n";
  EXPECT_EQ(Talk(path, ignored + framed(3, "UNITS?")), "") << "no lines, and a dropped answer";
  EXPECT_EQ(line.IgnoredLines(), 2u);
  EXPECT_EQ(Talk(path, framed(4, "UNITS?")), framed(4, "=C"));
  EXPECT_EQ(Talk(path, framed(5, "UNITS F")), framed(5, "!20 busy"));
  EXPECT_EQ(line.Ask("UNITS?"), "=C") << "a refused command is not obeyed";
  EXPECT_EQ(Talk(path, framed(6, "UNITS?")), framed(6, "=T312B, 5.03"));
  const int oldend = open(path.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_EQ(Talk(path, framed(7, "UNITS?")), "(lost)");
  const auto waitforplug = [&path] {
    int unplugged = 0;
    for (; unplugged < 400; ++unplugged) {
      const int file = open(path.c_str(), O_RDWR | O_NOCTTY);
      if (file >= 0) {
        close(file);
        break;
      }
      EXPECT_EQ(errno, ENXIO);
      std::this_thread::sleep_for(5ms);
    }
    EXPECT_GT(unplugged, 0);
  };
  waitforplug();
  EXPECT_EQ(Talk(path, framed(8, "UNITS?")), framed(8, "=C"));
  EXPECT_NE(std::filesystem::read_symlink(path), firstdevice) << "the old end is still open";
  close(oldend);
  EXPECT_EQ(Talk(path, "units K\r"), "=12.3.4\r\n") << "the second write";
  EXPECT_EQ(Talk(path, "UNITS K\r"), "!-5 refused\r\n");
  EXPECT_EQ(Talk(path, "UNITS K\r"), "=\r\n");
  EXPECT_EQ(line.Ask("UNITS?"), "=C") << "none of them is obeyed";
  EXPECT_GT(Talk(path, framed(12, "UNITS?")).size(), protocol::kMaxLineLength + 2);
  EXPECT_EQ(Talk(path, framed(13, "UNITS?") + framed(14, "UNITS?")), "(lost)");
  waitforplug();
  EXPECT_EQ(Talk(path, ""), "") << "an answer on the line of before";
  EXPECT_EQ(line.Exchanges(), 14u);
  line.Stop();
  EXPECT_EQ(open(path.c_str(), O_RDWR | O_NOCTTY), -1);
}

}  // namespace
}  // namespace vane::simulator
