#include "adapters/terminal/interrupts.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace vane {
namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr int kPatience = 3;

// All that the signal handler may touch.
std::atomic<int> g_interrupts{0};
std::atomic<int> g_pipeend{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void UseDefault(int signal) {
  struct sigaction action {};
  if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action.sa_handler = SIG_DFL;
  ::sigaction(signal, &action, nullptr);
}

void OnSignal(int) {
  const int error = errno;
  if (++g_interrupts >= kPatience) {
    for (const int signal : kSignals) UseDefault(signal);
  }
  // A full pipe has woken the reader already.
  [[maybe_unused]] const ssize_t written = ::write(g_pipeend, "!", 1);
  errno = error;
}

}  // namespace

CInterrupts::CInterrupts() {
  if (g_pipeend >= 0) throw std::logic_error("Interrupts are already being handled.");
  if (::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make a pipe for interrupts");
  }
  g_interrupts = 0;
  g_pipeend = pipe_[1];
  // Without SA_RESTART: a call that waits is how a program hangs.
  struct sigaction action {};
  action.sa_handler = OnSignal;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &former_[i]);
    if (former_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

CInterrupts::~CInterrupts() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], &former_[i], nullptr);
  }
  g_pipeend = -1;
  for (const int end : pipe_) ::close(end);
}

bool CInterrupts::Pending() const { return g_interrupts > 0; }

int CInterrupts::TakeArrivals() {
  int arrivals = 0;
  char block[16];
  for (;;) {
    const ssize_t size = ::read(pipe_[0], block, sizeof block);
    if (size > 0) {
      arrivals += static_cast<int>(size);
    } else if (size == 0 || errno != EINTR) {
      return arrivals;
    }
  }
}

}  // namespace vane
