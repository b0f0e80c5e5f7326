// The two things that every direct use of a file needs: a descriptor that closes itself, and an
// error that names the file.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace vane {

/// `error` is an `errno`; `what` is the text before the path, such as "Cannot read".
[[noreturn]] inline void RaiseFileError(int error, const std::string& what,
                                        const std::filesystem::path& path) {
  throw std::system_error(error, std::generic_category(), what + " '" + path.string() + "'");
}

class CDescriptor {
 public:
  explicit CDescriptor(int fd) : fd_(fd) {}
  ~CDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;

  int Get() const { return fd_; }
  bool IsOpen() const { return fd_ >= 0; }

  /// The result of `close`, for a file whose last bytes count.
  int Close() { return ::close(std::exchange(fd_, -1)); }

 private:
  int fd_;
};

}  // namespace vane
