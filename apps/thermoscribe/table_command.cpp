// thermoscribe table: a probe's table of temperature and resistance, as a certificate has it.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "apps/snapshots/probe_sensor.h"
#include "apps/snapshots/value_rule.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/html_page.h"
#include "apps/thermoscribe/probe_source.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

constexpr double kMostKelvins = 5000;
constexpr double kStepToTell = 1e-4;  // K
constexpr std::int64_t kMostRows = 1'000'000;

struct TableOptions {
  ProbeSource source;
  std::optional<double> from;
  std::optional<double> to;
  std::optional<double> step;
  std::string unit = "C";
  bool csv = false;
  std::string html;
};

struct TableRow {
  double temperature;
  double ohms;
  double slope;
  std::optional<double> uncertainty;  // K
  Value note;
};

// The steps are reckoned from the start, so that none of their roundings adds up.
std::int64_t RowsOf(const TableOptions& options) {
  const double rows = std::floor((*options.to - *options.from) / *options.step + 1e-9) + 1;
  return rows > static_cast<double>(kMostRows) ? kMostRows + 1 : static_cast<std::int64_t>(rows);
}

// To a step of the tenth power that a person has typed: 0.1 + 0.2 is 0.3.
double Rounded(double value) { return std::round(value * 1e9) / 1e9; }

class CTable {
 public:
  CTable(CHost& host, const TableOptions& options, const ProbeValues& values)
      : host_(host),
        options_(options),
        values_(values),
        record_(PhysicsRecordOf(values)),
        sensor_(record_),
        unit_(*FindTemperatureUnit(options.unit)),
        given_(options.source.Uncertainties(record_)) {}

  EExitCode Print() {
    for (std::int64_t i = 0; i < RowsOf(options_); ++i) {
      AddRow(Rounded(*options_.from + static_cast<double>(i) * *options_.step));
    }
    if (rows_.empty()) return EExitCode::FAILED;
    digits_ = DigitsOf(rows_[rows_.size() / 2].slope, kStepToTell);
    if (!options_.html.empty()) {
      host_.Output().File(options_.html, Html(), 0644);
    } else if (options_.csv) {
      PrintCsv();
    } else {
      PrintRows();
    }
    return isgood_ ? EExitCode::DONE : EExitCode::FAILED;
  }

 private:
  void AddRow(double temperature) {
    const double kelvin = ToKelvin(temperature, unit_);
    try {
      const physics::Marked ohms = sensor_.Resistance(kelvin);
      TableRow row{temperature, ohms.value, sensor_.Slope(kelvin), {}, NoteOf(ohms.marks)};
      if (HasUncertainty()) {
        row.uncertainty = sensor_.UncertaintyAt(ohms.value, given_).kelvins;
      }
      rows_.push_back(std::move(row));
    } catch (const std::domain_error& error) {
      host_.Say(TextOf(temperature, UnitText(unit_)) + ": " + error.what());
      isgood_ = false;
    }
  }

  // Of a slope by this unit; of a temperature difference in it.
  double PerUnit(double perkelvin) const {
    return unit_ == ETemperatureUnit::FAHRENHEIT ? perkelvin / 1.8 : perkelvin;
  }
  double InUnit(double kelvins) const {
    return unit_ == ETemperatureUnit::FAHRENHEIT ? kelvins * 1.8 : kelvins;
  }

  bool HasUncertainty() const { return !options_.source.uncertainty.empty(); }

  std::vector<TableColumn> Columns() const {
    std::vector<TableColumn> columns{
        {"temperature", "Temperature"}, {"ohms", "Ohm"}, {"slope", "dR/dT"}};
    if (HasUncertainty() || host_.Output().IsJson()) {
      columns.push_back({"uncertainty", "Uncertainty"});
    }
    columns.push_back({"note", "Note"});
    return columns;
  }

  void PrintRows() {
    std::vector<Row> rows;
    const bool isjson = host_.Output().IsJson();
    for (const TableRow& one : rows_) {
      Row row;
      if (isjson) {
        row = {one.temperature, one.ohms, PerUnit(one.slope)};
        row.push_back(one.uncertainty ? Value(InUnit(*one.uncertainty)) : Value());
      } else {
        row = {TextOf(one.temperature, UnitText(unit_)), Fixed(one.ohms, digits_),
               Fixed(PerUnit(one.slope), digits_ + 2)};
        if (one.uncertainty) row.emplace_back(Fixed(InUnit(*one.uncertainty), 6));
      }
      row.push_back(one.note.IsNone() && !isjson ? Value("") : one.note);
      rows.push_back(std::move(row));
    }
    host_.Output().Table("tablerow", Columns(), rows);
  }

  void PrintCsv() {
    std::vector<std::string> keys;
    for (const TableColumn& column : Columns()) keys.emplace_back(column.key);
    std::string text = CsvLine(keys);
    for (const TableRow& one : rows_) {
      std::vector<std::string> fields{Number(one.temperature), Number(one.ohms),
                                      Number(PerUnit(one.slope))};
      if (one.uncertainty) fields.push_back(Number(InUnit(*one.uncertainty)));
      fields.push_back(one.note.IsNone() ? std::string() : one.note.Text());
      text += CsvLine(fields);
    }
    host_.Output().Plain(text);
  }
  // With a point, whatever the user's separator is.
  static std::string Number(double value) {
    char text[40];
    return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
  }

