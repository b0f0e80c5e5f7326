// What every direct use of a file needs: a descriptor that closes itself, and errors that name the
// file.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace vane {

// Both raise "Cannot read 'the path': why"; `what` is the text before the path.

/// `error` is an `errno`.
[[noreturn]] inline void RaiseFileError(int error, const std::string& what,
                                        const std::filesystem::path& path) {
  throw std::system_error(error, std::generic_category(), what + " '" + path.string() + "'");
}

/// For a reason that the system has no number for.
[[noreturn]] inline void RaiseFileError(const std::string& why, const std::string& what,
                                        const std::filesystem::path& path) {
  throw std::runtime_error(what + " '" + path.string() + "': " + why);
}

class CDescriptor {
 public:
  explicit CDescriptor(int fd = -1) : fd_(fd) {}
  ~CDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  CDescriptor(CDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  CDescriptor& operator=(CDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }

  int Get() const { return fd_; }
  bool IsOpen() const { return fd_ >= 0; }

  /// The result of `close`, for a file whose last bytes count.
  int Close() { return ::close(std::exchange(fd_, -1)); }

 private:
  int fd_;
};

}  // namespace vane
