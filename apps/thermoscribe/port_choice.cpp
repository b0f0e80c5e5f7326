#include "apps/thermoscribe/port_choice.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "apps/thermoscribe/command.h"

namespace vane {
namespace {

Json Known(const std::string& text) { return text.empty() ? Json() : Json(text); }

bool IsAdapter(const SerialPortRecord& port) { return !port.id.empty(); }

}  // namespace

void ShowPorts(COutput& output, const std::vector<SerialPortRecord>& ports) {
  std::vector<Row> rows;
  for (const SerialPortRecord& port : ports) {
    rows.push_back({port.path, Known(port.driver), Known(port.maker), Known(port.product),
                    Known(port.serialnumber), Known(port.id)});
  }
  output.Table("port",
               {{"path", "Port"},
                {"driver", "Driver"},
                {"maker", "Maker"},
                {"product", "Product"},
                {"serialnumber", "Serial number"},
                {"id", "USB id"}},
               rows, "This machine has no serial ports.");
}

std::string LoneAdapter(const std::vector<SerialPortRecord>& ports) {
  const auto count = std::ranges::count_if(ports, IsAdapter);
  if (count == 1) return std::ranges::find_if(ports, IsAdapter)->path;
  std::ostringstream list;
  COutput output(list, false);
  ShowPorts(output, ports);
  std::string text = list.str();
  text.pop_back();
  throw CUsageError(
      "No port is given, and this machine has " +
      (count == 0 ? std::string("no USB adapter") : std::to_string(count) + " USB adapters") +
      ". Choose one by --port:\n" + text);
}

}  // namespace vane
