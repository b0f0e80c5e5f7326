// The platform: what the library asks of the machine and the desktop that the host runs on.
//
// Implemented by an adapter, one object per process, on the user-interface thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace vane {

/// Flag values of a message box: the icon, the buttons, and the Help button as one sum.
inline constexpr std::int32_t kBoxStop = 16;
inline constexpr std::int32_t kBoxQuestion = 32;
inline constexpr std::int32_t kBoxInformation = 64;
inline constexpr std::int32_t kBoxIconMask = 0xF0;
inline constexpr std::int32_t kBoxYesNo = 4;
inline constexpr std::int32_t kBoxHelpButton = 16384;

/// What the user pressed. A box without buttons of its own has OK.
enum class EBoxButton : std::int32_t { OK = 1, YES = 6, NO = 7 };

class CPlatform {
 public:
  virtual ~CPlatform() = default;

  // The user.

  /// Modal. `flags` is an icon, plus `kBoxYesNo` for a question, plus `kBoxHelpButton` when
  /// `helpfile` is given. `text` may hold line ends as single CR characters.
  virtual EBoxButton MessageBox(const std::string& text, const std::string& title,
                                std::int32_t flags, const std::string& helpfile,
                                std::int32_t helpcontext) = 0;

  virtual void SetBusyCursor(bool on) = 0;

  /// One pass of the user-interface message queue: events that wait are handled, and if none waits
  /// the pass may sleep up to `longestwait` milliseconds for one. Returning early is always
  /// allowed.
  virtual void RunMessageQueue(std::uint32_t longestwait) = 0;

  /// Opens the help viewer; the result is the viewer's, 0 for failure.
  virtual std::int32_t OpenHelp(const std::string& helpfile, std::int32_t command,
                                std::int32_t data) = 0;

  // Time.

  /// Milliseconds since some moment in the past; 32 bits wide, it wraps after 49.7 days.
  virtual std::uint32_t TickCount() = 0;

  /// The wall clock in the user's time zone, as a count of seconds without a zone.
  virtual std::chrono::local_seconds LocalTime() = 0;

  // Regional settings.

  /// The user's decimal separator, one character in UTF-8.
  virtual std::string DecimalSeparator() = 0;

  /// The user's long form of a time of day, such as "3:07:09 PM" or "15:07:09".
  virtual std::string LongTimeText(std::chrono::local_seconds moment) = 0;

  // Folders, without a trailing separator.

  virtual std::string FolderOfLibrary() = 0;  ///< where the library itself lies
  virtual std::string SystemFolder() = 0;     ///< where the machine keeps its shared libraries
  virtual std::string TemporaryFolder() = 0;
};

}  // namespace vane
