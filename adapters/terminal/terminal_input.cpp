#include "adapters/terminal/terminal_input.h"

#include <unistd.h>

#include <exception>
#include <utility>

namespace vane {

ELineEnd ReadLine(CPatientInput& input, const std::function<bool(char)>& add) {
  for (;;) {
    // One character at a time: a block would take away what the next reader is to get.
    char c = 0;
    std::size_t count = 0;
    switch (input.Read(&c, 1, count)) {
      case EArrival::INTERRUPTED:
        return ELineEnd::INTERRUPTED;
      case EArrival::END:
        return ELineEnd::END_OF_INPUT;
      case EArrival::BYTES:
        break;
    }
    if (c == '\n') return ELineEnd::LINE;
    if (!add(c)) return ELineEnd::OVERLONG;
  }
}

ELineEnd ReadLine(CInterrupts& interrupts, int input, std::string& line) {
  line.clear();
  Patience patience;
  patience.interrupted = [&interrupts] { return interrupts.Pending(); };
  ELineEnd end = ELineEnd::END_OF_INPUT;
  try {
    CPatientInput terminal(input, "the terminal", std::move(patience));
    end = ReadLine(terminal, [&line](char c) {
      line += c;
      return true;
    });
  } catch (const std::exception&) {
  }
  if (end != ELineEnd::LINE) line.clear();
  return end;
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
