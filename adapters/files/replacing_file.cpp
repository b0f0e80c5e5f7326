#include "adapters/files/replacing_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "adapters/posix/links.h"

namespace vane {
namespace {

constexpr mode_t kNewFile = 0666;  // less what the user's mask takes away
constexpr mode_t kPermissions = 0777;
constexpr const char* kNoFolder = "Cannot write to the folder";

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  return path.has_parent_path() ? path.parent_path() : ".";
}

std::string NameOfDescriptor(int fd) { return "/proc/self/fd/" + std::to_string(fd); }

// A file that goes when it is closed, until it gets a name. -1 where that can't be.
int MakeNamelessFile(const std::filesystem::path& folder) {
  const int file = ::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, kNewFile);
  if (file < 0 || ::access(NameOfDescriptor(file).c_str(), F_OK) == 0) return file;
  ::close(file);
  return -1;
}

// Calls `make` with names beside the target until one was free, and gives that. A name that is
// taken, by a file or a link, is never used.
template <class Make>
std::string WithFreeName(const std::filesystem::path& target, Make make) {
  for (int n = 1;; ++n) {
    std::string name = target.string() + '.' + std::to_string(::getpid()) + '-' + std::to_string(n);
    if (make(name.c_str())) return name;
    if (errno == EEXIST) continue;
    const int error = errno;
    std::error_code none;
    if (!std::filesystem::is_directory(FolderOf(target), none)) {
      RaiseFileError(error, kNoFolder, FolderOf(target));
    }
    RaiseFileError(error, "Cannot make", target);
  }
}

bool Sync(int fd) {
  while (::fsync(fd) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

// Some file systems can't sync a folder and say EINVAL; they have nothing to be synced.
bool SyncFolder(const std::filesystem::path& folder) {
  const CDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return opened.IsOpen() && (Sync(opened.Get()) || errno == EINVAL);
}

}  // namespace

void CheckFolder(const std::filesystem::path& target) {
  const std::filesystem::path folder = FolderOf(FollowLinks(target));
  struct stat status {};
  const bool isthere = ::stat(folder.c_str(), &status) == 0;
  if (!isthere || !S_ISDIR(status.st_mode)) {
    RaiseFileError(isthere ? ENOTDIR : errno, kNoFolder, folder);
  }
}

CReplacingFile::CReplacingFile(const std::filesystem::path& target, std::optional<mode_t> mode,
                               const Patience& patience)
    : target_(FollowLinks(target)) {
  struct stat status {};
  const bool exists = ::stat(target_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) RaiseFileError(EISDIR, "Cannot write", target_);
  if (IsNameOfOpenFile(target_) || (exists && !S_ISREG(status.st_mode))) {
    inplace_.emplace(target_, patience);
    return;
  }
  if (exists) {
    Check(::access(target_.c_str(), W_OK) == 0);
    mode = status.st_mode & kPermissions;
  }
  Make(mode);
}

CReplacingFile::~CReplacingFile() {
  if (!name_.empty()) ::unlink(name_.c_str());
}

void CReplacingFile::Make(std::optional<mode_t> mode) {
  file_ = CDescriptor(MakeNamelessFile(FolderOf(target_)));
  if (!file_.IsOpen()) {
    name_ = WithFreeName(target_, [this](const char* name) {
      file_ =
          CDescriptor(::open(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFile));
      return file_.IsOpen();
    });
  }
  if (mode) Check(::fchmod(file_.Get(), *mode) == 0);
}

void CReplacingFile::Write(std::string_view text) {
  if (inplace_) {
    inplace_->Write(text);
    return;
  }
  while (!text.empty()) {
    const ssize_t written = ::write(file_.Get(), text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    Check(written >= 0);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void CReplacingFile::Commit() {
  if (inplace_) {
    inplace_->Close();
    return;
  }
  Check(Sync(file_.Get()));
  if (name_.empty()) NameIt();
  Check(file_.Close() == 0 || errno == EINTR);
  Check(::rename(name_.c_str(), target_.c_str()) == 0);
  name_.clear();
  Check(SyncFolder(FolderOf(target_)));
}

// A link can't take the place of a file, only a renaming can.
void CReplacingFile::NameIt() {
  const std::string opened = NameOfDescriptor(file_.Get());
  name_ = WithFreeName(target_, [&opened](const char* name) {
    return ::linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
  });
}

void CReplacingFile::Check(bool done) const {
  if (!done) RaiseFileError(errno, "Cannot write", target_);
}

}  // namespace vane
