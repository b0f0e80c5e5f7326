// Every exchange of every command meets every kind of fault, and every command that writes is
// stopped at many of its moments. Whatever comes of it: the right answer, or an error with its exit
// code and a word about what is written; and afterwards the readout holds, of each of its settings,
// the old value or the wanted one.
//
// The program runs within this process, without its pauses. FAULT_SWEEP_STRIDE=1 plans a fault at
// each exchange and FAULT_SWEEP_MOMENTS=200 a signal at so many moments; without them a sample is
// taken that a build can wait for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "apps/thermoscribe/run.h"
#include "protocol/command_table.h"
#include "simulator/line_server.h"
#include "tests/support/json_answer.h"

namespace vane::thermoscribe {
namespace {

namespace fs = std::filesystem;

constexpr int kDone = static_cast<int>(EExitCode::DONE);
constexpr int kAborted = static_cast<int>(EExitCode::ABORTED);
// The rest of an exchange, and a write with its pause that a run still makes before it asks.
constexpr std::uint64_t kMomentsAfterStop = 8;

using State = std::map<std::string, std::string>;

struct Outcome {
  int exitcode = -1;
  std::string out;
  std::string err;
  State state;  // of the readout, at the end
  std::uint64_t exchanges = 0;
};

// What the program writes to a descriptor while this lives.
class CCaptured {
 public:
  explicit CCaptured(int descriptor)
      : descriptor_(descriptor), file_(memfd_create("captured", 0)), kept_(dup(descriptor)) {
    dup2(file_, descriptor_);
  }
  ~CCaptured() {
    dup2(kept_, descriptor_);
    close(kept_);
    close(file_);
  }
  CCaptured(const CCaptured&) = delete;
  CCaptured& operator=(const CCaptured&) = delete;

