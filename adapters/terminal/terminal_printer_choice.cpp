#include "adapters/terminal/terminal_printer_choice.h"

#include <algorithm>

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"
#include "vane/support/texts.h"

namespace vane {

std::optional<std::string> ChoosePrinter(CInterrupts& interrupts,
                                         const std::vector<std::string>& printers, int input,
                                         int output) {
  const auto say = [output](const std::string& text) {
    WriteToTerminal(output, PrintableText(text));
  };
  ClearOpenLine(output);
  if (!CanAsk(input, output)) {
    say("Not printed: there is no terminal to ask for the printer on.\n");
    return std::nullopt;
  }
  std::string list = "Printers\n";
  for (std::size_t i = 0; i < printers.size(); ++i) {
    list += "  " + std::to_string(i + 1) + "  " + printers[i] + "\n";
  }
  say(list);
  for (;;) {
    say("Printer (none: don't print): ");
    std::string answer;
    if (ReadLine(interrupts, input, answer) != ELineEnd::LINE) say("\n");
    // Names that differ in the case of their letters alone are told apart.
    if (std::ranges::find(printers, Trimmed(answer)) != printers.end()) return Trimmed(answer);
    const std::string word = AnswerWord(answer);
    if (word.empty() || word == "none") {
      say("Not printed.\n");
      return std::nullopt;
    }
    for (std::size_t i = 0; i < printers.size(); ++i) {
      if (word == AnswerWord(printers[i]) || word == std::to_string(i + 1)) return printers[i];
    }
    say("There is no such printer.\n");
  }
}

}  // namespace vane
