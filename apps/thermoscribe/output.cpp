#include "apps/thermoscribe/output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "adapters/files/whole_file.h"
#include "adapters/terminal/terminal_output.h"
#include "apps/thermoscribe/json_text.h"
#include "vane/support/number_text.h"

namespace vane::thermoscribe {
namespace {

constexpr int kVersion = 1;
constexpr std::string_view kGap = "  ";

// Characters of a UTF-8 text.
std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string Blanks(const std::string& text, std::size_t columns) {
  const std::size_t used = Columns(text);
  return std::string(columns > used ? columns - used : 0, ' ');
}

template <class Number>
std::string NumberText(Number number) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

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

std::string WithUsersSeparator(std::string number) {
  const std::size_t point = number.find('.');
  if (point != number.npos) number.replace(point, 1, GetDecimalSeparator());
  return number;
}

std::string TextOf(const Value& value) {
  if (value.IsNone()) return "-";
  if (const auto* const flag = value.If<bool>()) return *flag ? "yes" : "no";
  if (const auto* const whole = value.If<std::int64_t>()) return NumberText(*whole);
  if (value.IsNumber()) return WithUsersSeparator(NumberText(value.Number() + 0.0));
  return PrintableText(value.Text());
}

std::string TextOf(const Value& value, std::string_view unit) {
  return TextOf(value) + (unit.empty() ? "" : " ") + std::string(unit);
}

void AddLine(std::string& lines, const std::string& title, std::size_t columns,
             std::string_view text) {
  Append(lines, "\n", Padded(title, columns) + std::string(text));
}

std::string MomentText(std::chrono::local_seconds moment) {
  const auto midnight = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss time(moment - midnight);
  std::array<char, 48> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return text.data();
}

std::string Padded(const std::string& text, std::size_t columns) {
  return text + Blanks(text, columns);
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
      const std::string blanks = Blanks(cells[line], width);
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
