#include "apps/thermoscribe/alarm_command.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "apps/snapshots/json_text.h"

namespace vane::thermoscribe {
namespace {

namespace kinds = recorder::kinds;

constexpr std::size_t kMostRunning = 8;
constexpr std::array<std::string_view, 7> kOnes = {
    kinds::kAlarm,  kinds::kNormal, kinds::kLost, kinds::kReconnected,
    kinds::kSilent, kinds::kFull,   kinds::kRoom};

}  // namespace

bool ConcernsPeople(const std::string& kind) {
  return std::ranges::find(kOnes, kind) != kOnes.end();
}

CAlarmCommand::CAlarmCommand(std::string command, std::string file)
    : command_(std::move(command)), file_(std::move(file)) {}

void CAlarmCommand::Reap() {
  std::erase_if(running_, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

std::string CAlarmCommand::Run(const recorder::Event& event) {
  Reap();
  if (command_.empty() || !ConcernsPeople(event.kind)) return {};
  if (running_.size() >= kMostRunning) {
    return "The alarm's command was not run for \"" + event.kind +
           "\": " + std::to_string(kMostRunning) + " of it are running still.";
  }
  std::vector<std::string> variables = {
      "THERMOSCRIBE_EVENT=" + event.kind,
      "THERMOSCRIBE_TEXT=" + event.text,
      "THERMOSCRIBE_TIME=" + recorder::TimeText(event.time.utc),
      "THERMOSCRIBE_CHANNEL=" + (event.channel ? std::to_string(*event.channel) : std::string()),
      "THERMOSCRIBE_NUMBER=" + (event.number ? JsonText(*event.number) : std::string()),
      "THERMOSCRIBE_FILE=" + file_};
  std::vector<char*> environment;
  for (char** one = environ; *one != nullptr; ++one) environment.push_back(*one);
  for (std::string& one : variables) environment.push_back(one.data());
  environment.push_back(nullptr);

  // What it prints is for people: standard output has readings.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  // A Ctrl-C for this program is none for it.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t ours;
  sigemptyset(&ours);
  for (const int signal : {SIGHUP, SIGPIPE}) sigaddset(&ours, signal);
  posix_spawnattr_setsigdefault(&attributes, &ours);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  std::string shell = "/bin/sh";
  std::string option = "-c";
  std::string command = command_;
  const std::array arguments = {shell.data(), option.data(), command.data(),
                                static_cast<char*>(nullptr)};
  pid_t pid = 0;
  const int error =
      posix_spawn(&pid, shell.c_str(), &actions, &attributes, arguments.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    return std::string("The alarm's command can't be run: ") + std::strerror(error) + ".";
  }
  running_.push_back(pid);
  return {};
}

}  // namespace vane::thermoscribe
