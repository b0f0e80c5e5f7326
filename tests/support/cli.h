// The programs of this project as processes: `thermoscribe` against `thermoscribe-sim`.
#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/json_answer.h"

namespace vane {

using Arguments = std::vector<std::string>;

inline constexpr unsigned kPatience = 20;  // s; a program that hangs longer ends by a signal

struct Outcome {
  int exitcode = -1;  // -1: ended by a signal
  std::string out;
  std::string err;
};

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

inline Arguments Words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

inline std::vector<Answer> JsonLines(const std::string& text) {
  std::vector<Answer> objects;
  for (const std::string& line : Lines(text)) objects.push_back(ParsedJson(line));
  return objects;
}

// A program that runs; it is killed and waited for if nobody has waited for its end.
class CProcess {
 public:
  // With `terminal`, on a terminal of its own, whose other end that becomes.
  CProcess(const std::string& program, Arguments arguments, int* terminal = nullptr) {
    int out[2];
    int err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) std::abort();
    arguments.insert(arguments.begin(), program);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_ = terminal != nullptr ? forkpty(terminal, nullptr, nullptr, nullptr) : fork();
    if (pid_ == 0) {
      alarm(kPatience);
      if (terminal == nullptr) dup2(out[1], STDOUT_FILENO);
      if (terminal == nullptr) dup2(err[1], STDERR_FILENO);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
  }
  ~CProcess() {
    if (pid_ > 0) {
      Signal(SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(out_);
    close(err_);
  }
  CProcess(const CProcess&) = delete;
  CProcess& operator=(const CProcess&) = delete;

  void Signal(int signal) const { kill(pid_, signal); }

  // The next line of its output; empty at its end.
  std::string ReadLine() const {
    std::string line;
    for (char c = 0; read(out_, &c, 1) == 1 && c != '\n';) line += c;
    return line;
  }

  Outcome Wait() {
    Outcome outcome;
    outcome.out = ReadAll(out_);
    outcome.err = ReadAll(err_);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = 0;
    if (WIFEXITED(status)) outcome.exitcode = WEXITSTATUS(status);
    return outcome;
  }

 private:
  static std::string ReadAll(int fd) {
    std::string text;
    char block[4096];
    for (ssize_t size = 0; (size = read(fd, block, sizeof block)) > 0;) {
      text.append(block, static_cast<std::size_t>(size));
    }
    return text;
  }

  pid_t pid_ = 0;
  int out_ = -1;
  int err_ = -1;
};

class Cli : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "cli_test.XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    setenv("LC_ALL", "C", 1);
    for (const char* name : {"PORT", "BAUD", "TIMEOUT"}) {
      unsetenv((std::string("THERMOSCRIBE_") + name).c_str());
    }
  }
  void TearDown() override {
    simulator_.reset();
    std::filesystem::remove_all(folder_);
  }

  void StartSimulator(const std::string& options = {}) {
    simulator_.reset();
    simulator_ =
        std::make_unique<CProcess>(THERMOSCRIBE_SIM_PATH, Words(options + " --link " + Port()));
    if (!simulator_->ReadLine().starts_with("/dev/")) throw std::runtime_error("no simulator");
  }

  std::string Port() const { return folder_ / "readout"; }
  std::string TraceFile() const { return folder_ / "trace"; }

  Arguments OnPort(const std::string& command, const std::string& port) const {
    return Words(command + " --timeout 0.1 --trace " + TraceFile() + " --port " + port);
  }
  static Outcome Run(const Arguments& arguments) {
    return CProcess(THERMOSCRIBE_PATH, arguments).Wait();
  }
  Outcome Ask(const std::string& command) const { return Run(OnPort(command, Port())); }

  // As if typed by hand at the readout.
  void Tell(const std::string& command) const {
    const int line = open(Port().c_str(), O_RDWR | O_NOCTTY);
    dprintf(line, "%s\r", command.c_str());
    std::string answer;
    for (char c = 0; read(line, &c, 1) == 1 && c != '\n';) answer += c;
    close(line);
    EXPECT_THAT(answer, testing::StartsWith("=")) << command;
  }

  std::string FileText(const char* name) const {
    std::ifstream file(folder_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::string Trace() const { return FileText("trace"); }

  // The number that came last, as it stood on the line.
  std::string LastNumber() const {
    std::string value;
    const std::string trace = Trace();
    const std::regex answer(R"(< #[0-9A-F]{4} =(-?[0-9].*)\*[0-9A-F]{4}\n)");
    for (std::sregex_iterator at(trace.begin(), trace.end(), answer), end; at != end; ++at) {
      value = (*at)[1];
    }
    return value;
  }

  // Whether one of all answers so far was this number.
  bool AnswersHold(double number) const {
    const std::string trace = Trace();
    for (std::size_t at = trace.find(" ="); at != std::string::npos;
         at = trace.find(" =", at + 1)) {
      if (std::strtod(trace.c_str() + at + 2, nullptr) == number) return true;
    }
    return false;
  }

  std::filesystem::path folder_;
  std::unique_ptr<CProcess> simulator_;
};

}  // namespace vane
