#include "adapters/serial/serial_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include "adapters/serial/file_handle.h"

namespace vane {
namespace {

// Rounded up, so that a wait never ends before its deadline and spins.
int MillisecondsUntil(LineClock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - LineClock::now());
  constexpr std::chrono::milliseconds kMost{std::numeric_limits<int>::max()};
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds::zero(), kMost).count());
}

EPortResult OpenFailure(int error) {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return EPortResult::NO_DEVICE;
    case EBUSY:
      return EPortResult::IN_USE;
    default:
      return EPortResult::CANNOT_OPEN;
  }
}

bool HasSettings(const termios& found, const BaudRateRow& rate) {
  return cfgetispeed(&found) == rate.speed && cfgetospeed(&found) == rate.speed &&
         (found.c_cflag & (CSIZE | PARENB | CSTOPB)) == CS8 && (found.c_lflag & ICANON) == 0;
}

}  // namespace

EPortResult CSerialPort::Open(const std::string& path, const BaudRateRow& rate) {
  Close();
  // Without O_NONBLOCK the opening would wait for a carrier that a three-wire cable never shows.
  do {
    handle_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  } while (handle_ < 0 && errno == EINTR);
  handle_ = AboveStandard(handle_);
  if (handle_ < 0) return Fail(OpenFailure(errno), errno);
  return SetUp(rate);
}

EPortResult CSerialPort::SetUp(const BaudRateRow& rate) {
  termios settings{};
  if (tcgetattr(handle_, &settings) != 0) return Fail(EPortResult::CANNOT_OPEN, errno);
  // Before anything is changed: the settings of a port in use are the other program's.
  if (flock(handle_, LOCK_EX | LOCK_NB) != 0) {
    return Fail(errno == EWOULDBLOCK ? EPortResult::IN_USE : EPortResult::CANNOT_OPEN, errno);
  }
  // The lock keeps out those who ask for it, this everybody else who comes later.
  if (ioctl(handle_, TIOCEXCL) != 0) return Fail(EPortResult::CANNOT_OPEN, errno);
  isexclusive_ = true;

  cfmakeraw(&settings);
  settings.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK);
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  settings.c_cflag |= CLOCAL | CREAD;
  // With a least count of one, an empty read can only mean a hang-up.
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 0;
  cfsetspeed(&settings, rate.speed);
  if (tcsetattr(handle_, TCSANOW, &settings) != 0) return Fail(EPortResult::CANNOT_OPEN, errno);

  // The call above succeeds when any one of the settings could be made.
  termios found{};
  if (tcgetattr(handle_, &found) != 0) return Fail(EPortResult::CANNOT_OPEN, errno);
  if (!HasSettings(found, rate)) return Fail(EPortResult::CANNOT_OPEN, EINVAL);
  if (tcflush(handle_, TCIFLUSH) != 0) return Fail(EPortResult::CANNOT_OPEN, errno);
  return EPortResult::DONE;
}

void CSerialPort::Close() {
  if (handle_ < 0) return;
  // A pseudo-terminal would stay shut as long as its other end holds it open.
  if (std::exchange(isexclusive_, false)) ioctl(handle_, TIOCNXCL);
  close(std::exchange(handle_, -1));
}

EPortResult CSerialPort::Write(std::string_view bytes, LineClock::time_point deadline) {
  while (!bytes.empty()) {
    const ssize_t written = write(handle_, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      const EPortResult result = Wait(POLLOUT, deadline);
      if (result != EPortResult::DONE) return result;
    } else if (errno != EINTR) {
      return Fail(EPortResult::LOST, errno);
    }
  }
  return EPortResult::DONE;
}

EPortResult CSerialPort::Read(std::span<char> into, std::size_t& count,
                              LineClock::time_point deadline) {
  for (;;) {
    const EPortResult result = Wait(POLLIN, deadline);
    if (result != EPortResult::DONE) return result;
    const ssize_t taken = read(handle_, into.data(), into.size());
    if (taken > 0) {
      count = static_cast<std::size_t>(taken);
      return EPortResult::DONE;
    }
    if (taken == 0) return Fail(EPortResult::LOST, EIO);
    if (errno != EAGAIN && errno != EINTR) return Fail(EPortResult::LOST, errno);
  }
}

// A hang-up with input left to read is no loss yet: the last answer may be in it.
EPortResult CSerialPort::Wait(short events, LineClock::time_point deadline) {
  pollfd wanted{handle_, events, 0};
  int ready = 0;
  do {
    ready = poll(&wanted, 1, MillisecondsUntil(deadline));
  } while (ready < 0 && errno == EINTR);
  if (ready < 0) return Fail(EPortResult::LOST, errno);
  if (ready == 0) return EPortResult::EXPIRED;
  if ((wanted.revents & events) == 0) return Fail(EPortResult::LOST, EIO);
  return EPortResult::DONE;
}

EPortResult CSerialPort::Fail(EPortResult result, int error) {
  error_ = error;
  Close();
  return result;
}

std::string CSerialPort::Problem() const { return std::generic_category().message(error_); }

}  // namespace vane
