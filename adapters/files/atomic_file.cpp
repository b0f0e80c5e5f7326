#include "adapters/files/atomic_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "adapters/files/replacing_file.h"

namespace vane {

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

void WriteFileAtomically(const std::filesystem::path& path, std::string_view text, mode_t mode,
                         const Patience& patience) {
  CReplacingFile file(path, mode, patience);
  file.Write(text);
  file.Commit();
}

}  // namespace vane
