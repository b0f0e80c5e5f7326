#include "recorder/export_rows.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <iterator>

namespace vane::recorder {
namespace {

template <class Number>
void AddNumber(std::string& text, Number number) {
  char digits[40];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

// As RFC 4180 has it.
void AddCsvField(std::string& rows, const std::string& text) {
  rows += ',';
  if (text.find_first_of(",\"\r\n") == text.npos) {
    rows += text;
    return;
  }
  rows += '"';
  for (const char c : text) rows += c == '"' ? std::string("\"\"") : std::string(1, c);
  rows += '"';
}

// A readout may send any byte in a reading that is still a number; bytes above 127 are ISO 8859-1
// by then and come as UTF-8.
void AddJsonText(std::string& rows, const char* name, const std::string& text) {
  rows += ",\"";
  rows += name;
  rows += "\":\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      rows += '\\';
      rows += c;
    } else if (static_cast<unsigned char>(c) < ' ') {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      rows += escape;
    } else {
      rows += c;
    }
  }
  rows += '"';
}

template <class Number>
void AddJsonNumber(std::string& rows, const char* name, Number number) {
  rows += ",\"";
  rows += name;
  rows += "\":";
  AddNumber(rows, number);
}

void AddPadded(std::string& rows, const std::string& text, std::size_t columns) {
  std::size_t width = 0;
  for (const char c : text) width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1U : 0U;
  rows += text;
  rows.append(columns - std::min(columns, width) + 2, ' ');
}

}  // namespace

std::string ExportColumns() {
  return "sequence,time,channel,name,text,reading,unit,resolution,sample\r\n";
}

void AddExportRow(std::string& rows, ERowForm form, const Reading& reading, const std::string& name,
                  bool islocal) {
  const std::string time = TimeText(reading.time.utc, islocal);
  switch (form) {
    case ERowForm::TEXT:
      rows += time;
      rows += reading.channel < 10 ? "   " : "  ";
      AddNumber(rows, reading.channel);
      rows += "  ";
      AddPadded(rows, name, 10);
      AddPadded(rows, reading.unit, 5);
      rows += reading.text;
      rows += '\n';
      return;
    case ERowForm::CSV:
      AddNumber(rows, reading.sequence);
      AddCsvField(rows, time);
      rows += ',';
      AddNumber(rows, reading.channel);
      AddCsvField(rows, name);
      AddCsvField(rows, reading.text);
      rows += ',';
      AddNumber(rows, reading.value);
      AddCsvField(rows, reading.unit);
      rows += ',';
      AddNumber(rows, reading.resolution);
      rows += ',';
      AddNumber(rows, reading.sample);
      rows += "\r\n";
      return;
    case ERowForm::JSON:
      rows += R"({"version":1,"kind":"recordedreading")";
      AddJsonNumber(rows, "sequence", reading.sequence);
      AddJsonText(rows, "time", time);
      AddJsonNumber(rows, "channel", reading.channel);
      AddJsonText(rows, "name", name);
      AddJsonText(rows, "text", reading.text);
      AddJsonNumber(rows, "reading", reading.value);
      AddJsonText(rows, "unit", reading.unit);
      AddJsonNumber(rows, "sample", reading.sample);
      rows += "}\n";
  }
}

}  // namespace vane::recorder
