#include "adapters/files/replacing_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace vane {
namespace {

constexpr mode_t kNewFile = 0666;  // less what the user's mask takes away

// A name that is taken, by a file or a link, is never used. `name` becomes the one that was free.
int MakeFileBeside(const std::filesystem::path& target, std::string& name) {
  for (int n = 1;; ++n) {
    name = target.string() + '.' + std::to_string(::getpid()) + '-' + std::to_string(n);
    const int file =
        ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFile);
    if (file >= 0) return file;
    if (errno != EEXIST) RaiseFileError(errno, "Cannot make", target);
  }
}

// Some file systems can't sync a folder and say EINVAL; they have nothing to be synced.
bool SyncFolder(const std::filesystem::path& folder) {
  const CDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return opened.IsOpen() && (::fsync(opened.Get()) == 0 || errno == EINVAL);
}

}  // namespace

CReplacingFile::CReplacingFile(std::filesystem::path target)
    : target_(std::move(target)), file_(MakeFileBeside(target_, name_)) {}

CReplacingFile::~CReplacingFile() {
  if (!name_.empty()) ::unlink(name_.c_str());
}

void CReplacingFile::SetMode(mode_t mode) { Check(::fchmod(file_.Get(), mode) == 0); }

void CReplacingFile::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file_.Get(), text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    Check(written >= 0);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void CReplacingFile::Commit() {
  Check(::fsync(file_.Get()) == 0);
  Check(file_.Close() == 0);
  Check(::rename(name_.c_str(), target_.c_str()) == 0);
  name_.clear();
  Check(SyncFolder(target_.has_parent_path() ? target_.parent_path() : "."));
}

void CReplacingFile::Check(bool done) const {
  if (!done) RaiseFileError(errno, "Cannot write", target_);
}

}  // namespace vane
