#include "simulator/pseudo_terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vane::simulator {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailOfSystem(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A descriptor whose name in /proc can't be opened, with the error of a device that isn't there.
CFile UnpluggedPlace() {
  CFile place(eventfd(0, EFD_CLOEXEC));
  if (place.Get() < 0) FailOfSystem("can't make a place for the device");
  return place;
}

}  // namespace

CFile::CFile(int descriptor) : descriptor_(descriptor) {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  descriptor_ = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  close(descriptor);
  errno = error;
}

CFile& CFile::operator=(CFile&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

CFile::~CFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

int CFile::Release() { return std::exchange(descriptor_, -1); }

CPseudoTerminal CPseudoTerminal::Open() {
  CPseudoTerminal terminal;
  terminal.near_ = CFile(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  const int near = terminal.near_.Get();
  std::array<char, 128> name;
  if (near < 0 || grantpt(near) != 0 || unlockpt(near) != 0 ||
      ptsname_r(near, name.data(), name.size()) != 0) {
    FailOfSystem("can't open a pseudo-terminal");
  }
  terminal.devicepath_ = name.data();
  terminal.far_ = CFile(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios settings{};
  if (terminal.far_.Get() < 0 || tcgetattr(terminal.far_.Get(), &settings) != 0) {
    FailOfSystem("can't open " + terminal.devicepath_);
  }
  cfmakeraw(&settings);
  if (tcsetattr(terminal.far_.Get(), TCSANOW, &settings) != 0 ||
      fcntl(near, F_SETFL, O_NONBLOCK) != 0) {
    FailOfSystem("can't set up " + terminal.devicepath_);
  }
  return terminal;
}

std::size_t CPseudoTerminal::Read(char* buffer, std::size_t size) const {
  const ssize_t count = read(near_.Get(), buffer, size);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void CPseudoTerminal::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = write(near_.Get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void CPseudoTerminal::FreeAbandoned() const {
  int isexclusive = 0;
  if (ioctl(far_.Get(), TIOCGEXCL, &isexclusive) != 0 || isexclusive == 0) return;
  if (flock(far_.Get(), LOCK_EX | LOCK_NB) != 0) return;
  ioctl(far_.Get(), TIOCNXCL);
  flock(far_.Get(), LOCK_UN);
}

CDeviceLink::CDeviceLink(std::string path) : path_(std::move(path)) {
  if (!path_.empty()) return;
  place_ = UnpluggedPlace();
  path_ = "/proc/self/fd/" + std::to_string(place_.Get());
}

CDeviceLink::~CDeviceLink() { Remove(); }

void CDeviceLink::PointTo(const std::string& device) {
  if (place_.Get() >= 0) {
    const CFile opened(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (opened.Get() < 0 || dup3(opened.Get(), place_.Get(), O_CLOEXEC) < 0) {
      FailOfSystem("can't open " + device);
    }
    device_ = device;
    return;
  }
  std::error_code error;
  const fs::file_status status = fs::symlink_status(path_, error);
  if (fs::exists(status) && !fs::is_symlink(status)) {
    throw std::runtime_error(path_ + " exists and is not a symbolic link");
  }
  // A rename takes the place of an earlier link in one step, so a client always finds one.
  const std::string fresh = path_ + "." + std::to_string(getpid());
  if (symlink(device.c_str(), fresh.c_str()) != 0) FailOfSystem("can't make the link " + path_);
  if (rename(fresh.c_str(), path_.c_str()) != 0) {
    const int reason = errno;
    unlink(fresh.c_str());
    errno = reason;
    FailOfSystem("can't make the link " + path_);
  }
  device_ = device;
}

void CDeviceLink::Remove() {
  if (device_.empty()) return;
  std::error_code error;
  if (place_.Get() >= 0) {
    dup3(UnpluggedPlace().Get(), place_.Get(), O_CLOEXEC);
  } else if (fs::read_symlink(path_, error) == device_ && !error) {
    fs::remove(path_, error);
  }
  device_.clear();
}

}  // namespace vane::simulator
