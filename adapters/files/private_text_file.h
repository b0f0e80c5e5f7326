// Text files in a folder that others can write to, such as the one for temporary files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "adapters/posix/posix_file.h"
#include "vane/components/text_file.h"

namespace vane {

/// Every failure is a `std::system_error` that names the file. Lines end with LF. Nothing is kept
/// back in the process: each line is one call of the system.
class CPrivateTextFile final : public CVaneTextFile {
 public:
  /// Takes away what lies at `path`, a link itself and not what it leads to, and makes a new file
  /// there with mode 0600. If somebody puts anything there in between, that is a failure.
  explicit CPrivateTextFile(std::filesystem::path path);

  void WriteLine(const std::string& text) override;
  void Write(const std::string& text) override { WriteAll(text); }
  void Close() override;

 private:
  void WriteAll(std::string_view text);

  std::filesystem::path path_;
  std::string line_;  // keeps its room from line to line
  CDescriptor file_;
};

}  // namespace vane
