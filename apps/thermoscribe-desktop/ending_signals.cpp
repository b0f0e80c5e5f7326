#include "apps/thermoscribe-desktop/ending_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace vane::desktop {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A handler has no other way to the object.
int g_pipe[2] = {-1, -1};

void Handle(int) {
  const int error = errno;
  const char byte = 0;
  // A pipe that is full has told already.
  [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], &byte, 1);
  errno = error;
}

// Under nohup a hang-up stays without effect.
bool IsIgnored(int signal) {
  struct sigaction present {};
  return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

void SetHandler(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

CEndingSignals::CEndingSignals(std::function<void()> arrived) {
  if (::pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "No pipe for signals");
  }
  notifier_ = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                   [arrived = std::move(arrived)](QSocketDescriptor pipe) {
                     char bytes[64];
                     while (::read(pipe, bytes, sizeof bytes) > 0) {
                     }
                     arrived();
                   });
  for (const int signal : kSignals) {
    if (!IsIgnored(signal)) SetHandler(signal, Handle);
  }
}

CEndingSignals::~CEndingSignals() {
  for (const int signal : kSignals) {
    if (!IsIgnored(signal)) SetHandler(signal, SIG_DFL);
  }
  notifier_.reset();
  for (int& end : g_pipe) ::close(std::exchange(end, -1));
}

}  // namespace vane::desktop
