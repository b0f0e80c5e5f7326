// Files that a user names on a command line: each is read or written in one piece, and "-" is
// standard input or output.
//
// Any thread. Failures are `std::runtime_error` with a text that names the file and the reason.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "adapters/posix/patience.h"

namespace vane {

/// What a message calls `path`: "standard input" or "standard output" for "-".
std::string NameOfInput(const std::filesystem::path& path);
std::string NameOfOutput(const std::filesystem::path& path);

/// All that is in the file. More than `limit` bytes are a failure, and so is an interrupt while the
/// other end of a pipe is waited for.
std::string ReadWholeFile(const std::filesystem::path& path, std::size_t limit,
                          const Patience& patience = {});

/// As `WriteFileAtomically`. What the program itself has kept back for standard output so far has
/// to be flushed before.
void WriteWholeFile(const std::filesystem::path& path, std::string_view text, mode_t mode,
                    const Patience& patience = {});

}  // namespace vane
