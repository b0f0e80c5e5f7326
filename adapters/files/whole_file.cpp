#include "adapters/files/whole_file.h"

#include <unistd.h>

#include "adapters/files/atomic_file.h"

namespace vane {
namespace {

constexpr const char* kStandard = "-";
constexpr std::size_t kBlock = 65536;

CPatientInput Open(const std::filesystem::path& path, const Patience& patience) {
  if (path == kStandard) return {STDIN_FILENO, NameOfInput(path), patience};
  return {path, patience};
}

}  // namespace

std::string NameOfInput(const std::filesystem::path& path) {
  return path == kStandard ? "standard input" : path.string();
}

std::string NameOfOutput(const std::filesystem::path& path) {
  return path == kStandard ? "standard output" : path.string();
}

std::string ReadWholeFile(const std::filesystem::path& path, std::size_t limit,
                          const Patience& patience) {
  CPatientInput input = Open(path, patience);
  std::string text;
  std::string block(kBlock, '\0');
  for (;;) {
    std::size_t count = 0;
    switch (input.Read(block.data(), block.size(), count)) {
      case EArrival::END:
        return text;
      case EArrival::INTERRUPTED:
        RaiseFileError("interrupted", "Cannot read", NameOfInput(path));
      case EArrival::BYTES:
        text.append(block, 0, count);
    }
    if (text.size() > limit) {
      RaiseFileError("it holds more than " + std::to_string(limit) + " bytes", "Cannot read",
                     NameOfInput(path));
    }
  }
}

void WriteWholeFile(const std::filesystem::path& path, std::string_view text, mode_t mode,
                    const Patience& patience) {
  if (path != kStandard) {
    WriteFileAtomically(path, text, mode, patience);
    return;
  }
  CPatientOutput output(STDOUT_FILENO, NameOfOutput(path), patience);
  output.Write(text);
}

}  // namespace vane
