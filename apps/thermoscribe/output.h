// What the program prints on standard output: aligned text for people, or one JSON object per line
// for programs. A command builds its answer once, out of JSON values; both forms come from that.
//
// The JSON form is a promise, see docs/command_line.md: members are added, never renamed.
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vane {

/// Keeps its members in the order in which they were given.
using Json = nlohmann::ordered_json;

/// A member of the objects of a table.
struct Column {
  const char* key;
  const char* title;  ///< for people
};

/// One value per column. Null is "not there".
using Row = std::vector<Json>;

class COutput {
 public:
  COutput(std::ostream& stream, bool json) : stream_(stream), json_(json) {}

  bool IsJson() const { return json_; }

  // Each of these has been handed to the system when it returns. When that fails they raise
  // `std::system_error`.

  /// One object per row, or a table with a line of titles. Without rows, `ifempty` for people and
  /// nothing for programs.
  void Table(std::string_view kind, const std::vector<Column>& columns,
             const std::vector<Row>& rows, std::string_view ifempty = {});

  /// One object; `text` is its form for people, without the last line end.
  void Record(std::string_view kind, const Json& members, std::string_view text);

 private:
  void WriteLine(std::string_view line);

  std::ostream& stream_;
  bool json_;
};

/// One object with `members` behind its version and kind, as one line without an end. An instrument
/// may send any byte; one that is no UTF-8 becomes U+FFFD.
std::string JsonLine(std::string_view kind, const Json& members);

/// `number` with the user's decimal separator in place of ".".
std::string WithUsersSeparator(std::string number);

/// A value for people: a number as the shortest text that reads back equal, with the user's decimal
/// separator; "yes", "no", and "-" for null. Control characters are replaced.
std::string TextOf(const Json& value);

/// "2026-11-24T15:07:09".
std::string MomentText(std::chrono::local_seconds moment);

/// `text` with blanks up to `columns` characters.
std::string Padded(const std::string& text, std::size_t columns);

}  // namespace vane
