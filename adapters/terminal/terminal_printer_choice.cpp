#include "adapters/terminal/terminal_printer_choice.h"

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"

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
    if (ReadLine(interrupts, input, answer) != ELineEnd::kLine) say("\n");
    answer = Trimmed(answer);
    if (answer.empty()) {
      say("Not printed.\n");
      return std::nullopt;
    }
    for (std::size_t i = 0; i < printers.size(); ++i) {
      if (answer == printers[i] || answer == std::to_string(i + 1)) return printers[i];
    }
  }
}

}  // namespace vane
