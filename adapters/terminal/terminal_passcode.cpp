#include "adapters/terminal/terminal_passcode.h"

#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/terminal/terminal_output.h"

namespace vane {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A line being read, wiped at its end. It never grows, so that no copy of it is left behind.
class CSecretLine {
 public:
  CSecretLine() = default;
  ~CSecretLine() { ::explicit_bzero(text_.data(), text_.size()); }
  CSecretLine(const CSecretLine&) = delete;
  CSecretLine& operator=(const CSecretLine&) = delete;

  // What is longer than any passcode can't be one; its rest is dropped.
  void Add(char c) {
    if (size_ < text_.size()) text_[size_++] = c;
  }
  std::string_view Text() const { return {text_.data(), size_}; }

 private:
  std::array<char, 1024> text_{};
  std::size_t size_ = 0;
};

// No echo while it lives. Keys that would leave the program in the middle are off as well: it would
// be gone or asleep with the echo off, and come back with the echo on.
class CHiddenTyping {
 public:
  explicit CHiddenTyping(int terminal) : terminal_(terminal) {
    if (::tcgetattr(terminal_, &former_) != 0) Fail("The terminal can't be asked for its mode");
    termios hidden = former_;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    hidden.c_lflag |= ICANON | ISIG;
    hidden.c_cc[VSUSP] = _POSIX_VDISABLE;
    hidden.c_cc[VQUIT] = _POSIX_VDISABLE;
    // What was typed before the prompt was typed for somebody else.
    if (::tcsetattr(terminal_, TCSAFLUSH, &hidden) != 0) Fail("The terminal's echo stays on");
  }
  ~CHiddenTyping() { ::tcsetattr(terminal_, TCSADRAIN, &former_); }
  CHiddenTyping(const CHiddenTyping&) = delete;
  CHiddenTyping& operator=(const CHiddenTyping&) = delete;

 private:
  const int terminal_;
  termios former_{};
};

enum class EEnd { LINE, INPUT, INTERRUPT };

// One character at a time, so that what follows the line stays for whoever reads next.
EEnd ReadSecret(int fd, const CInterrupts& interrupts, CSecretLine& line) {
  for (;;) {
    if (interrupts.Pending()) return EEnd::INTERRUPT;
    pollfd waiting[] = {{fd, POLLIN, 0}, {interrupts.Descriptor(), POLLIN, 0}};
    if (::poll(waiting, 2, -1) < 0 || !waiting[0].revents) continue;
    char c = 0;
    const ssize_t size = ::read(fd, &c, 1);
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (size < 0) Fail("The passcode can't be read");
    if (size == 0) return EEnd::INPUT;
    if (c == '\n') return EEnd::LINE;
    line.Add(c);
  }
}

// A descriptor that the host has handed in, or a file that is opened here.
class CSource {
 public:
  explicit CSource(const std::string& source) {
    const std::optional<int> number = DescriptorNumber(source);
    isown_ = !number;
    // Not waiting for the other end of a pipe here leaves that to where an interrupt is heeded.
    fd_ = number ? *number : ::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd_ < 0) Fail("The passcode file " + source + " can't be opened");
  }
  ~CSource() {
    if (isown_) ::close(fd_);
  }
  CSource(const CSource&) = delete;
  CSource& operator=(const CSource&) = delete;

  int Descriptor() const { return fd_; }

 private:
  bool isown_ = false;
  int fd_ = -1;
};

}  // namespace

std::optional<int> DescriptorNumber(const std::string& source) {
  int number = -1;
  const char* const end = source.data() + source.size();
  const auto [last, error] = std::from_chars(source.data(), end, number);
  if (error != std::errc() || last != end || number < 0) return std::nullopt;
  return number;
}

CTerminalPasscodeDialog::CTerminalPasscodeDialog(CInterrupts& interrupts, std::string source,
                                                 int input, int output)
    : interrupts_(interrupts), source_(std::move(source)), input_(input), output_(output) {}

bool CTerminalPasscodeDialog::ShowDialog(std::string& entered, ui::CWindow*) {
  return source_.empty() ? AskOnTerminal(entered) : TakeFromSource(entered);
}

bool CTerminalPasscodeDialog::AskOnTerminal(std::string& entered) {
  ClearOpenLine(output_);
  if (!::isatty(input_) || !::isatty(output_)) return Cancel("there is no terminal to ask on");
  CSecretLine line;
  EEnd end = EEnd::INTERRUPT;
  {
    const CHiddenTyping hidden(input_);
    WriteToTerminal(output_, "Passcode (not shown; empty to give up): ");
    end = ReadSecret(input_, interrupts_, line);
    WriteToTerminal(output_, "\n");
  }
  if (end == EEnd::INTERRUPT) return Cancel("interrupted");
  if (end == EEnd::INPUT) return Cancel("the input has ended");
  if (line.Text().empty()) return Cancel("none was typed");
  entered = line.Text();
  return true;
}

bool CTerminalPasscodeDialog::TakeFromSource(std::string& entered) {
  if (std::exchange(sourceused_, true)) return Cancel("a passcode file is read only once");
  const CSource source(source_);
  CSecretLine line;
  if (ReadSecret(source.Descriptor(), interrupts_, line) == EEnd::INTERRUPT) {
    return Cancel("interrupted");
  }
  std::string_view text = line.Text();
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text.empty()) return Cancel("the first line of the passcode file is empty");
  entered = text;
  return true;
}

bool CTerminalPasscodeDialog::Cancel(const std::string& why) {
  WriteToTerminal(output_, "No passcode: " + why + ".\n");
  return false;
}

}  // namespace vane
