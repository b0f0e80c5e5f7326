// thermoscribe convert: resistance, ratio and temperature into each other by a probe's record.

#include <unistd.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "apps/snapshots/probe_sensor.h"
#include "apps/snapshots/value_rule.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/probe_source.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

// What a value is given in.
enum class EGiven : std::int32_t { TEMPERATURE, OHMS, RATIO, W };

struct Given {
  EGiven kind;
  ETemperatureUnit unit = ETemperatureUnit::CELSIUS;
  std::string text;
};

Given GivenIn(const std::string& text) {
  const std::string folded = Folded(text);
  if (folded == "ohm" || folded == "ohms" || folded == "\u03A9") return {EGiven::OHMS, {}, "Ohm"};
  if (folded == "ratio") return {EGiven::RATIO, {}, "Ratio"};
  if (folded == "w") return {EGiven::W, {}, "W"};
  if (const auto unit = FindTemperatureUnit(text)) {
    return {EGiven::TEMPERATURE, *unit, UnitText(*unit)};
  }
  throw CUsageError("\"" + text + "\" is no unit. It is Ohm, Ratio, W, C, F or K.");
}

struct ConvertOptions {
  ProbeSource source;
  std::optional<double> reference;  // Ohm
  std::vector<std::string> values;  // a value and its unit, and so on
};

class CConverter {
 public:
  CConverter(CHost& host, const ConvertOptions& options, const physics::Record& record)
      : host_(host),
        reference_(options.reference),
        sensor_(record),
        base_(physics::BaseOfW(record)),
        given_(options.source.Uncertainties(record)),
        hasuncertainty_(!options.source.uncertainty.empty()) {}

  /// False for a value that can't be converted, which has been told.
  bool Convert(double value, const Given& given) {
    const std::string text = TextOf(value) + " " + given.text;
    try {
      Print(value, given, text);
      return true;
    } catch (const std::domain_error& error) {
      host_.Say(text + ": " + error.what());
      return false;
    }
  }

 private:
  void Print(double value, const Given& given, const std::string& text) {
    physics::Marked ohms{value};
    physics::Marked kelvin{0};
    if (given.kind == EGiven::TEMPERATURE) {
      kelvin = {ToKelvin(value, given.unit)};
      ohms = sensor_.Resistance(kelvin.value);
      kelvin.marks = ohms.marks;
    } else {
      if (given.kind == EGiven::RATIO) ohms.value = value * *reference_;
      if (given.kind == EGiven::W) {
        if (base_ == 0) throw std::domain_error("The conversion has no ratio W.");
        ohms.value = value * base_;
      }
      kelvin = sensor_.Temperature(ohms.value);
    }
    const double slope = sensor_.Slope(kelvin.value);
    Members members = {{"given", value},
                       {"unit", given.text},
                       {"ohms", ohms.value},
                       {"ratio", reference_ ? Value(ohms.value / *reference_) : Value()},
                       {"w", base_ == 0 ? Value() : Value(ohms.value / base_)},
                       {"kelvin", kelvin.value},
                       {"celsius", FromKelvin(kelvin.value, ETemperatureUnit::CELSIUS)},
                       {"fahrenheit", FromKelvin(kelvin.value, ETemperatureUnit::FAHRENHEIT)},
                       {"slope", slope}};
    std::string lines;
    constexpr std::size_t kColumns = 14;
    const auto add = [&](const char* title, const std::string& number, const std::string& unit) {
      AddLine(lines, title, kColumns, number + unit);
    };
    // To a microkelvin; all digits there are for programs.
    constexpr int kTemperatureDigits = 6;
    constexpr double kStepToTell = 1e-6;
    AddLine(lines, text, 0, "");
    add("  Resistance", Fixed(ohms.value, DigitsOf(slope, kStepToTell)), " Ohm");
    if (reference_) {
      add("  Ratio", Fixed(ohms.value / *reference_, DigitsOf(slope / *reference_, kStepToTell)),
          "");
    }
    if (base_ != 0) {
      add("  W", Fixed(ohms.value / base_, DigitsOf(slope / base_, kStepToTell)), "");
    }
    for (const auto unit :
         {ETemperatureUnit::CELSIUS, ETemperatureUnit::KELVIN, ETemperatureUnit::FAHRENHEIT}) {
      add(unit == ETemperatureUnit::CELSIUS ? "  Temperature" : "",
          Fixed(FromKelvin(kelvin.value, unit), kTemperatureDigits), " " + UnitText(unit));
    }
    add("  dR/dT", Significant(slope, 7), " Ohm/K");
    Value uncertainty;
    Value contributions;
    if (hasuncertainty_) {
      const physics::Budget budget = sensor_.UncertaintyAt(ohms.value, given_);
      uncertainty = budget.kelvins;
      add("  Uncertainty", Significant(budget.kelvins, 3), " K");
      List parts;
      for (const auto& [name, sensitivity, kelvins] : budget.contributions) {
        if (kelvins == 0) continue;
        parts.emplace_back(
            Members{{"name", name}, {"sensitivity", sensitivity}, {"kelvins", kelvins}});
        add("", Significant(kelvins, 3) + " K of " + name, "");
      }
      contributions = std::move(parts);
    }
    members.push_back({"uncertainty", std::move(uncertainty)});
    members.push_back({"contributions", std::move(contributions)});
    const Value note = NoteOf(kelvin.marks);
    members.push_back({"note", note});
    if (!note.IsNone()) add("  Note", note.Text(), "");
    host_.Output().Record("conversion", members, lines);
  }

