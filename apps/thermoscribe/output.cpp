#include "apps/thermoscribe/output.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <system_error>

#include "adapters/terminal/terminal_output.h"
#include "vane/support/number_text.h"

namespace vane {
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
  object.update(members);
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
  if (value.is_number()) return WithUsersSeparator(NumberText(value.get<double>()));
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

void COutput::Record(std::string_view kind, const Json& members, std::string_view text) {
  if (!json_) {
    WriteLine(text);
    return;
  }
  WriteLine(JsonLine(kind, members));
}

void COutput::Table(std::string_view kind, const std::vector<Column>& columns,
                    const std::vector<Row>& rows, std::string_view ifempty) {
  if (json_) {
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
  for (std::string& line : lines) {
    line.resize(line.find_last_not_of(' ') + 1);
    WriteLine(line);
  }
}

void COutput::WriteLine(std::string_view line) {
  errno = 0;
  stream_ << line << std::endl;
  if (!stream_) {
    throw std::system_error(errno, std::generic_category(), "The output can't be written");
  }
}

}  // namespace vane
