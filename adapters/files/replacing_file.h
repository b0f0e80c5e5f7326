// A file that is written piece by piece beside another one and takes its place when it is whole.
//
// Any thread. Every failure is a `std::system_error` that names the target.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "adapters/files/posix_file.h"

namespace vane {

/// Without `Commit` nothing is left of it, and the target is what it was.
class CReplacingFile {
 public:
  /// Makes an empty file in the target's folder, with the permissions that a new file of this user
  /// gets. A symbolic link at `target` is not followed: the file will take the link's place.
  explicit CReplacingFile(std::filesystem::path target);
  ~CReplacingFile();
  CReplacingFile(const CReplacingFile&) = delete;
  CReplacingFile& operator=(const CReplacingFile&) = delete;

  void SetMode(mode_t mode);

  /// Goes to the file at once.
  void Write(std::string_view text);

  /// Brings the content onto the disk, puts the file in the target's place and brings that onto the
  /// disk too. The last operation. When only its last part fails, the new file is in place and no
  /// more than its survival of a power failure is in doubt.
  void Commit();

 private:
  void Check(bool done) const;

  std::filesystem::path target_;
  std::string name_;  // empty once the file has taken the target's place
  CDescriptor file_;
};

}  // namespace vane
