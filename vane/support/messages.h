// What the user is told: message boxes, the busy cursor, and the help file.
//
// Everything here talks to the platform that is installed for the process, on the user-interface
// thread. A failure inside goes to the caller.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vane {

/// Fills each "~" of `text` with the next of `params`, which are separated by "|". With a "|" in
/// `params` every value loses the blanks around it; a lone value keeps them. A place without a
/// value is filled with nothing; values are never scanned for places.
std::string SubstituteParams(std::string_view text, std::string_view params);

/// Information icon and OK; with a help file, a Help button. Clears the busy cursor first.
void ShowMessage(const std::string& message, const std::string& title, const std::string& helpfile,
                 std::int32_t helpcontext);

/// `ShowMessage` as the library itself calls it: its own title, no help.
void ShowMessage(const std::string& message);

/// To be called inside a catch: shows what was going on and the pending error under the stop icon.
/// Does not raise the error again. The help of the error stands in where none is given.
void ShowError(const std::string& action, const std::string& title, const std::string& helpfile,
               std::int32_t helpcontext);

/// The busy cursor is one flag for the whole process, not a count.
void SetBusyCursor(bool on);
bool BusyCursor();

/// The help file of the whole library; `VaneT312B.hlp` until a host sets another.
const std::string& LibraryHelpFile();
void SetLibraryHelpFile(const std::string& file);

/// Command of `HelpOpenTopic` that shows the topic of a number.
inline constexpr std::int32_t HELP_CONTEXT = 1;

/// The one door to the help viewer; gives the viewer's result.
std::int32_t HelpOpenTopic(std::int32_t command, std::int32_t data);
void ShowHelpTopic(std::int32_t context);

}  // namespace vane