  std::string Text() const {
    std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
    if (pread(file_, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
      std::abort();
    return text;
  }

 private:
  int descriptor_;
  int file_;
  int kept_;
};

// The values that the fields of a command can have.
std::vector<std::string> Choices(std::string_view field) {
  const int first = field == "Index" ? 0 : 1;
  const int last = field == "Channel" ? 12 : field == "Probe" ? 16 : 12;
  std::vector<std::string> texts;
  for (int number = first; number <= last; ++number) texts.push_back(std::to_string(number));
  return texts;
}

// All that can be asked for, with every choice of every field; what is refused is left out.
void AddAnswers(State& state, simulator::CSimulatedLine& readout, const std::string& command) {
  const std::size_t open = command.find('{');
  if (open == command.npos) {
    const auto answer = readout.Ask(command);
    if (answer && answer->starts_with('=')) state[command] = *answer;
    return;
  }
  const std::size_t end = command.find('}', open);
  for (const std::string& text : Choices(command.substr(open + 1, end - open - 1))) {
    AddAnswers(state, readout, command.substr(0, open) + text + command.substr(end + 1));
  }
}

State StateOf(simulator::CSimulatedLine& readout) {
  State state;
  for (const protocol::CommandRow& row : protocol::CommandTable()) {
    const bool passes = row.text.starts_with("LOG:") || row.text.find("MEASURE") != row.text.npos;
    if (row.IsRead() && !passes) AddAnswers(state, readout, std::string(row.text));
  }
  return state;
}

// Time stamps and tags, which differ from run to run.
std::string WithoutChance(const std::string& text) {
  static const std::regex kStamp(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?([+-]\d\d:\d\d)?)");
  return std::regex_replace(text, kStamp, "TIME");
}

struct Job {
  const char* name;
  std::vector<std::string> arguments;
  bool writes = false;
  const char* simulator = "";  // options
};

class FaultSweep : public testing::Test {
 protected:
  FaultSweep() {
    std::string pattern = (fs::temp_directory_path() / "fault_sweep.XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    setenv("TMPDIR", folder_.c_str(), 1);
    setenv("LC_ALL", "C", 1);
    std::ofstream(folder_ / "passcode") << "K9zQ\n";
    MakeSnapshots();
  }
  ~FaultSweep() override {
    unsetenv("TMPDIR");
    fs::remove_all(folder_);
  }

  std::string Path(const char* name) const { return (folder_ / name).string(); }

  // The snapshot of the readout, and one that wants something of each kind changed.
  void MakeSnapshots() {
    Run({"save", {"settings", "save", Path("same.json")}}, {}, {});
    std::ifstream stream(Path("same.json"));
    Answer snapshot = ParsedJson({std::istreambuf_iterator<char>(stream), {}});
    snapshot.Put("/settings/Units", "K");
    snapshot.Put("/settings/FilterRespTime", 7.25);
    snapshot.Put("/settings/ScanChannels", "2,3,5");
    snapshot.Put("/probes/2/serial", "AB-1");
    snapshot.Put("/probes/9/coefficients/R0", 100.25);
    snapshot.Put("/channels/2/probe", 12);
    std::ofstream(Path("other.json")) << JsonText(snapshot);
  }

  std::vector<Job> Jobs() const {
    const std::string passcode = "--passcode-file=" + Path("passcode");
    const char* const guarded = "--passcode K9zQ --protect conversion --protect calibration";
    return {
        {"identify", {"identify"}},
        {"channels", {"channels"}},
        {"measure", {"measure", "--channel", "3", "--count", "2"}},
        {"measure --new", {"measure", "--new"}},
        {"channel", {"channel", "3"}},
        {"show", {"settings", "show", "--json"}},
        {"diff", {"settings", "diff", Path("other.json")}},
        {"save", {"settings", "save", Path("saved.json")}},
        {"download",
         {"download", "--readings", "5", "--folder", folder_.string(), "--csv", Path("log.csv")}},
        {"clock set", {"clock", "set", "--time", "2026-11-24T15:07:09"}, true},
        {"set", {"settings", "set", "Units=K", "Interval=5", "SampleN=321"}, true},
        {"set all",
         {"settings", "set", "FilterRespTime=7.25", "CalParams1=1.0012", passcode},
         true,
         guarded},
        {"scan set", {"scan", "set", "--sequence", "2,3,5", "--mode", "Scanner sequence"}, true},
        {"channel set", {"channel", "3", "set", "serial=AB-1", "current=1.414", "probe=12"}, true},
        {"probe set", {"probe", "10", "set", "R0=100.25", passcode}, true, guarded},
        {"probe set conversion",
         {"probe", "10", "set", "conversion=ITS-90", "lowrange=4", "highrange=8", "RTPW=25.5",
          "a4=-1.25e-4", "reference=100 Ohm"},
         true},
        {"restore", {"settings", "restore", "--yes", Path("other.json")}, true},
    };
  }

  // Runs a job on a readout of its own.
  Outcome Run(const Job& job, const std::string& fault, const std::function<void()>& moment) {
    auto offset = std::make_shared<std::atomic<std::int64_t>>(0);
    simulator::CSimulatedLine readout(
        simulator::ParseOptions(job.simulator + (fault.empty() ? "" : " --fault " + fault)), {},
        [offset] { return std::chrono::steady_clock::now() + std::chrono::milliseconds(*offset); });
    readout.Start();
    Outcome outcome;
    {
      // Short where an answer is meant to be missed; else a busy machine must not miss one.
      const bool misses = fault.find("drop") != fault.npos || fault.find("late") != fault.npos;
      std::vector<std::string> words = {"thermoscribe", "--timeout", misses ? "0.03" : "1",
                                        "--port", readout.Path()};
      words.insert(words.end(), job.arguments.begin(), job.arguments.end());
      std::vector<char*> argv;
      for (std::string& word : words) argv.push_back(word.data());
      std::fflush(stdout);
      const CCaptured errors(2);
      const CCaptured output(1);
      RunSeams seams;
      seams.skipswaits = true;
      const bool waits = std::string(job.name) == "measure --new";
      seams.moment = [&] {
        // The pauses that are left out are the time in which new readings come.
        if (waits) *offset += 100;
        if (moment) moment();
      };
      outcome.exitcode =
          static_cast<int>(RunThermoscribe(static_cast<int>(argv.size()), argv.data(), seams));
      outcome.out = WithoutChance(output.Text());
      outcome.err = errors.Text();
    }
    outcome.exchanges = readout.Exchanges();
    outcome.state = StateOf(readout);
    return outcome;
  }

  // Whether `out` holds nothing but the first lines of `whole`, or says of one that it isn't known.
  static bool IsPartOf(const std::string& whole, const std::string& out) {
    if (whole.starts_with(out)) return true;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
      if (whole.find(line + "\n") == whole.npos && !line.ends_with(" -")) return false;
    }
    return true;
  }

  // The first setting that is neither as it was nor as it should be; empty: there is none.
  static std::string StrayValue(const State& state, const State& before, const State& wanted) {
    for (const auto& [command, answer] : state) {
      const auto at = [&command = command](const State& one) {
        const auto found = one.find(command);
        return found == one.end() ? std::string() : found->second;
      };
      // What could not be asked for before, such as the values of a subrange that was not chosen,
      // has none yet.
      const std::string old = before.contains(command) ? at(before) : "=0";
      if (answer != old && answer != at(wanted)) {
        return command + " " + old + " " + at(wanted) + " now " + answer;
      }
    }
    return {};
  }

  // Empty: the outcome is the right one, or an error that was told and left nothing stray.
  static std::string ProblemOf(const Outcome& outcome, const Outcome& clean, const State& before,
                               bool writes) {
    const std::string stray = StrayValue(outcome.state, before, clean.state);
    if (!stray.empty()) return "stray value: " + stray;
    if (outcome.exitcode == clean.exitcode) {
      if (outcome.out != clean.out) return "another answer: " + outcome.out;
      return outcome.state == clean.state ? "" : "not everything is written";
    }
    if (outcome.exitcode == kDone) return "no error";
    if (!IsPartOf(clean.out, outcome.out)) return "a wrong answer: " + outcome.out;
    if (outcome.err.empty()) return "an error without a word";
    // Behind a box that had no consequences the answer itself is the account.
    const bool accounts =
        outcome.err.find("ritten") != std::string::npos || outcome.out == clean.out;
    return accounts || !writes ? "" : "no account of what is written";
  }

  fs::path folder_;
};

// How many exchanges or moments there are from one to the next that is tried.
std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

// The commands of a run, in their order, out of its trace.
std::vector<std::string> CommandsIn(const std::string& path) {
  std::ifstream trace(path);
  std::vector<std::string> commands;
  for (std::string line; std::getline(trace, line);) {
    const std::size_t at = line.find(" > #");
    if (at != line.npos) commands.push_back(line.substr(at + 9, line.rfind('*') - at - 9));
  }
  return commands;
}

// Whether `answer` is one that the command could have got.
bool CouldBe(const std::string& command, const std::string& answer) {
  const auto parsed = protocol::ParseCommand(command);
  return parsed && protocol::FitsForm(parsed->row->form, answer);
}

TEST_F(FaultSweep, EveryFaultGivesTheRightAnswerOrAnErrorAndNoStrayValue) {
  constexpr std::array kFaults = {
      "drop",         "late=0.08",   "delay=0.002", "split=0.002",       "garble",
      "refuse",       "hangup=0.01", "identify",    "answer=ERROR",      "answer=12.3.4",
      "answer=1e400", "answer=-0x5", "overlong",    "refuse=-2147220220"};
  const std::uint64_t stride = FromEnvironment("FAULT_SWEEP_STRIDE", 149);
  std::uint64_t turn = 0;
  for (const Job& job : Jobs()) {
    int right = 0;
    std::map<int, int> errors;
    int wrong = 0;
    simulator::CSimulatedLine fresh(simulator::ParseOptions(job.simulator));
    const State before = StateOf(fresh);
    Job traced = job;
    fs::remove(Path("trace"));
    traced.arguments.insert(traced.arguments.end(), {"--trace", Path("trace")});
    const Outcome clean = Run(traced, {}, {});
    const std::vector<std::string> commands = CommandsIn(Path("trace"));
    ASSERT_EQ(commands.size(), clean.exchanges) << job.name << clean.err;
    for (std::uint64_t exchange = 1; exchange <= clean.exchanges; ++exchange) {
      for (const std::string fault : kFaults) {
        if (++turn % stride != 0) continue;
        if (fault.starts_with("answer=") && CouldBe(commands[exchange - 1], fault.substr(7))) {
          continue;
        }
        const std::string plan = "at=" + std::to_string(exchange) + ":" + fault;
        const Outcome outcome = Run(job, plan, {});
        const std::string problem = ProblemOf(outcome, clean, before, job.writes);
        EXPECT_EQ(problem, "") << job.name << " " << plan << " " << commands[exchange - 1] << "\n"
                               << outcome.err;
        if (!problem.empty()) {
          ++wrong;
        } else if (outcome.exitcode == clean.exitcode) {
          ++right;
        } else {
          ++errors[outcome.exitcode];
        }
      }
    }
    std::string codes;
    for (const auto& [code, count] : errors) {
      codes += ", " + std::to_string(count) + " with " + std::to_string(code);
    }
    std::printf("%-22s %3llu exchanges: %4d right%s, %d wrong\n", job.name,
                static_cast<unsigned long long>(clean.exchanges), right, codes.c_str(), wrong);
    std::fflush(stdout);
  }
}

// Which exchange it strikes makes no difference to what a script is told.
TEST_F(FaultSweep, AHangUpHasOneExitCodeAtEveryExchange) {
  std::vector<Job> jobs = Jobs();
  std::erase_if(jobs, [](const Job& job) { return job.writes; });
  jobs.push_back({"old", {"identify"}, false, "--firmware 5.02"});
  jobs.push_back({"old inputs", {"channels"}, false, "--firmware 5.02 --no-scanner"});
  for (const Job& job : jobs) {
    const std::uint64_t exchanges = std::min<std::uint64_t>(Run(job, {}, {}).exchanges, 50);
    for (std::uint64_t exchange = 1; exchange <= exchanges; ++exchange) {
      const Outcome outcome = Run(job, "at=" + std::to_string(exchange) + ":hangup=0.01", {});
      EXPECT_EQ(outcome.exitcode, static_cast<int>(EExitCode::LINE_DAMAGED))
          << job.name << " " << exchange << outcome.err;
      EXPECT_THAT(outcome.err, testing::HasSubstr("was lost"));
    }
  }
}

TEST_F(FaultSweep, ASignalAtAnyMomentStopsAWriteAndIsToldOf) {
  const std::uint64_t moments = FromEnvironment("FAULT_SWEEP_MOMENTS", 12);
  for (const Job& job : Jobs()) {
    if (!job.writes) continue;
    simulator::CSimulatedLine fresh(simulator::ParseOptions(job.simulator));
    const State before = StateOf(fresh);
    std::uint64_t count = 0;
    const Outcome clean = Run(job, {}, [&] { ++count; });
    ASSERT_EQ(clean.exitcode, kDone) << clean.err;
    for (const int signal : {SIGINT, SIGTERM}) {
      for (std::uint64_t i = 0; i < moments; ++i) {
        const std::uint64_t at = 1 + i * (count - 1) / moments;
        SCOPED_TRACE(std::string(job.name) + " signal at moment " + std::to_string(at) + " of " +
                     std::to_string(count));
        std::uint64_t now = 0;
        std::uint64_t momentsafter = 0;
        const Outcome outcome = Run(job, {}, [&] {
          ++now;
          if (now == at) raise(signal);
          if (now > at) ++momentsafter;
        });
        EXPECT_EQ(outcome.exitcode, kAborted) << outcome.err;
        EXPECT_LE(momentsafter, kMomentsAfterStop) << outcome.err;
        EXPECT_THAT(outcome.err, testing::HasSubstr("Aborted"));
        EXPECT_THAT(outcome.err, testing::HasSubstr("ritten"));
        EXPECT_EQ(StrayValue(outcome.state, before, clean.state), "") << outcome.err;
        EXPECT_THAT(clean.out, testing::StartsWith(outcome.out));
      }
    }
  }
}

}  // namespace
}  // namespace vane::thermoscribe
