// Text for a person at a terminal.
#pragma once

#include <string>
#include <string_view>

namespace vane {

/// Writes all of `text` to the descriptor. What can't be written is lost: this is where failures
/// are told, so there is no other place for one.
void WriteToTerminal(int fd, std::string_view text);

/// Takes away what `WriteToTerminal` wrote behind the last line end, such as a progress line; it
/// is one for the process, like the terminal.
void ClearOpenLine(int fd);

/// `text` with its line ends (CR, CR LF or LF) as LF, and "?" for every other control character: an
/// instrument's words must not steer the terminal.
std::string PrintableText(std::string_view text);

}  // namespace vane
