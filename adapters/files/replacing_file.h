// A file that is written piece by piece out of sight and takes its place when it is whole.
//
// Any thread. Every failure is a `std::runtime_error` that names the target.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/posix/patience.h"
#include "adapters/posix/posix_file.h"

namespace vane {

/// Raises what a `CReplacingFile` for `target` would for its folder, before there is work to lose.
void CheckFolder(const std::filesystem::path& target);

/// Without `Commit` nothing is left of it, and the target is what it was. While it is written it
/// has no name, where the file system allows that, so that a program that is killed leaves nothing
/// either.
///
/// A target that is no regular file, such as a pipe, a device or an open file of the process, can't
/// be replaced: it gets what is written at once.
class CReplacingFile {
 public:
  /// The file is made in the target's folder, which must exist. A symbolic link at `target` is
  /// followed. An older file must be writable, and hands on its permissions; a new one gets `mode`,
  /// or without it those of any new file of this user.
  explicit CReplacingFile(const std::filesystem::path& target, std::optional<mode_t> mode = {},
                          const Patience& patience = {});
  ~CReplacingFile();
  CReplacingFile(const CReplacingFile&) = delete;
  CReplacingFile& operator=(const CReplacingFile&) = delete;

  /// Whether there will be a file to look at after `Commit`.
  bool IsRegular() const { return !inplace_; }

  /// Goes to the file at once.
  void Write(std::string_view text);

  /// Brings the content onto the disk, puts the file in the target's place and brings that onto the
  /// disk too. The last operation. When only its last part fails, the new file is in place and no
  /// more than its survival of a power failure is in doubt.
  void Commit();

 private:
  void Make(std::optional<mode_t> mode);
  void NameIt();
  void Check(bool done) const;

  std::filesystem::path target_;
  std::optional<CPatientOutput> inplace_;
  std::string name_;  // empty while the file has none, and once it has taken the target's place
  CDescriptor file_;
};

}  // namespace vane
