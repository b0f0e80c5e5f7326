// Writing a file as a whole: a reader, a crash or a full disk finds the old text or the new one.
//
// Any thread. Two writers of one file don't harm each other, but the later one wins; who wants to
// change a part of a file needs a lock of its own.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace vane {

/// The file that `path` leads to through symbolic links, whether that file exists or not. Raises
/// `std::system_error` for a circle of links.
std::filesystem::path FollowLinks(std::filesystem::path path);

/// Makes `folder` and every missing folder above it, for this user alone (0700). Folders that exist
/// stay as they are. Raises `std::system_error` with the path in its text.
void MakePrivateFolders(const std::filesystem::path& folder);

/// Makes `text` the whole content of the file at `path`, on the disk when this returns. A new file
/// gets the permissions `mode` whatever the umask says, an older one keeps its own; a missing
/// folder is made; a symbolic link stays and its target is written. Raises `std::system_error` with
/// the path in its text: nothing is left beside the file, and the file is what it was, except when
/// the last step failed and only its survival of a power failure is in doubt.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view text, mode_t mode);

}  // namespace vane
