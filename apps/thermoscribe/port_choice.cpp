#include "apps/thermoscribe/port_choice.h"

#include <algorithm>
#include <cstddef>

#include "apps/thermoscribe/command.h"

namespace vane::thermoscribe {
namespace {

bool IsAdapter(const SerialPortRecord& port) { return !port.id.empty(); }

const std::vector<TableColumn> kColumns = {{"path", "Port"},
                                           {"driver", "Driver"},
                                           {"maker", "Maker"},
                                           {"product", "Product"},
                                           {"serialnumber", "Serial number"},
                                           {"id", "USB id"}};
constexpr const char* kNoPorts = "This machine has no serial ports.";

std::vector<Row> Rows(const std::vector<SerialPortRecord>& ports) {
  std::vector<Row> rows;
  for (const SerialPortRecord& port : ports) {
    rows.push_back({port.path, Known(port.driver), Known(port.maker), Known(port.product),
                    Known(port.serialnumber), Known(port.id)});
  }
  return rows;
}

}  // namespace

void ShowPorts(COutput& output, const std::vector<SerialPortRecord>& ports) {
  output.Table("port", kColumns, Rows(ports), kNoPorts);
}

std::string LoneAdapter(const std::vector<SerialPortRecord>& ports) {
  const auto count = std::ranges::count_if(ports, IsAdapter);
  if (count == 1) return std::ranges::find_if(ports, IsAdapter)->path;
  const std::string text = ports.empty() ? kNoPorts : TableText(kColumns, Rows(ports));
  throw CUsageError(
      "No port is given, and this machine has " +
      (count == 0 ? std::string("no USB adapter") : std::to_string(count) + " USB adapters") +
      ". Choose one by --port:\n" + text);
}

}  // namespace vane::thermoscribe
