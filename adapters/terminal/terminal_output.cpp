#include "adapters/terminal/terminal_output.h"

#include <unistd.h>

#include <cerrno>

namespace vane {

namespace {

bool g_lineopen = false;

}  // namespace

void WriteToTerminal(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void MarkOpenLine(bool open) { g_lineopen = open; }

void ClearOpenLine(int fd) {
  if (g_lineopen) WriteToTerminal(fd, "\r\x1B[K");
  g_lineopen = false;
}

}  // namespace vane
