// Text for a person at a terminal.
#pragma once

#include <string>
#include <string_view>

namespace vane {

/// Writes all of `text` to the descriptor. What can't be written is lost: this is where failures
/// are told, so there is no other place for one.
void WriteToTerminal(int fd, std::string_view text);

/// Whether a line without its end stands on the terminal, such as a progress line. One for the
/// process, like the terminal.
void MarkOpenLine(bool open);

/// Takes that line away, if there is one, so that other text can come up in its place.
void ClearOpenLine(int fd);

}  // namespace vane
