// thermoscribe ports: what serial ports there are.

#include <string>
#include <vector>

#include "adapters/serial/serial_ports.h"
#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"

namespace vane {
namespace {

Json Known(const std::string& text) { return text.empty() ? Json() : Json(text); }

EExitCode RunPorts(CHost& host) {
  std::vector<Row> rows;
  for (const SerialPortRecord& port : ListSerialPorts()) {
    rows.push_back({port.path, Known(port.driver), Known(port.maker), Known(port.product),
                    Known(port.serialnumber), Known(port.id)});
  }
  host.Output().Table("port",
                      {{"path", "Port"},
                       {"driver", "Driver"},
                       {"maker", "Maker"},
                       {"product", "Product"},
                       {"serialnumber", "Serial number"},
                       {"id", "USB id"}},
                      rows, "This machine has no serial ports.");
  return EExitCode::DONE;
}

}  // namespace

Command PortsCommand() {
  return {
      .name = "ports",
      .brief = "List the serial ports of this machine",
      .footer =
          R"(Lists the serial ports, in the order in which they are counted, with what the system
knows of them: the driver, and for a USB adapter its maker, product, serial number and
id. Needs no readout. Without ports it says so and exits with 0.

Example:
  thermoscribe ports)",
      .body = RunPorts};
}

}  // namespace vane
