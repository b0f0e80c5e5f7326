#include "bench/responder.h"

#include <pty.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "protocol/framing.h"
#include "protocol/line_buffer.h"

namespace vane::bench {
namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Of the log's reading that the command names, such as "25.0013 C 17". The last digit keeps every
// number off the halves, where one way of rounding differs from another.
std::string ReadingOf(std::string_view command) {
  const std::size_t first = command.find_first_of("0123456789");
  const int number = std::atoi(std::string(command.substr(first)).c_str());
  std::array<char, 48> text;
  std::snprintf(text.data(), text.size(), "%d.%03d3 C %d", 20 + number % 7, number % 1000, number);
  return text.data();
}

std::string ValueOf(std::string_view command) {
  if (command.starts_with("LOG:")) return ReadingOf(command);
  if (command.starts_with("MEASURE ")) return "231.40625178";
  if (command == "ID?") return "T312B, 5.03";
  if (command == "CHANNEL:COUNT?") return "12";
  if (command == "UNITS?") return "C";
  if (command == "SCANNER:SEQUENCE:STEPS?") return "10";
  if (command.starts_with("PROTECT:") || command == "CAL:OVEN?") return "OFF";
  if (command == "FILTER:TYPE?") return "NONE";
  if (command == "SAMPLE:ACTION?") return "RUN";
  return command.ends_with('?') ? "1" : "";  // one scanner, and a value for any setting
}

void Answer(int line, std::string_view text) {
  const std::optional<protocol::FramedLine> command = protocol::ParseLine(text);
  if (!command) return;
  std::string answer =
      protocol::FrameLine(command->tag, protocol::ValueBody(ValueOf(command->body)));
  answer += protocol::kLineEnd;
  if (write(line, answer.data(), answer.size()) < 0) _exit(1);
}

[[noreturn]] void Serve(int line) {
  protocol::CLineBuffer lines;
  for (;;) {
    while (const auto received = lines.NextLine()) Answer(line, received->text);
    const std::span<char> room = lines.Free();
    const ssize_t count = read(line, room.data(), room.size());
    if (count <= 0) _exit(0);
    lines.Filled(static_cast<std::size_t>(count));
  }
}

}  // namespace

CResponder::CResponder() {
  int far = -1;
  termios raw{};
  cfmakeraw(&raw);
  raw.c_cflag |= CREAD | CLOCAL;
  raw.c_cc[VMIN] = 1;
  std::array<char, 128> path;
  if (openpty(&far, &near_, nullptr, &raw, nullptr) != 0) Fail("openpty");
  if (ttyname_r(near_, path.data(), path.size()) != 0) Fail("ttyname_r");
  path_ = path.data();

  process_ = fork();
  if (process_ < 0) Fail("fork");
  if (process_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    close(near_);
    Serve(far);
  }
  close(far);
}

CResponder::~CResponder() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  close(near_);
}

}  // namespace vane::bench
