// Finds the serial ports of the machine.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vane {

/// One serial port. What isn't known is empty; all from `maker` on is told by USB adapters only.
struct SerialPortRecord {
  std::string path;    ///< to open it by
  std::string driver;  ///< of the operating system
  std::string maker;
  std::string product;
  std::string serialnumber;
  std::string id;  ///< vendor and product in hexadecimal, such as "0403:6001"

  friend bool operator==(const SerialPortRecord&, const SerialPortRecord&) = default;
};

/// In the order that a person counts in: ttyS2 stands before ttyS10, built-in ports before ttyUSB0.
/// Consoles and built-in ports without hardware are left out. Never fails; a system without such
/// folders has no ports. The arguments are there for a tree that isn't the machine's own.
std::vector<SerialPortRecord> ListSerialPorts(const std::filesystem::path& sysroot = "/sys",
                                              const std::filesystem::path& devroot = "/dev");

}  // namespace vane
