#include "apps/thermoscribe/output.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "adapters/files/whole_file.h"
#include "apps/snapshots/json_text.h"

namespace vane::thermoscribe {
namespace {

constexpr int kVersion = 1;
constexpr std::string_view kGap = "  ";

// A 0 has no sign: nobody measures one, and it would stand in records as if it meant something.
void DropNegativeZeros(Value& value) {
  if (auto* const number = std::get_if<double>(&value.held)) *number += 0.0;
  if (auto* const list = std::get_if<List>(&value.held)) {
    std::ranges::for_each(*list, DropNegativeZeros);
  }
  if (auto* const members = std::get_if<Members>(&value.held)) {
    for (Member& member : *members) DropNegativeZeros(member.value);
  }
}

std::string CsvField(Value value) {
  if (value.IsNone()) return {};
  if (value.Is<std::string>()) return value.Text();
  DropNegativeZeros(value);
  return JsonText(value);
}

std::string CsvQuoted(const std::string& field) {
  if (field.find_first_of("\",\r\n") == field.npos) return field;
  std::string quoted = "\"";
  for (const char c : field) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

// Numbers stand at the right of their column; a place without one doesn't count.
bool IsNumeric(const std::vector<Row>& rows, std::size_t column) {
  bool numeric = false;
  for (const Row& row : rows) {
    if (row[column].IsNone()) continue;
    if (!row[column].IsNumber()) return false;
    numeric = true;
  }
  return numeric;
}

}  // namespace

std::string JsonLine(std::string_view kind, const Members& members) {
  Members object = {{"version", kVersion}, {"kind", kind}};
  object.insert(object.end(), members.begin(), members.end());
  Value value(std::move(object));
  DropNegativeZeros(value);
  return JsonText(value);
}

std::string CsvLine(const std::vector<std::string>& fields) {
  std::string line;
  const char* separator = "";
  for (const std::string& field : fields) {
    line += std::exchange(separator, ",") + CsvQuoted(field);
  }
  return line + "\r\n";
}

std::string TableText(const std::vector<TableColumn>& columns, const std::vector<Row>& rows) {
  std::vector<std::string> lines(rows.size() + 1);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::vector<std::string> cells = {columns[i].title};
    for (const Row& row : rows) cells.push_back(TextOf(row[i]));
    const bool isnumeric = IsNumeric(rows, i);
    const std::size_t width = Columns(*std::ranges::max_element(cells, {}, Columns));
    for (std::size_t line = 0; line < lines.size(); ++line) {
      const std::string blanks(width - Columns(cells[line]), ' ');
      if (i > 0) lines[line] += kGap;
      lines[line] += isnumeric ? blanks + cells[line] : cells[line] + blanks;
    }
  }
  std::string text;
  for (const std::string& line : lines) {
    Append(text, "\n", line.substr(0, line.find_last_not_of(' ') + 1));
  }
  return text;
}

COutput::COutput(bool json, Patience patience, std::function<void()> onreadergone)
    : form_(json ? EForm::JSON : EForm::TEXT),
      patience_(std::move(patience)),
      onreadergone_(std::move(onreadergone)),
      lines_(std::make_unique<CLineOutput>(patience_)) {}

void COutput::AppendTo(const std::filesystem::path& path) {
  lines_ = std::make_unique<CLineOutput>(path, patience_);
}

bool COutput::StartCsv(const std::vector<std::string>& keys) {
  form_ = EForm::CSV;
  head_ = CsvLine(keys);
  if (!lines_->FirstLine()) return true;
  const std::string found = *lines_->FirstLine() + "\r\n";
  return found == std::exchange(head_, {});
}

void COutput::Record(std::string_view kind, const Members& members, std::string_view text) {
  switch (form_) {
    case EForm::TEXT:
      return WriteLine(text);
    case EForm::JSON:
      return WriteLine(JsonLine(kind, members));
    case EForm::CSV:
      std::vector<std::string> fields;
      for (const Member& member : members) fields.push_back(CsvField(member.value));
      Plain(std::exchange(head_, {}) + CsvLine(fields));
  }
}

void COutput::Table(std::string_view kind, const std::vector<TableColumn>& columns,
                    const std::vector<Row>& rows, std::string_view ifempty) {
  if (IsJson()) {
    for (const Row& row : rows) {
      Members members;
      for (std::size_t i = 0; i < columns.size(); ++i) members.push_back({columns[i].key, row[i]});
      Record(kind, members, {});
    }
    return;
  }
  if (rows.empty()) {
    WriteLine(ifempty);
    return;
  }
  WriteLine(TableText(columns, rows));
}

void COutput::WriteLine(std::string_view line) { Plain(std::string(line) + "\n"); }

void COutput::Plain(std::string_view text) {
  try {
    lines_->Write(text);
  } catch (...) {
    if (IsReaderGone() && onreadergone_) onreadergone_();
    throw;
  }
}

void COutput::File(const std::string& path, std::string_view text, mode_t mode) {
  std::error_code none;
  // A regular file is replaced, also where the shell has opened it for the output.
  if (IsStandardOutput(path) && !std::filesystem::is_regular_file(path, none)) return Plain(text);
  WriteWholeFile(path, text, mode, patience_);
}

}  // namespace vane::thermoscribe
