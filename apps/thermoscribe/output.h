// What the program prints on standard output: aligned text for people, or one JSON object per line
// for programs. A command builds its answer once, out of values; all forms come from that.
//
// The JSON form is a promise, see docs/command_line.md: members are added, never renamed.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "apps/snapshots/value.h"
#include "apps/snapshots/value_text.h"
#include "apps/thermoscribe/line_output.h"

namespace vane::thermoscribe {

/// A member of the objects of a table.
struct TableColumn {
  const char* key;
  const char* title;  ///< for people
};

/// One value per column.
using Row = std::vector<Value>;

class COutput {
 public:
  /// `onreadergone` runs when nobody reads the output any more, before that is raised.
  COutput(bool json, Patience patience, std::function<void()> onreadergone);

  bool IsJson() const { return form_ == EForm::JSON; }

  /// From now on everything goes to the end of the file at `path`, see `CLineOutput`.
  void AppendTo(const std::filesystem::path& path);

  /// From now on records are comma-separated lines of their members, which are `keys`, behind a
  /// line with these names where the output is empty. False when the file that is to be appended to
  /// begins with another line.
  bool StartCsv(const std::vector<std::string>& keys);

  /// True once a write has failed because nobody reads any more.
  bool IsReaderGone() const { return lines_->IsReaderGone(); }

  // Each of these has been handed to the system when it returns. When that fails they raise
  // `std::runtime_error`.

  /// One object per row, or a table with a line of titles. Without rows, `ifempty` for people and
  /// nothing for programs.
  void Table(std::string_view kind, const std::vector<TableColumn>& columns,
             const std::vector<Row>& rows, std::string_view ifempty = {});

  /// One object; `text` is its form for people, without the last line end.
  void Record(std::string_view kind, const Members& members, std::string_view text);

  /// `text` as it stands.
  void Plain(std::string_view text);

  /// Writes or replaces the whole file `path`, which may be standard output by any name.
  void File(const std::string& path, std::string_view text, mode_t mode);

 private:
  enum class EForm { TEXT, JSON, CSV };

  void WriteLine(std::string_view line);

  EForm form_;
  const Patience patience_;
  const std::function<void()> onreadergone_;
  std::unique_ptr<CLineOutput> lines_;
  std::string head_;  // of comma-separated lines, until it is written
};

/// `fields` as a line of comma-separated values with its end, as RFC 4180 has it.
std::string CsvLine(const std::vector<std::string>& fields);

/// Aligned columns under a line of titles, without the last line end.
std::string TableText(const std::vector<TableColumn>& columns, const std::vector<Row>& rows);

/// One object with `members` behind its version and kind, as one line without an end. An instrument
/// may send any byte; one that is no UTF-8 becomes U+FFFD.
std::string JsonLine(std::string_view kind, const Members& members);

}  // namespace vane::thermoscribe
