#include "adapters/files/run_program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "adapters/posix/posix_file.h"

namespace vane {
namespace {

constexpr int kSignalled = 128;

[[noreturn]] void RaiseStartError(int error, const std::string& program) {
  throw std::system_error(error, std::generic_category(), "Cannot start '" + program + "'");
}

// What this process ignores and other programs count on, such as the end of a reader.
class CUsualSignals {
 public:
  CUsualSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGPIPE, SIGXFSZ}) sigaddset(&signals, signal);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
  }
  ~CUsualSignals() { ::posix_spawnattr_destroy(&attributes_); }
  CUsualSignals(const CUsualSignals&) = delete;
  CUsualSignals& operator=(const CUsualSignals&) = delete;

  const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

class CFileActions {
 public:
  CFileActions() { ::posix_spawn_file_actions_init(&actions_); }
  ~CFileActions() { ::posix_spawn_file_actions_destroy(&actions_); }
  CFileActions(const CFileActions&) = delete;
  CFileActions& operator=(const CFileActions&) = delete;

  posix_spawn_file_actions_t* Get() { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

pid_t Start(const std::vector<std::string>& arguments, CFileActions& actions) {
  std::vector<char*> list;
  list.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) list.push_back(const_cast<char*>(argument.c_str()));
  list.push_back(nullptr);
  const CUsualSignals signals;
  pid_t process = 0;
  const int error =
      ::posix_spawnp(&process, list[0], actions.Get(), signals.Get(), list.data(), ::environ);
  if (error != 0) RaiseStartError(error, arguments[0]);
  return process;
}

std::string ReadToEnd(int fd) {
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t size = ::read(fd, block, sizeof block);
    if (size > 0) {
      text.append(block, static_cast<std::size_t>(size));
    } else if (size == 0 || errno != EINTR) {
      return text;
    }
  }
}

int WaitForEnd(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

}  // namespace

int RunProgram(const std::vector<std::string>& arguments, std::string* output) {
  CFileActions actions;
  if (!output) {
    ::posix_spawn_file_actions_adddup2(actions.Get(), STDERR_FILENO, STDOUT_FILENO);
    return WaitForEnd(Start(arguments, actions));
  }
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) RaiseStartError(errno, arguments[0]);
  const CDescriptor near(ends[0]);
  CDescriptor far(ends[1]);
  ::posix_spawn_file_actions_addopen(actions.Get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  for (const int target : {STDOUT_FILENO, STDERR_FILENO}) {
    ::posix_spawn_file_actions_adddup2(actions.Get(), far.Get(), target);
  }
  const pid_t process = Start(arguments, actions);
  far.Close();
  *output = ReadToEnd(near.Get());
  return WaitForEnd(process);
}

}  // namespace vane
