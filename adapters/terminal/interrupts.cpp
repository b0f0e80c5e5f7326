#include "adapters/terminal/interrupts.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace vane {
namespace {

constexpr std::array<int, 2> kSignals = {SIGINT, SIGTERM};
constexpr int kPatience = 3;

// All that the signal handler may touch.
std::atomic<int> uncleared{0};
std::atomic<int> pipe_end{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void UseDefault(int signal) {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  ::sigaction(signal, &action, nullptr);
}

void OnSignal(int) {
  const int error = errno;
  if (++uncleared >= kPatience) {
    for (const int signal : kSignals) UseDefault(signal);
  }
  // A full pipe has woken the reader already.
  [[maybe_unused]] const ssize_t written = ::write(pipe_end, "!", 1);
  errno = error;
}

}  // namespace

CInterrupts::CInterrupts() {
  if (pipe_end >= 0) throw std::logic_error("Interrupts are already being handled.");
  if (::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make a pipe for interrupts");
  }
  uncleared = 0;
  pipe_end = pipe_[1];
  for (std::size_t i = 0; i < kSignals.size(); ++i) ::sigaction(kSignals[i], nullptr, &former_[i]);
  Handle();
}

CInterrupts::~CInterrupts() {
  Restore();
  pipe_end = -1;
  for (const int end : pipe_) ::close(end);
}

bool CInterrupts::Pending() const { return uncleared > 0; }

void CInterrupts::Clear() {
  const int dealtwith = uncleared.exchange(0);
  if (dealtwith >= kPatience) Handle();
  heeded_ = heeded_ || dealtwith > 0;
  TakeArrivals();
}

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

void CInterrupts::Handle() {
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    if (former_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

void CInterrupts::Restore() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], &former_[i], nullptr);
  }
}

}  // namespace vane
