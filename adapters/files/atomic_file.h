// Writing a file as a whole: a reader, a crash or a full disk finds the old text or the new one.
//
// Any thread. Two writers of one file don't harm each other, but the later one wins; who wants to
// change a part of a file needs a lock of its own.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

#include "adapters/posix/patience.h"

namespace vane {

/// Makes `folder` and every missing folder above it, for this user alone (0700). Folders that exist
/// stay as they are. Raises `std::system_error` with the path in its text.
void MakePrivateFolders(const std::filesystem::path& folder);

/// Makes `text` the whole content of the file at `path`, on the disk when this returns. A new file
/// gets the permissions `mode` whatever the umask says, an older one keeps its own; a symbolic link
/// stays and its target is written. What is no regular file, such as a pipe or a device, gets the
/// text itself.
///
/// Raises `std::runtime_error` with the path in its text, also for a missing folder: nothing is
/// left beside the file, and the file is what it was, except when the last step failed and only its
/// survival of a power failure is in doubt.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view text, mode_t mode,
                         const Patience& patience = {});

}  // namespace vane
