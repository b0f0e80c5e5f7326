// The error record: what every exception of the library carries.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace vane {

class LibraryError : public std::exception {
 public:
  LibraryError(std::int32_t number, std::string source, std::string description,
               std::string helpfile = {}, std::int32_t helpcontext = 0);

  std::int32_t Number() const { return number_; }
  /// Label of the operation that raised it last.
  const std::string& Source() const { return source_; }
  /// Text for the user.
  const std::string& Description() const { return description_; }
  /// Help for this error; the file name may be empty.
  const std::string& HelpFile() const { return helpfile_; }
  std::int32_t HelpContext() const { return helpcontext_; }

  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string source_;
  std::string description_;
  std::string helpfile_;
  std::int32_t helpcontext_;
};

/// A code as it is written in hexadecimal, as the signed number that travels.
constexpr std::int32_t ErrorCode(std::uint32_t code) { return static_cast<std::int32_t>(code); }

/// The codes that the library raises itself.
inline constexpr std::int32_t ERR_INVALID_CHANNEL = ErrorCode(0x800403E9);
inline constexpr std::int32_t ERR_INVALID_MODULE = ErrorCode(0x800403EA);
inline constexpr std::int32_t ERR_MEASUREMENT = ErrorCode(0x800403EC);
inline constexpr std::int32_t ERR_BAD_READING = ErrorCode(0x800403ED);  ///< of a log

/// The platform's numbers, for failures that are not the library's own.
inline constexpr std::int32_t ERR_PLATFORM_CALL = 5;  ///< any failure without a number of its own
inline constexpr std::int32_t ERR_PLATFORM_OVERFLOW = 6;
inline constexpr std::int32_t ERR_PLATFORM_OUT_OF_RANGE = 9;
inline constexpr std::int32_t ERR_PLATFORM_DIVISION = 11;
inline constexpr std::int32_t ERR_PLATFORM_TYPE_MISMATCH = 13;

/// A failure of the platform by its number, with the platform's description and no source.
LibraryError PlatformError(std::int32_t number);

}  // namespace vane
