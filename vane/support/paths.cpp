#include "vane/support/paths.h"

#include <filesystem>

namespace vane {
namespace {

constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

template <class Body>
std::string EmptyOnFailure(Body body) noexcept {
  try {
    return body();
  } catch (...) {
    return {};
  }
}

}  // namespace

std::string BuildFullPath(const std::string& folder, const std::string& name) noexcept {
  return EmptyOnFailure([&] {
    if (folder.empty()) return name;
    const bool closed = folder.ends_with(kSeparator);
    if (closed && name.starts_with(kSeparator)) return folder + name.substr(1);
    if (closed || name.starts_with(kSeparator)) return folder + name;
    return folder + kSeparator + name;
  });
}

std::string GetFolderFromPath(const std::string& path) noexcept {
  return EmptyOnFailure([&] {
    const std::size_t last = path.rfind(kSeparator);
    return last == path.npos ? std::string() : path.substr(0, last + 1);
  });
}

std::string GetFileFromPath(const std::string& path) noexcept {
  return EmptyOnFailure([&] {
    const std::size_t end = path.find_last_not_of(kSeparator);
    if (end == path.npos) return std::string();
    const std::size_t last = path.rfind(kSeparator, end);
    const std::size_t start = last == path.npos ? 0 : last + 1;
    return path.substr(start, end + 1 - start);
  });
}

}  // namespace vane
