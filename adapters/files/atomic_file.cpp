#include "adapters/files/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "adapters/files/posix_file.h"

namespace vane {
namespace {

constexpr int kMaxLinks = 40;
constexpr mode_t kPermissions = 07777;

// The file beside the target; gone at the end unless it has taken the target's place.
class CTemporaryFile {
 public:
  explicit CTemporaryFile(const std::filesystem::path& target)
      : name_(target.string() + ".XXXXXX"), file_(::mkostemp(name_.data(), O_CLOEXEC)) {
    if (!file_.IsOpen()) RaiseFileError(errno, "Cannot make a file beside", target);
  }
  ~CTemporaryFile() {
    if (!name_.empty()) ::unlink(name_.c_str());
  }
  CTemporaryFile(const CTemporaryFile&) = delete;
  CTemporaryFile& operator=(const CTemporaryFile&) = delete;

  // The functions give false with `errno` set.

  bool Write(std::string_view text) {
    while (!text.empty()) {
      const ssize_t written = ::write(file_.Get(), text.data(), text.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

  bool Complete(mode_t mode) {
    return ::fchmod(file_.Get(), mode) == 0 && ::fsync(file_.Get()) == 0 && file_.Close() == 0;
  }

  bool MoveTo(const std::filesystem::path& target) {
    if (::rename(name_.c_str(), target.c_str()) != 0) return false;
    name_.clear();
    return true;
  }

 private:
  std::string name_;
  CDescriptor file_;
};

mode_t ModeOf(const std::filesystem::path& file, mode_t otherwise) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? status.st_mode & kPermissions : otherwise;
}

std::filesystem::path FolderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

// Some file systems can't sync a folder and say EINVAL; they have nothing to be synced.
void SyncFolder(const std::filesystem::path& folder) {
  const CDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened.IsOpen() || (::fsync(opened.Get()) != 0 && errno != EINVAL)) {
    RaiseFileError(errno, "Cannot sync the folder", folder);
  }
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
  const std::filesystem::path folder = FolderOf(target);
  MakePrivateFolders(folder);
  CTemporaryFile file(target);
  if (!file.Write(text) || !file.Complete(ModeOf(target, mode)) || !file.MoveTo(target)) {
    RaiseFileError(errno, "Cannot write", path);
  }
  SyncFolder(folder);
}

}  // namespace vane
