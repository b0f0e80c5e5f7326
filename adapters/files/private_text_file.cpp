#include "adapters/files/private_text_file.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

namespace vane {
namespace {

constexpr mode_t kUserOnly = 0600;

int MakeFile(const std::filesystem::path& path) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) RaiseFileError(errno, "Cannot remove", path);
  const int file =
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kUserOnly);
  if (file < 0) RaiseFileError(errno, "Cannot make", path);
  return file;
}

}  // namespace

CPrivateTextFile::CPrivateTextFile(std::filesystem::path path)
    : path_(std::move(path)), file_(MakeFile(path_)) {}

void CPrivateTextFile::WriteLine(const std::string& text) {
  line_.assign(text);
  line_ += '\n';
  WriteAll(line_);
}

void CPrivateTextFile::WriteAll(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file_.Get(), text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) RaiseFileError(errno, "Cannot write", path_);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void CPrivateTextFile::Close() {
  if (file_.Close() != 0 && errno != EINTR) RaiseFileError(errno, "Cannot write", path_);
}

}  // namespace vane
