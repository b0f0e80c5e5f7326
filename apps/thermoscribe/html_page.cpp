#include "apps/thermoscribe/html_page.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kStyle =
    R"(body { font: 10pt/1.35 sans-serif; color: #111; background: #fff; max-width: 46em; margin: 2em auto; padding: 0 1em; }
h1 { font-size: 15pt; margin: 0 0 .2em; }
dl { display: grid; grid-template-columns: max-content auto; gap: .15em 1.2em; margin: 1em 0; }
dt { color: #444; }
dd { margin: 0; font-variant-numeric: tabular-nums; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { text-align: right; padding: .18em .9em; border-bottom: 1px solid #ccc; }
th { border-bottom: 2px solid #333; }
td.note { text-align: left; font-size: 8.5pt; }
tr:nth-child(10n) td { border-bottom-color: #777; }
footer { color: #444; font-size: 8.5pt; margin-top: 1em; }
@media print {
  @page { margin: 18mm; }
  body { margin: 0; max-width: none; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
}
)";

}  // namespace

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string PageHead(const std::string& title) {
  return R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>)" +
         Escaped(title) + "</title>\n<style>\n" + kStyle + "</style>\n</head>\n<body>\n";
}

}  // namespace vane::thermoscribe
