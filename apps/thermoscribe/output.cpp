#include "apps/thermoscribe/output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "adapters/files/whole_file.h"
#include "adapters/terminal/terminal_output.h"
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
Json WithoutNegativeZeros(Json value) {
  if (value.is_number_float() && value.get<double>() == 0) return 0.0;
  if (value.is_structured()) {
    for (Json& member : value) member = WithoutNegativeZeros(std::move(member));
  }
  return value;
}

std::string CsvField(const Json& value) {
  if (value.is_null()) return {};
  return value.is_string() ? value.get<std::string>() : WithoutNegativeZeros(value).dump();
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
    if (row[column].is_null()) continue;
    if (!row[column].is_number()) return false;
    numeric = true;
  }
  return numeric;
}

}  // namespace

std::string JsonLine(std::string_view kind, const Json& members) {
  Json object = {{"version", kVersion}, {"kind", kind}};
  object.update(WithoutNegativeZeros(members));
  return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string WithUsersSeparator(std::string number) {
  const std::size_t point = number.find('.');
  if (point != number.npos) number.replace(point, 1, GetDecimalSeparator());
  return number;
}

std::string TextOf(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_number_integer()) return NumberText(value.get<std::int64_t>());
  if (value.is_number()) return WithUsersSeparator(NumberText(value.get<double>() + 0.0));
  return PrintableText(value.get<std::string>());
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

std::string TableText(const std::vector<Column>& columns, const std::vector<Row>& rows) {
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
    text += (text.empty() ? "" : "\n") + line.substr(0, line.find_last_not_of(' ') + 1);
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

void COutput::Record(std::string_view kind, const Json& members, std::string_view text) {
  switch (form_) {
    case EForm::TEXT:
      return WriteLine(text);
    case EForm::JSON:
      return WriteLine(JsonLine(kind, members));
    case EForm::CSV:
      std::vector<std::string> fields;
      for (const Json& member : members) fields.push_back(CsvField(member));
      Plain(std::exchange(head_, {}) + CsvLine(fields));
  }
}

void COutput::Table(std::string_view kind, const std::vector<Column>& columns,
                    const std::vector<Row>& rows, std::string_view ifempty) {
  if (IsJson()) {
    for (const Row& row : rows) {
      Json members = Json::object();
      for (std::size_t i = 0; i < columns.size(); ++i) members[columns[i].key] = row[i];
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
