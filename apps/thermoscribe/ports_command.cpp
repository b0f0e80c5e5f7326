// thermoscribe ports: what serial ports there are.

#include "adapters/serial/serial_ports.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/port_choice.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

EExitCode RunPorts(CHost& host) {
  ShowPorts(host.Output(), ListSerialPorts());
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

}  // namespace vane::thermoscribe
