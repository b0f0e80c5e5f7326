#include "adapters/terminal/terminal_input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace vane {

ELineEnd ReadLine(CInterrupts& interrupts, int input, std::string& line) {
  line.clear();
  const auto drop = [&line](ELineEnd end) {
    line.clear();
    return end;
  };
  for (;;) {
    if (interrupts.Pending()) return drop(ELineEnd::INTERRUPTED);
    pollfd waiting[] = {{input, POLLIN, 0}, {interrupts.Descriptor(), POLLIN, 0}};
    if (::poll(waiting, 2, -1) < 0 || !waiting[0].revents) continue;

    // One character at a time: a block would take away what the next reader is to get.
    char c = 0;
    const ssize_t size = ::read(input, &c, 1);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return drop(ELineEnd::END_OF_INPUT);
    if (c == '\n') return ELineEnd::LINE;
    line += c;
  }
}

bool CanAsk(int input, int output) { return ::isatty(input) && ::isatty(output); }

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string AnswerWord(const std::string& line) {
  std::string word = Trimmed(line);
  for (char& c : word) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return word;
}

}  // namespace vane
