#include "adapters/posix/links.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <string>
#include <system_error>

#include "adapters/posix/posix_file.h"

namespace vane {
namespace {

constexpr int kMaxLinks = 40;

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  return path.has_parent_path() ? path.parent_path() : ".";
}

// A link by which somebody else would choose what this user's program writes to.
bool IsPlanted(const std::filesystem::path& link) {
  struct stat own {};
  struct stat folder {};
  if (::lstat(link.c_str(), &own) != 0 || ::stat(FolderOf(link).c_str(), &folder) != 0)
    return false;
  const bool isshared = (folder.st_mode & S_ISVTX) != 0 && (folder.st_mode & S_IWOTH) != 0;
  return isshared && own.st_uid != ::geteuid() && own.st_uid != folder.st_uid;
}

}  // namespace

std::filesystem::path FollowLinks(std::filesystem::path path) {
  for (int i = 0; i < kMaxLinks; ++i) {
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error) || IsNameOfOpenFile(path)) return path;
    if (IsPlanted(path)) RaiseFileError(EACCES, "Cannot follow the link", path);
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) RaiseFileError(error.value(), "Cannot follow the link", path);
    path = path.parent_path() / next;
  }
  RaiseFileError(ELOOP, "Cannot follow the link", path);
}

bool IsNameOfOpenFile(const std::filesystem::path& path) {
  struct statfs system {};
  struct stat own {};
  return ::lstat(path.c_str(), &own) == 0 && S_ISLNK(own.st_mode) &&
         FolderOf(path).filename() == "fd" && ::statfs(FolderOf(path).c_str(), &system) == 0 &&
         system.f_type == PROC_SUPER_MAGIC;
}

std::optional<int> OwnDescriptor(const std::filesystem::path& path) {
  if (!IsNameOfOpenFile(path)) return std::nullopt;
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::canonical(FolderOf(path), error);
  if (error || !folder.string().starts_with("/proc/" + std::to_string(::getpid()) + "/")) {
    return std::nullopt;
  }
  const std::string name = path.filename();
  int number = -1;
  const auto result = std::from_chars(name.data(), name.data() + name.size(), number);
  return result.ec == std::errc() ? std::optional<int>(number) : std::nullopt;
}

}  // namespace vane