  std::string Html() const {
    std::string serial;
    std::string facts;
    const auto fact = [&](const std::string& title, const std::string& text) {
      facts += "<dt>" + Escaped(title) + "</dt><dd>" + Escaped(text) + "</dd>\n";
    };
    for (const auto& [key, value] : values_) {
      if (value.IsNone()) continue;
      if (key.row != nullptr && key.row->name == "serial") serial = TextOf(value);
      fact(key.row != nullptr ? std::string(key.row->title) : key.coefficient, TextOf(value));
    }
    std::string page = PageHead("Resistance of the thermometer " + serial);
    page += "<h1>Resistance of the thermometer " + Escaped(serial) + "</h1>\n<dl>\n" + facts +
            "</dl>\n<table>\n<thead><tr><th>Temperature / " + UnitText(unit_) +
            "</th><th>Resistance / \u03A9</th><th>dR/dT / \u03A9 per " + UnitText(unit_) + "</th>";
    if (HasUncertainty()) page += "<th>Standard uncertainty / " + UnitText(unit_) + "</th>";
    page += "</tr></thead>\n<tbody>\n";
    std::vector<std::string> notes;
    for (const TableRow& one : rows_) {
      page += "<tr><td>" + TextOf(one.temperature) + Mark(notes, one.note) + "</td><td>" +
              Fixed(one.ohms, digits_) + "</td><td>" + Fixed(PerUnit(one.slope), digits_ + 2) +
              "</td>";
      if (one.uncertainty) page += "<td>" + Fixed(InUnit(*one.uncertainty), 6) + "</td>";
      page += "</tr>\n";
    }
    page += "</tbody>\n</table>\n<footer>\n";
    for (std::size_t i = 0; i < notes.size(); ++i) {
      page += "<p><sup>" + std::to_string(i + 1) + "</sup> " + Escaped(notes[i]) + "</p>\n";
    }
    return page +
           "<p>Computed from the coefficients above by thermoscribe " THERMOSCRIBE_VERSION
           ".</p>\n</footer>\n" +
           std::string(kPageEnd);
  }
  // The number of a note, which is added where it is new.
  static std::string Mark(std::vector<std::string>& notes, const Value& note) {
    if (note.IsNone()) return {};
    auto place = std::ranges::find(notes, note.Text());
    if (place == notes.end()) place = notes.insert(notes.end(), note.Text());
    return "<sup>" + std::to_string(place - notes.begin() + 1) + "</sup>";
  }

  CHost& host_;
  const TableOptions& options_;
  const ProbeValues& values_;
  const physics::Record record_;
  const physics::CSensor sensor_;
  const ETemperatureUnit unit_;
  const physics::Uncertainties given_;
  std::vector<TableRow> rows_;
  int digits_ = 4;
  bool isgood_ = true;
};

EExitCode RunTable(CHost& host, const TableOptions& options) {
  ProbeValues values;
  if (const EExitCode code = options.source.Read(host, values); code != EExitCode::DONE) {
    return code;
  }
  try {
    return CTable(host, options, values).Print();
  } catch (const CUsageError&) {
    throw;
  } catch (const std::invalid_argument& error) {
    host.Say(error.what());
    return EExitCode::FAILED;
  }
}

void Check(const TableOptions& options) {
  options.source.Check();
  if (*options.to < *options.from) throw CUsageError("--to is below --from.");
  if (RowsOf(options) > kMostRows) {
    throw CUsageError("That is more than " + std::to_string(kMostRows) + " rows.");
  }
}

}  // namespace

Command TableCommand() {
  const auto options = std::make_shared<TableOptions>();
  std::vector<Option> all = options->source.Options();
  const auto add = [&](const char* name, std::optional<double>& target, double least,
                       const char* brief) {
    Option option = RealOption(name, "T", target, least, kMostKelvins, brief);
    option.isrequired = true;
    all.push_back(std::move(option));
  };
  add("--from", options->from, -kMostKelvins, "temperature of the first row");
  add("--to", options->to, -kMostKelvins, "that none goes beyond");
  add("--step", options->step, 1e-6, "from one row to the next");
  all.push_back(
      WordOption("--unit", "UNIT", {"C", "F", "K"}, options->unit, "of the temperatures (C)"));
  Option csv = Flag("--csv", options->csv, "print comma-separated values with a line of names");
  csv.excludes = {"--json", "--html"};
  all.push_back(std::move(csv));
  Option html = PathOption("--html", "FILE", options->html,
                           "write a page that prints well, with the probe's record");
  html.excludes = {"--json"};
  all.push_back(std::move(html));
  return {
      .name = "table",
      .brief = "Print a probe's table of temperature and resistance",
      .footer =
          R"(Computes each row on the host by the probe's record, with as many digits as tell 0.1 mK;
--csv and --json have all digits. Rows outside the range of the record are marked.

Examples:
  thermoscribe table --probe 3 --from -50 --to 150 --step 10 --port /dev/ttyUSB0
  thermoscribe table --record bath.json --probe 3 --from 0 --to 30 --step 0.5 --html t.html
  thermoscribe table --record bath.json --probe 3 --from 273 --to 300 --step 1 --unit K --csv)",
      .options = std::move(all),
      .body = [options](CHost& host) { return RunTable(host, *options); },
      .check = [options] { Check(*options); }};
}

}  // namespace vane::thermoscribe
