#include "adapters/terminal/terminal_platform.h"

#include <poll.h>

#include <string_view>

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

constexpr std::int32_t kHelpContextCommand = 1;

std::string BoxHeader(const std::string& title, std::int32_t flags) {
  switch (flags & kBoxIconMask) {
    case kBoxStop:
      return title + ": Error";
    case kBoxQuestion:
      return title + ": Question";
    case kBoxInformation:
      return title + ": Information";
    default:
      return title;
  }
}

std::string HelpTopic(const std::string& helpfile, std::int32_t context) {
  return "Help: " + helpfile + ", topic " + std::to_string(context) + "\n";
}

}  // namespace

CTerminalPlatform::CTerminalPlatform(CInterrupts& interrupts, int input, int output)
    : interrupts_(interrupts), input_(input), output_(output) {}

std::string CTerminalPlatform::BoxText(const std::string& text, const std::string& title,
                                       std::int32_t flags, const std::string& helpfile,
                                       std::int32_t helpcontext) {
  const std::string box = BoxHeader(title, flags) + "\n" + text + "\n";
  return PrintableText(flags & kBoxHelpButton ? box + HelpTopic(helpfile, helpcontext) : box);
}

EBoxButton CTerminalPlatform::MessageBox(const std::string& text, const std::string& title,
                                         std::int32_t flags, const std::string& helpfile,
                                         std::int32_t helpcontext) {
  // A box may come up while a progress line stands on the screen.
  ClearOpenLine(output_);
  WriteToTerminal(output_, BoxText(text, title, flags, helpfile, helpcontext));
  return flags & kBoxYesNo ? Ask() : EBoxButton::OK;
}

EBoxButton CTerminalPlatform::Ask() {
  const auto no = [this](std::string_view why) {
    WriteToTerminal(output_, why);
    return EBoxButton::NO;
  };
  if (!CanAsk(input_, output_)) return no("No: there is no terminal to ask on.\n");

  WriteToTerminal(output_, "Yes or no? ");
  for (;;) {
    std::string line;
    switch (ReadLine(interrupts_, input_, line)) {
      case ELineEnd::INTERRUPTED:
        return no("\nNo: interrupted.\n");
      case ELineEnd::END_OF_INPUT:
        return no("\nNo: the input has ended.\n");
      case ELineEnd::OVERLONG:
      case ELineEnd::LINE:
        break;
    }
    const std::string word = AnswerWord(line);
    if (word == "y" || word == "yes") return EBoxButton::YES;
    if (word == "n" || word == "no") return EBoxButton::NO;
    WriteToTerminal(output_, "Please answer yes or no: ");
  }
}

void CTerminalPlatform::RunMessageQueue(std::uint32_t longestwait) {
  pollfd waiting = {interrupts_.Descriptor(), POLLIN, 0};
  ::poll(&waiting, 1, WaitOf(longestwait));
  for (int arrivals = interrupts_.TakeArrivals(); arrivals > 0; --arrivals) {
    if (handler_) handler_();
  }
}

std::int32_t CTerminalPlatform::OpenHelp(const std::string& helpfile, std::int32_t command,
                                         std::int32_t data) {
  WriteToTerminal(output_,
                  PrintableText(command == kHelpContextCommand ? HelpTopic(helpfile, data)
                                                               : "Help: " + helpfile + "\n"));
  return 1;
}

}  // namespace vane
