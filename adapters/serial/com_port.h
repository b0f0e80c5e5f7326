// The settings of the port, as the library sets them.
#pragma once

#include <cstdint>

#include "adapters/serial/serial_port.h"
#include "vane/components/communications.h"

namespace vane {

/// Keeps the settings for `CSerialCommunications`, which looks at them at each exchange. A new port
/// number or speed closes `line`.
class CSerialCOMPort final : public CVaneCOMPort {
 public:
  explicit CSerialCOMPort(CSerialPort& line) : line_(line) {}

  EVanePortNumber PortNumber() const override { return portnumber_; }
  void SetPortNumber(EVanePortNumber value) override {
    if (value != portnumber_) line_.Close();
    portnumber_ = value;
  }

  EVaneBaudRate BaudRate() const override { return baudrate_; }
  void SetBaudRate(EVaneBaudRate value) override {
    if (value != baudrate_) line_.Close();
    baudrate_ = value;
  }

  bool AutoClose() const override { return autoclose_; }
  void SetAutoClose(bool value) override { autoclose_ = value; }

  bool CheckNonAscii() const override { return checknonascii_; }
  void SetCheckNonAscii(bool value) override { checknonascii_ = value; }

  std::int32_t ReadTries() const override { return readtries_; }
  void SetReadTries(std::int32_t value) override { readtries_ = value; }

 private:
  CSerialPort& line_;
  EVanePortNumber portnumber_ = EVanePortNumber::PORT_1;
  EVaneBaudRate baudrate_ = EVaneBaudRate::BR_9600;
  bool autoclose_ = false;
  bool checknonascii_ = true;
  std::int32_t readtries_ = 1;
};

}  // namespace vane
