// The trace of a serial line: every line that went over it, readable, with time and direction.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace vane {

enum class ETraceMark : std::int32_t { SENT, RECEIVED, NOTE };

/// Takes what the line reports. Implemented by a host that wants to show or keep the traffic; it is
/// called in the middle of an exchange, on the thread of the communications object, and must
/// neither raise nor start an exchange.
class CLineTrace {
 public:
  virtual ~CLineTrace() = default;

  /// `text` is a line without its end, as it went over the wire, so that it may hold any byte; for
  /// `NOTE` it is a remark such as "no answer". What must stay secret is already left out.
  virtual void Record(ETraceMark mark, std::string_view text) = 0;
};

/// `text` with "\" doubled and every byte outside printable ASCII as "\x" and two digits.
std::string EscapedText(std::string_view text);

/// Appends to a file, one line per record, complete on the disk when `Record` returns:
/// "2026-03-01 09:30:00.125Z > #1A2B ID?*5D0E". The time is UTC; "<" is an answer, "-" a remark. A
/// full disk loses records and disturbs nothing else.
class CFileTrace final : public CLineTrace {
 public:
  /// Raises ERR_LINE_TRACE_FILE when the file can't be opened.
  explicit CFileTrace(const std::string& path);

  void Record(ETraceMark mark, std::string_view text) override;

 private:
  std::ofstream file_;
};

}  // namespace vane
