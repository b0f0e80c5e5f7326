// The trace of a serial line: every line that went over it, readable, with time and direction.
#pragma once

#include <cstdint>
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

/// Appends to a file, a terminal or a pipe, "-" being standard output, one line per record, handed
/// to the system when `Record` returns: "2026-03-01 09:30:00.125Z > #1A2B ID?*5D0E". The time is
/// UTC; "<" is an answer, "-" a remark.
///
/// A record that can't be written disturbs no exchange; `Trouble` tells of it. A pipe whose reader
/// is busy is waited for, but no longer than a second and only until the first trouble. A reader
/// that goes away raises no signal.
class CFileTrace final : public CLineTrace {
 public:
  /// Raises ERR_LINE_TRACE_FILE when the file can't be opened. A pipe that nobody reads can't.
  explicit CFileTrace(const std::string& path);
  ~CFileTrace() override;
  CFileTrace(const CFileTrace&) = delete;
  CFileTrace& operator=(const CFileTrace&) = delete;

  void Record(ETraceMark mark, std::string_view text) override;

  /// Why the first record that was lost could not be written, as a sentence for the user; empty
  /// while none was lost. To be asked at the end: a trace with holes must not pass for a whole one.
  const std::string& Trouble() const { return trouble_; }

 private:
  bool IsReady(int error) const;

  const std::string path_;
  int file_;
  bool isregular_ = false;  // no write raises a signal for want of a reader
  std::string record_;      // keeps its room from record to record
  bool isbroken_ = false;   // a record ended before its line did
  std::string trouble_;
};

}  // namespace vane
