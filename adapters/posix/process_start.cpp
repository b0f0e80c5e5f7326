#include "adapters/posix/process_start.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <initializer_list>

namespace vane {

void PrepareProcess() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(fd, F_GETFD) != -1) continue;
    // The lowest free number is `fd`. Open for reading alone, so that no output is lost in silence;
    // the root folder is there where devices are not.
    if (::open("/dev/null", O_RDONLY | O_NOCTTY) < 0) ::open("/", O_RDONLY | O_DIRECTORY);
  }
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace vane
