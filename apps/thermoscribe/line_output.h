// Where the lines of an answer go: standard output, or the end of a file of the user's.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/posix/patience.h"
#include "adapters/posix/posix_file.h"

namespace vane::thermoscribe {

/// Whether `path` names what standard output goes to: "-", "/dev/stdout", or a file or pipe by its
/// own name. Nothing else may stand there then.
bool IsStandardOutput(const std::filesystem::path& path);

/// Each text is with the system when `Write` returns. A regular file holds either all of it then or
/// nothing: what a full disk has taken of a line is taken back.
///
/// Failures are `std::runtime_error` with a text that names the file and the reason.
class CLineOutput {
 public:
  /// Standard output.
  explicit CLineOutput(Patience patience);

  /// Appends, so that a run that is started anew goes on where the former one ended. A missing file
  /// is made, and taken away again when nothing was written to it; a last line that has no end gets
  /// one. A pipe, a device and "/dev/stdout" are written as they are; "-" is standard output.
  CLineOutput(const std::filesystem::path& path, Patience patience);

  ~CLineOutput();
  CLineOutput(const CLineOutput&) = delete;
  CLineOutput& operator=(const CLineOutput&) = delete;

  void Write(std::string_view text);

  /// True once a write has failed because nobody reads any more.
  bool IsReaderGone() const { return isreadergone_; }

  /// The first line of the file as it was found, without its end; nothing for an empty or new file,
  /// or what is none.
  const std::optional<std::string>& FirstLine() const { return firstline_; }

 private:
  void OpenRegular();
  void LookAt();
  void WriteWhole(std::string_view text);

  std::filesystem::path path_;  // what errors call it
  std::optional<CPatientOutput> stream_;
  CDescriptor owned_;
  int fd_ = -1;  // of a regular file
  bool ismade_ = false;
  bool endsopen_ = false;  // the last line that was found has no end
  bool iswritten_ = false;
  bool isreadergone_ = false;
  std::optional<std::string> firstline_;
};

}  // namespace vane::thermoscribe
