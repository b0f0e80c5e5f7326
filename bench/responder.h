// A readout with a scanner that answers at once and knows no more than it takes to be found,
// measured, read and asked for a log without an end: what is left of the time of an exchange is the
// line's and the library's own.
#pragma once

#include <sys/types.h>

#include <string>

namespace vane::bench {

/// A process on the far end of a pseudo-terminal. The near end is held open here, so that the line
/// stays; the process ends with this object.
class CResponder {
 public:
  /// Raises `std::system_error`.
  CResponder();
  ~CResponder();
  CResponder(const CResponder&) = delete;
  CResponder& operator=(const CResponder&) = delete;

  const std::string& DevicePath() const { return path_; }

  /// In raw mode; reads and writes wait.
  int Descriptor() const { return near_; }

 private:
  std::string path_;
  int near_ = -1;
  pid_t process_ = -1;
};

}  // namespace vane::bench
