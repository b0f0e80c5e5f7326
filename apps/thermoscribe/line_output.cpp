#include "apps/thermoscribe/line_output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "adapters/files/whole_file.h"
#include "adapters/posix/links.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kStandard = "-";
constexpr const char* kCannotWrite = "Cannot write";
constexpr mode_t kUsualMode = 0666;  // less the user's mask
constexpr std::size_t kLongestHead = 256;

bool IsRegular(int fd) {
  struct stat status {};
  return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
}

off_t SizeOf(int fd) {
  struct stat status {};
  return ::fstat(fd, &status) == 0 ? status.st_size : 0;
}

// What is there and can't be appended to like a file.
bool IsStream(const std::filesystem::path& path) {
  struct stat status {};
  return OwnDescriptor(path) || (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) &&
                                 !S_ISDIR(status.st_mode));
}

}  // namespace

bool IsStandardOutput(const std::filesystem::path& path) {
  struct stat named {};
  struct stat output {};
  return path == kStandard ||
         (::stat(path.c_str(), &named) == 0 && ::fstat(STDOUT_FILENO, &output) == 0 &&
          named.st_dev == output.st_dev && named.st_ino == output.st_ino);
}

CLineOutput::CLineOutput(Patience patience) : CLineOutput(kStandard, std::move(patience)) {}

CLineOutput::CLineOutput(const std::filesystem::path& path, Patience patience) {
  if (path == kStandard) {
    path_ = NameOfOutput(path);
    if (IsRegular(STDOUT_FILENO)) {
      fd_ = STDOUT_FILENO;
    } else {
      stream_.emplace(STDOUT_FILENO, path_.string(), std::move(patience));
    }
    return;
  }
  path_ = FollowLinks(path);
  if (IsStream(path_)) {
    stream_.emplace(path_, std::move(patience));
    return;
  }
  OpenRegular();
  LookAt();
}

CLineOutput::~CLineOutput() {
  if (ismade_ && !iswritten_ && SizeOf(fd_) == 0) ::unlink(path_.c_str());
}

void CLineOutput::OpenRegular() {
  // A pipe that comes in between must not be waited for.
  constexpr int kFlags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  owned_ = CDescriptor(::open(path_.c_str(), kFlags | O_CREAT | O_EXCL, kUsualMode));
  ismade_ = owned_.IsOpen();
  if (!ismade_ && errno == EEXIST) owned_ = CDescriptor(::open(path_.c_str(), kFlags));
  if (!owned_.IsOpen()) RaiseFileError(errno, kCannotWrite, path_);
  fd_ = owned_.Get();
}

void CLineOutput::LookAt() {
  const off_t size = SizeOf(fd_);
  if (size == 0) return;
  char last = '\n';
  std::array<char, kLongestHead> head;
  const ssize_t got = ::pread(fd_, head.data(), head.size(), 0);
  if (got < 0 || ::pread(fd_, &last, 1, size - 1) < 0) RaiseFileError(errno, "Cannot read", path_);
  std::string line(head.data(), static_cast<std::size_t>(got));
  line.resize(std::min(line.find('\n'), line.size()));
  if (line.ends_with('\r')) line.pop_back();
  firstline_ = std::move(line);
  endsopen_ = last != '\n';
}

void CLineOutput::Write(std::string_view text) {
  try {
    if (stream_) {
      stream_->Write(text);
    } else {
      if (std::exchange(endsopen_, false)) WriteWhole("\n");
      WriteWhole(text);
    }
    iswritten_ = true;
  } catch (const std::system_error& error) {
    isreadergone_ = isreadergone_ || error.code().value() == EPIPE;
    throw;
  }
}

void CLineOutput::WriteWhole(std::string_view text) {
  const off_t before = SizeOf(fd_);
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(fd_, text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
      continue;
    }
    const int error = errno;
    // Only what is surely our own: another program may have appended meanwhile.
    if (written > 0 && SizeOf(fd_) == before + static_cast<off_t>(written) &&
        ::ftruncate(fd_, before) == 0) {
      ::lseek(fd_, before, SEEK_SET);
    }
    RaiseFileError(error, kCannotWrite, path_);
  }
}

}  // namespace vane::thermoscribe
