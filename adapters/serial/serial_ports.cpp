#include "adapters/serial/serial_ports.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <string_view>
#include <system_error>

namespace vane {
namespace {

namespace fs = std::filesystem;

// The first line of a small file; empty when there is none.
std::string Line(const fs::path& file) {
  std::string line;
  std::ifstream stream(file);
  std::getline(stream, line);
  return line;
}

// The device behind the port. The system may put levels of its own between the two, all of them on
// one bus, whose drivers say nothing about the hardware.
fs::path DeviceFolder(const fs::path& entry) {
  std::error_code error;
  fs::path folder = fs::canonical(entry / "device", error);
  while (fs::read_symlink(folder / "subsystem", error).filename() == "serial-base") {
    folder = folder.parent_path();
  }
  return folder;
}

// A USB adapter's port hangs some levels below the folder that describes the adapter.
fs::path UsbFolder(fs::path folder, const fs::path& sysroot) {
  std::error_code error;
  for (; folder != sysroot && folder.has_relative_path(); folder = folder.parent_path()) {
    if (fs::exists(folder / "idVendor", error)) return folder;
  }
  return {};
}

SerialPortRecord Describe(const fs::path& entry, const fs::path& sysroot, const fs::path& devroot) {
  std::error_code error;
  const fs::path device = DeviceFolder(entry);
  SerialPortRecord port;
  port.path = (devroot / entry.filename()).string();
  port.driver = fs::read_symlink(device / "driver", error).filename().string();
  const fs::path usb = UsbFolder(device, sysroot);
  if (!usb.empty()) {
    port.maker = Line(usb / "manufacturer");
    port.product = Line(usb / "product");
    port.serialnumber = Line(usb / "serial");
    port.id = Line(usb / "idVendor") + ":" + Line(usb / "idProduct");
  }
  return port;
}

// Digits at the end count as a number, so that of two that are alike before them the shorter is the
// smaller one.
bool StandsBefore(const SerialPortRecord& left, const SerialPortRecord& right) {
  const auto stem = [](std::string_view path) {
    return path.substr(0, path.find_last_not_of("0123456789") + 1);
  };
  const std::string_view leftstem = stem(left.path);
  const std::string_view rightstem = stem(right.path);
  if (leftstem != rightstem) return leftstem < rightstem;
  if (left.path.size() != right.path.size()) return left.path.size() < right.path.size();
  return left.path < right.path;
}

}  // namespace

std::vector<SerialPortRecord> ListSerialPorts(const fs::path& sysroot, const fs::path& devroot) {
  std::error_code error;
  const fs::path root = fs::canonical(sysroot, error);
  std::vector<SerialPortRecord> ports;
  // A step of this iterator that fails makes it the end.
  for (fs::directory_iterator entry(root / "class" / "tty", error), end; entry != end;
       entry.increment(error)) {
    const fs::path& folder = entry->path();
    if (!fs::exists(folder / "device", error)) continue;  // a console
    if (Line(folder / "type") == "0") continue;           // no hardware
    if (!fs::exists(devroot / folder.filename(), error)) continue;
    ports.push_back(Describe(folder, root, devroot));
  }
  std::ranges::sort(ports, StandsBefore);
  return ports;
}

}  // namespace vane
