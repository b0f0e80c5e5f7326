#include "adapters/terminal/terminal_passcode.h"

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

#include "adapters/terminal/terminal_input.h"
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

  // False when there is no room; what is so long can't be a passcode.
  bool Add(char c) {
    if (size_ == text_.size()) return false;
    text_[size_++] = c;
    return true;
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

ELineEnd ReadSecret(CPatientInput& input, CSecretLine& line) {
  return ReadLine(input, [&line](char c) { return line.Add(c); });
}

CPatientInput Open(const std::string& source, Patience patience) {
  const std::optional<int> number = DescriptorNumber(source);
  if (!number) return {source, std::move(patience)};
  return {*number, "descriptor " + std::to_string(*number), std::move(patience)};
}

}  // namespace

std::optional<int> DescriptorNumber(const std::string& source) {
  if (source == "-") return STDIN_FILENO;
  int number = -1;
  const char* const end = source.data() + source.size();
  const auto [last, error] = std::from_chars(source.data(), end, number);
  if (error != std::errc() || last != end || number < 0) return std::nullopt;
  return number;
}

CTerminalPasscodeDialog::CTerminalPasscodeDialog(CInterrupts& interrupts, std::string source,
                                                 int input, int output, Patience patience,
                                                 std::function<void(const std::string&)> tell)
    : source_(std::move(source)),
      input_(input),
      output_(output),
      patience_(std::move(patience)),
      tell_(std::move(tell)) {
  patience_.interrupted = [&interrupts] { return interrupts.Pending(); };
}

bool CTerminalPasscodeDialog::ShowDialog(std::string& entered, ui::CWindow*) {
  return source_.empty() ? AskOnTerminal(entered) : TakeFromSource(entered);
}

bool CTerminalPasscodeDialog::AskOnTerminal(std::string& entered) {
  ClearOpenLine(output_);
  if (!::isatty(input_) || !::isatty(output_)) return Cancel("there is no terminal to ask on");
  CSecretLine line;
  ELineEnd end = ELineEnd::INTERRUPTED;
  {
    const CHiddenTyping hidden(input_);
    WriteToTerminal(output_, "Passcode (not shown; empty to give up): ");
    CPatientInput input(input_, "the terminal", patience_);
    end = ReadSecret(input, line);
    WriteToTerminal(output_, "\n");
  }
  if (end == ELineEnd::INTERRUPTED) return Cancel("interrupted");
  if (end == ELineEnd::END_OF_INPUT) return Cancel("the input has ended");
  if (end == ELineEnd::OVERLONG) return Cancel("the line is too long for one");
  if (line.Text().empty()) return Cancel("none was typed");
  entered = line.Text();
  return true;
}

bool CTerminalPasscodeDialog::TakeFromSource(std::string& entered) {
  if (std::exchange(sourceused_, true)) return Cancel("a passcode file is read only once");
  CPatientInput input = Open(source_, patience_);
  CSecretLine line;
  const ELineEnd end = ReadSecret(input, line);
  if (end == ELineEnd::INTERRUPTED) return Cancel("interrupted");
  if (end == ELineEnd::OVERLONG) return Cancel("the first line of the passcode file is too long");
  std::string_view text = line.Text();
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text.empty()) return Cancel("the first line of the passcode file is empty");
  entered = text;
  return true;
}

bool CTerminalPasscodeDialog::Cancel(const std::string& why) {
  const std::string text = "No passcode: " + why + ".";
  if (tell_) {
    tell_(text);
  } else {
    WriteToTerminal(output_, text + "\n");
  }
  return false;
}

}  // namespace vane
