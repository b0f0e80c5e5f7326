// Symbolic links, and the names that the system has for a process's open files.
#pragma once

#include <filesystem>
#include <optional>

namespace vane {

/// The file that `path` leads to through symbolic links, whether that file exists or not. A name of
/// an open file, such as "/proc/self/fd/3", is no link that could be followed, and ends the way.
///
/// Raises `std::system_error` for a circle of links, and for somebody else's link in a folder that
/// everybody can write to, such as the one for temporary files.
std::filesystem::path FollowLinks(std::filesystem::path path);

/// Whether `path` is a name that the system itself gives to a file, open or not, of some process.
bool IsNameOfOpenFile(const std::filesystem::path& path);

/// The number of the open file of this process that `path`, which has been followed, names.
std::optional<int> OwnDescriptor(const std::filesystem::path& path);

}  // namespace vane
