// Joining and splitting paths, with the separator of the platform. None of these raises: a failure
// gives the empty text.
#pragma once

#include <string>

namespace vane {

/// `folder` and `name` with one separator between them.
std::string BuildFullPath(const std::string& folder, const std::string& name) noexcept;

/// Up to and including the last separator; empty when there is none.
std::string GetFolderFromPath(const std::string& path) noexcept;

/// The last component; separators at the end of `path` don't count.
std::string GetFileFromPath(const std::string& path) noexcept;

}  // namespace vane
