// Which serial port is the readout's when nobody has said so.
#pragma once

#include <string>
#include <vector>

#include "adapters/serial/serial_ports.h"
#include "apps/thermoscribe/output.h"

namespace vane::thermoscribe {

/// One object per port, or a table.
void ShowPorts(COutput& output, const std::vector<SerialPortRecord>& ports);

/// The only USB adapter among `ports`. A port of the machine's own is never taken: what hangs there
/// is not what somebody has just plugged in. Raises `CUsageError`, with a list of `ports`, where
/// there is none or a choice.
std::string LoneAdapter(const std::vector<SerialPortRecord>& ports);

}  // namespace vane::thermoscribe
