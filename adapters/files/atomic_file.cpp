#include "adapters/files/atomic_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "adapters/files/posix_file.h"
#include "adapters/files/replacing_file.h"

namespace vane {
namespace {

constexpr int kMaxLinks = 40;
constexpr mode_t kPermissions = 07777;

mode_t ModeOf(const std::filesystem::path& file, mode_t otherwise) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? status.st_mode & kPermissions : otherwise;
}

}  // namespace

std::filesystem::path FollowLinks(std::filesystem::path path) {
  for (int i = 0; i < kMaxLinks; ++i) {
    std::error_code none;
    if (!std::filesystem::is_symlink(path, none)) return path;
    path = path.parent_path() / std::filesystem::read_symlink(path);
  }
  RaiseFileError(ELOOP, "Cannot follow", path);
}

void MakePrivateFolders(const std::filesystem::path& folder) {
  if (folder.empty() || ::mkdir(folder.c_str(), S_IRWXU) == 0) return;
  if (errno == ENOENT && folder.has_relative_path()) {
    MakePrivateFolders(folder.parent_path());
    if (::mkdir(folder.c_str(), S_IRWXU) == 0) return;
  }
  const int error = errno;
  std::error_code none;
  if (!std::filesystem::is_directory(folder, none))
    RaiseFileError(error, "Cannot make the folder", folder);
}

void WriteFileAtomically(const std::filesystem::path& path, std::string_view text, mode_t mode) {
  const std::filesystem::path target = FollowLinks(path);
  MakePrivateFolders(target.parent_path());
  CReplacingFile file(target);
  file.SetMode(ModeOf(target, mode));
  file.Write(text);
  file.Commit();
}

}  // namespace vane
