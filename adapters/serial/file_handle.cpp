#include "adapters/serial/file_handle.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace vane {

int AboveStandard(int handle) {
  if (handle < 0 || handle > STDERR_FILENO) return handle;
  const int moved = fcntl(handle, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  close(handle);
  errno = error;
  return moved;
}

}  // namespace vane