  CHost& host_;
  const std::optional<double> reference_;
  const physics::CSensor sensor_;
  const double base_;
  const physics::Uncertainties given_;
  const bool hasuncertainty_;
};

// The lines of standard input, as they come.
class CLines {
 public:
  explicit CLines(Patience patience)
      : input_(STDIN_FILENO, "standard input", std::move(patience)) {}

  /// False at the end, and when the user has had enough.
  bool Next(std::string& line) {
    std::size_t end = 0;
    while ((end = waiting_.find('\n')) == waiting_.npos) {
      char buffer[4096];
      std::size_t count = 0;
      if (input_.Read(buffer, sizeof buffer, count) != EArrival::BYTES) {
        line = std::exchange(waiting_, {});
        return !line.empty();
      }
      waiting_.append(buffer, count);
    }
    line = waiting_.substr(0, end);
    waiting_.erase(0, end + 1);
    return true;
  }

 private:
  CPatientInput input_;
  std::string waiting_;
};

// One number in a line; false when one of them could not be converted.
bool ConvertColumn(CHost& host, CConverter& converter, const Given& given) {
  bool isgood = true;
  CLines lines(host.UsersPatience());
  std::string line;
  for (std::int64_t number = 1; lines.Next(line); ++number) {
    line.erase(0, line.find_first_not_of(" \t\r"));
    line.erase(line.find_last_not_of(" \t\r") + 1);
    if (line.empty()) continue;
    const std::optional<double> value = NumberOf(line);
    if (value) {
      isgood = converter.Convert(*value, given) && isgood;
    } else {
      host.Say("Line " + std::to_string(number) + ": \"" + line + "\" is no number.");
      isgood = false;
    }
  }
  return isgood;
}

EExitCode RunConvert(CHost& host, const ConvertOptions& options) {
  ProbeValues values;
  if (const EExitCode code = options.source.Read(host, values); code != EExitCode::DONE) {
    return code;
  }
  try {
    const physics::Record record = PhysicsRecordOf(values);
    CConverter converter(host, options, record);
    bool isgood = true;
    for (std::size_t i = 0; i + 1 < options.values.size(); i += 2) {
      const Given given = GivenIn(options.values[i + 1]);
      isgood =
          (options.values[i] == "-" ? ConvertColumn(host, converter, given)
                                    : converter.Convert(*NumberOf(options.values[i]), given)) &&
          isgood;
    }
    if (host.IsInterrupted()) return EExitCode::ABORTED;
    return isgood ? EExitCode::DONE : EExitCode::FAILED;
  } catch (const CUsageError&) {
    throw;
  } catch (const std::invalid_argument& error) {
    host.Say(error.what());
    return EExitCode::FAILED;
  }
}

void Check(const ConvertOptions& options) {
  options.source.Check();
  if (options.values.size() % 2 != 0) {
    throw CUsageError("Each value has a unit behind it: Ohm, Ratio, W, C, F or K.");
  }
  for (std::size_t i = 0; i < options.values.size(); i += 2) {
    const std::string& text = options.values[i];
    if (text != "-" && !NumberOf(text)) throw CUsageError("\"" + text + "\" is no number.");
    if (GivenIn(options.values[i + 1]).kind == EGiven::RATIO && !options.reference) {
      throw CUsageError("A ratio needs the reference resistor: --reference has its ohms.");
    }
  }
}

}  // namespace

Command ConvertCommand() {
  const auto options = std::make_shared<ConvertOptions>();
  std::vector<Option> all = options->source.Options();
  all.push_back(RealOption("--reference", "OHM", options->reference, 1e-3, 1e6,
                           "the reference resistor, for ratios to it"));
  Option values = ManyTexts("values", "VALUE UNIT...", options->values,
                            "what is to be converted, each with its unit: Ohm,\n"
                            "Ratio, W, C, F or K; \"-\" for VALUE: all lines of\n"
                            "standard input");
  values.isrequired = true;
  all.push_back(std::move(values));
  return {
      .name = "convert",
      .brief = "Convert resistance and temperature by a probe's record",
      .footer =
          R"(Computes on the host, with the formulas of the scale and the coefficients of the record,
what the readout should show. W is the ratio of a resistance to RTPW, or to R0; Ratio that
to the reference resistor. A value outside the range of the record is marked as
extrapolated; one that the formula can't give is an error (1). Negative numbers stand
behind "--".

Examples:
  thermoscribe convert --probe 3 25.4 Ohm 100 C --port /dev/ttyUSB0
  thermoscribe convert --record bath.json --probe 3 --json -- -38.8344 C
  thermoscribe convert --record bath.json --probe 3 28.5 Ohm \
      --uncertainty resistance=1e-5,reference=1e-6,RTPW=2e-5
  cut -d, -f4 ohms.csv | thermoscribe convert --record bath.json --probe 3 --json - Ohm)",
      .options = std::move(all),
      .body = [options](CHost& host) { return RunConvert(host, *options); },
      .check = [options] { Check(*options); }};
}

}  // namespace vane::thermoscribe
