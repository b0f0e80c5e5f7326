// A pseudo-terminal that stands for the readout's serial port, and a lasting name for it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vane::simulator {

/// Owns a file descriptor. One that has the number of a standard file gets another, so that nothing
/// that is printed goes into it; when there is none left it is closed, and `Get` is -1.
class CFile {
 public:
  CFile() = default;
  explicit CFile(int descriptor);
  CFile(CFile&& other) noexcept : descriptor_(other.Release()) {}
  CFile& operator=(CFile&& other) noexcept;
  ~CFile();

  int Get() const { return descriptor_; }

 private:
  int Release();

  int descriptor_ = -1;
};

/// Raw from the start: no echo, no line editing, no signals. The far end is held open here too, so
/// that a client may close it and come back without the line being lost.
class CPseudoTerminal {
 public:
  /// A terminal that isn't there; `Get` is -1.
  CPseudoTerminal() = default;

  /// Raises `std::system_error`.
  static CPseudoTerminal Open();

  int Get() const { return near_.Get(); }
  const std::string& DevicePath() const { return devicepath_; }

  /// What has come in, at most `size` bytes; 0 when nothing is there. Never waits.
  std::size_t Read(char* buffer, std::size_t size) const;

  /// Bytes that the client leaves no room for are lost, as on a line without flow control.
  void Write(std::string_view bytes) const;

  /// A client that ended without closing the terminal may have left it exclusive, and nobody else
  /// could open it. This ends that, unless a client holds the lock that goes with it.
  void FreeAbandoned() const;

 private:
  CFile near_;
  CFile far_;
  std::string devicepath_;
};

/// A symbolic link that is removed at the end of the object's life, unless somebody else has
/// pointed it elsewhere meanwhile.
///
/// With an empty path, the name of a descriptor of this process in its place: good within the
/// process alone, and nothing on the disk that a killed program would leave behind. Without a
/// device it can't be opened, as if it weren't there (ENXIO).
class CDeviceLink {
 public:
  /// Raises `std::system_error`.
  explicit CDeviceLink(std::string path);
  CDeviceLink(const CDeviceLink&) = delete;
  CDeviceLink& operator=(const CDeviceLink&) = delete;
  ~CDeviceLink();

  const std::string& Path() const { return path_; }

  /// Takes the place of an earlier link; raises `std::runtime_error` when something else than a
  /// link stands there, and when the link can't be made.
  void PointTo(const std::string& device);

  void Remove();

 private:
  CFile place_;  // only without a link
  std::string path_;
  std::string device_;
};

}  // namespace vane::simulator
