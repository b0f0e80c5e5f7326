// Reading and writing what may keep a program waiting: pipes, devices, terminals. A wait ends by
// itself or by the user, never by killing the program alone.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "adapters/posix/posix_file.h"

namespace vane {

/// How long a wait may take. A person at a terminal has all the time that he wants.
struct Patience {
  std::chrono::milliseconds meeting{10'000};   ///< until somebody opens a pipe's other end
  std::chrono::milliseconds silence{600'000};  ///< until the next byte comes
  /// Asked several times a second and after each signal; true gives the wait up. Empty: never.
  std::function<bool()> interrupted;
};

enum class EArrival {
  BYTES,
  END,
  INTERRUPTED,  ///< `Patience::interrupted` has given true
};

class CPatientInput {
 public:
  /// Raises `std::system_error`. Nobody needs to have opened the other end of a pipe yet.
  CPatientInput(const std::filesystem::path& path, Patience patience);

  /// The descriptor stays the host's; `name` is what errors call it.
  CPatientInput(int fd, std::string name, Patience patience);

  /// Puts what is there into `buffer`, no more than `size` bytes, and waits for the first of them;
  /// `count` is their number. Raises `std::runtime_error` for a failure and for a wait that has
  /// taken too long.
  EArrival Read(char* buffer, std::size_t size, std::size_t& count);

 private:
  std::string name_;
  Patience patience_;
  CDescriptor owned_;
  int fd_;
  bool met_ = true;  // whether there is, or was, another end
  bool isterminal_ = false;
};

class CPatientOutput {
 public:
  /// Opens what is there, and makes no file. Waits for the reader of a pipe. Raises
  /// `std::runtime_error`.
  CPatientOutput(const std::filesystem::path& path, Patience patience);
  CPatientOutput(int fd, std::string name, Patience patience);

  /// Gives all of `text` to the system; a reader that only takes its time is waited for without a
  /// limit. Raises `std::runtime_error`; a part of the text may be written then.
  void Write(std::string_view text);

  /// The last operation. Raises `std::system_error`.
  void Close();

 private:
  std::string name_;
  Patience patience_;
  CDescriptor owned_;
  int fd_;
};

}  // namespace vane
