#include "adapters/posix/patience.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "adapters/posix/links.h"

namespace vane {
namespace {

using std::chrono::steady_clock;

constexpr int kSlice = 50;  // ms
constexpr const char* kCannotRead = "Cannot read";
constexpr const char* kCannotWrite = "Cannot write";

std::string SecondsText(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(time).count();
  return std::to_string(seconds) + (seconds == 1 ? " second" : " seconds");
}

bool IsInterrupted(const Patience& patience) {
  return patience.interrupted && patience.interrupted();
}

// Whether one of `events` has happened within a slice of time; an error counts as one.
bool WaitFor(int fd, short events) {
  pollfd waiting = {fd, events, 0};
  return ::poll(&waiting, 1, kSlice) > 0;
}

// Waits for nobody: whether there is another end shows later.
int OpenToRead(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (fd < 0) RaiseFileError(errno, kCannotRead, path);
  return fd;
}

int OpenToWrite(const std::filesystem::path& path, const Patience& patience) {
  const steady_clock::time_point start = steady_clock::now();
  for (;;) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | O_TRUNC);
    if (fd >= 0) return fd;
    const int error = errno;
    if (error == EINTR) continue;
    struct stat status {};
    const bool ispipe = ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    if (error != ENXIO || !ispipe) RaiseFileError(error, kCannotWrite, path);
    if (IsInterrupted(patience)) RaiseFileError("interrupted", kCannotWrite, path);
    if (steady_clock::now() - start >= patience.meeting) {
      RaiseFileError("nobody has opened the pipe to read it for " + SecondsText(patience.meeting),
                     kCannotWrite, path);
    }
    ::poll(nullptr, 0, kSlice);
  }
}

}  // namespace

CPatientInput::CPatientInput(int fd, std::string name, Patience patience)
    : name_(std::move(name)),
      patience_(std::move(patience)),
      fd_(fd),
      isterminal_(::isatty(fd) != 0) {}

CPatientInput::CPatientInput(const std::filesystem::path& path, Patience patience)
    : name_(path.string()), patience_(std::move(patience)), fd_(-1) {
  // Opened anew, a pipe whose writer is done would look like one that has had none yet.
  if (const auto number = OwnDescriptor(FollowLinks(path))) {
    fd_ = *number;
  } else {
    owned_ = CDescriptor(OpenToRead(path));
    fd_ = owned_.Get();
    struct stat status {};
    met_ = ::fstat(fd_, &status) != 0 || !S_ISFIFO(status.st_mode);
  }
  isterminal_ = ::isatty(fd_) != 0;
}

EArrival CPatientInput::Read(char* buffer, std::size_t size, std::size_t& count) {
  const steady_clock::time_point start = steady_clock::now();
  for (;;) {
    if (IsInterrupted(patience_)) return EArrival::INTERRUPTED;
    const bool isready = WaitFor(fd_, POLLIN);
    // What others share may be in blocking mode; an own pipe tells by this whether it has a writer.
    if (isready || owned_.IsOpen()) {
      const ssize_t got = ::read(fd_, buffer, size);
      if (got > 0) {
        met_ = true;
        count = static_cast<std::size_t>(got);
        return EArrival::BYTES;
      }
      if (got == 0 && (isready || met_)) return EArrival::END;
      if (got < 0 && errno == EAGAIN) met_ = true;
      if (got < 0 && errno != EAGAIN && errno != EINTR) RaiseFileError(errno, kCannotRead, name_);
    }
    const steady_clock::duration passed = steady_clock::now() - start;
    if (!met_ && passed >= patience_.meeting) {
      RaiseFileError(
          "nobody has opened the pipe to write to it for " + SecondsText(patience_.meeting),
          kCannotRead, name_);
    }
    if (!isterminal_ && passed >= patience_.silence) {
      RaiseFileError("nothing has come for " + SecondsText(patience_.silence), kCannotRead, name_);
    }
  }
}

CPatientOutput::CPatientOutput(int fd, std::string name, Patience patience)
    : name_(std::move(name)), patience_(std::move(patience)), fd_(fd) {}

CPatientOutput::CPatientOutput(const std::filesystem::path& path, Patience patience)
    : name_(path.string()), patience_(std::move(patience)), fd_(-1) {
  if (const auto number = OwnDescriptor(FollowLinks(path))) {
    fd_ = *number;
  } else {
    owned_ = CDescriptor(OpenToWrite(path, patience_));
    fd_ = owned_.Get();
  }
}

void CPatientOutput::Write(std::string_view text) {
  while (!text.empty()) {
    ssize_t written = 0;
    if (WaitFor(fd_, POLLOUT)) {
      // A pipe that has room has room for so much, also in blocking mode.
      written = ::write(fd_, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
      if (written < 0 && errno != EINTR && errno != EAGAIN) {
        RaiseFileError(errno, kCannotWrite, name_);
      }
    }
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (IsInterrupted(patience_)) {
      RaiseFileError("interrupted", kCannotWrite, name_);
    }
  }
}

void CPatientOutput::Close() {
  if (owned_.IsOpen() && owned_.Close() != 0 && errno != EINTR) {
    RaiseFileError(errno, kCannotWrite, name_);
  }
}

}  // namespace vane
