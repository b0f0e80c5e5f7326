#include "apps/thermoscribe-desktop/desktop_request.h"

#include <QCommandLineParser>
#include <algorithm>
#include <string>

#include "adapters/qt/qt_text.h"
#include "adapters/serial/baud_rates.h"
#include "simulator/options.h"

namespace vane::desktop {
namespace {

constexpr double kLeastTimeout = 0.01;  // s
constexpr double kMostTimeout = 3600;

// The same syntax as of thermoscribe, where the option may stand without a value.
QStringList WithValues(QStringList arguments) {
  for (QString& argument : arguments) {
    if (argument == "--simulate") argument += "=";
  }
  return arguments;
}

class CReader {
 public:
  explicit CReader(const QCommandLineParser& parser) : parser_(parser) {}

  bool Has(const char* name) const { return parser_.isSet(name); }
  std::string Text(const char* name) const { return FromQt(parser_.value(name)); }

  double Number(const char* name, double least, double most) const {
    bool isnumber = false;
    const double value = parser_.value(name).toDouble(&isnumber);
    if (!isnumber || !(value >= least && value <= most)) Refuse(name);
    return value;
  }

  EVaneBaudRate BaudRate() const {
    const std::string text = Text("baud");
    const auto row = std::ranges::find_if(
        BaudRates(), [&](const BaudRateRow& one) { return std::to_string(one.bits) == text; });
    if (row == BaudRates().end()) Refuse("baud");
    return row->rate;
  }

  std::string SimulatorOptions() const {
    std::string text = Text("simulate");
    try {
      if (simulator::ParseOptions(text).help.empty()) return text;
    } catch (const std::invalid_argument& error) {
      throw BadUsage("--simulate: " + std::string(error.what()));
    }
    throw BadUsage("For help on its options: thermoscribe-sim --help.");
  }

 private:
  [[noreturn]] void Refuse(const char* name) const {
    throw BadUsage("--" + std::string(name) + " can't be \"" + Text(name) + "\".");
  }

  const QCommandLineParser& parser_;
};

}  // namespace

Request ParseCommandLine(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Readings, settings and logs of a T312B thermometer readout with its M420 scanner.");
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addOptions({
      {"port", "The device of the readout's serial port.", "DEVICE"},
      {"simulate",
       "A simulated readout inside the program; --simulate=OPTIONS with those of "
       "thermoscribe-sim.",
       "OPTIONS"},
      {"baud", "The speed of the line in bit/s (9600).", "N"},
      {"timeout", "The longest wait for one answer in seconds (1).", "S"},
      {"screenshot", "Save a picture of the window behind the first readings, and end.", "FILE"},
      {"figures",
       "Measure for S seconds behind the first reading, print how long that took to come and what "
       "share of a processor measuring takes, and end.",
       "S"},
  });
  if (!parser.parse(WithValues(arguments))) throw BadUsage(FromQt(parser.errorText()));
  if (parser.isSet("help")) parser.showHelp();
  if (parser.isSet("version")) parser.showVersion();
  if (!parser.positionalArguments().isEmpty()) {
    throw BadUsage("There is no use for \"" + FromQt(parser.positionalArguments().first()) + "\".");
  }
  const CReader reader(parser);
  if (reader.Has("simulate") && reader.Has("port")) {
    throw BadUsage("--port and --simulate exclude each other.");
  }
  Connection connection;
  connection.simulated = reader.Has("simulate");
  connection.port = reader.Text("port");
  if (connection.simulated) connection.simulatoroptions = reader.SimulatorOptions();
  if (reader.Has("baud")) connection.baud = reader.BaudRate();
  if (reader.Has("timeout")) {
    connection.timeout = std::chrono::round<std::chrono::milliseconds>(
        std::chrono::duration<double>(reader.Number("timeout", kLeastTimeout, kMostTimeout)));
  }
  Request request;
  if (connection.simulated || reader.Has("port")) {
    if (!connection.simulated && connection.port.empty()) {
      throw BadUsage("--port can't be empty.");
    }
    request.connection = connection;
  } else if (reader.Has("baud") || reader.Has("timeout")) {
    throw BadUsage("--baud and --timeout are for --port or --simulate.");
  }
  request.picture = parser.value("screenshot");
  if (reader.Has("figures")) {
    request.figures = std::chrono::duration<double>(reader.Number("figures", 0.1, 1e6));
  }
  if (request.EndsByItself() && !request.connection) {
    throw BadUsage("--screenshot and --figures need --port or --simulate.");
  }
  return request;
}

}  // namespace vane::desktop
