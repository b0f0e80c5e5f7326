#include "vane/support/messages.h"

#include <algorithm>

#include "vane/components/components.h"
#include "vane/support/failure.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

// The three things that are one per process: these two, and the decimal separator.
bool g_busycursor = false;
std::string g_helpfile = "VaneT312B.hlp";

CPlatform& Platform() { return InstalledComponents().platform; }

void ShowBox(const std::string& text, const std::string& title, std::int32_t icon,
             const std::string& helpfile, std::int32_t helpcontext) {
  SetBusyCursor(false);
  const std::int32_t flags = helpfile.empty() ? icon : icon + kBoxHelpButton;
  Platform().MessageBox(text, title, flags, helpfile, helpcontext);
}

}  // namespace

std::string SubstituteParams(std::string_view text, std::string_view params) {
  std::string result;
  for (auto places = std::ranges::count(text, '~'); places > 0; --places) {
    std::string_view value = params;
    if (const std::size_t bar = params.find('|'); bar != params.npos) {
      value = TrimBlanks(params.substr(0, bar));
      params = TrimBlanks(params.substr(bar + 1));
    } else {
      params = {};
    }
    const std::size_t place = text.find('~');
    result += text.substr(0, place);
    result += value;
    text.remove_prefix(place + 1);
  }
  result += text;
  return result;
}

void ShowMessage(const std::string& message, const std::string& title, const std::string& helpfile,
                 std::int32_t helpcontext) {
  ShowBox(message, title, kBoxInformation, helpfile, helpcontext);
}

void ShowMessage(const std::string& message) { ShowMessage(message, kCompanyName, {}, 0); }

void ShowError(const std::string& action, const std::string& title, const std::string& helpfile,
               std::int32_t helpcontext) {
  const LibraryError error = PendingError();
  std::string text = ResourceText(EText::ERROR_OCCURRED_WHILE) + " " + action + ".\r";
  if (error.Number() == 0) {
    ShowBox(text, title, kBoxStop, helpfile, helpcontext);
    return;
  }
  text += "\r" + ResourceText(EText::ERROR_WORD) + ": " + std::to_string(error.Number()) + " - " +
          error.Description();
  if (!error.Source().empty()) text += "\r(" + error.Source() + ")";
  const bool errorhelps = helpfile.empty() && !error.HelpFile().empty();
  ShowBox(text, title, kBoxStop, errorhelps ? error.HelpFile() : helpfile,
          errorhelps ? error.HelpContext() : helpcontext);
}

void SetBusyCursor(bool on) {
  g_busycursor = on;
  Platform().SetBusyCursor(on);
}

bool BusyCursor() { return g_busycursor; }

const std::string& LibraryHelpFile() { return g_helpfile; }

void SetLibraryHelpFile(const std::string& file) { g_helpfile = file; }

std::int32_t HelpOpenTopic(std::int32_t command, std::int32_t data) {
  try {
    SetBusyCursor(true);
    const std::int32_t result = Platform().OpenHelp(g_helpfile, command, data);
    SetBusyCursor(false);
    return result;
  } catch (...) {
    SetBusyCursor(false);
    RaiseAgain("HelpOpenTopic()");
  }
}

void ShowHelpTopic(std::int32_t context) { HelpOpenTopic(HELP_CONTEXT, context); }

}  // namespace vane
