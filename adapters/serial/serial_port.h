// A serial port as a stream of bytes: open, close, write, read until a deadline. No retries, no
// framing, no trace.
//
// Blocks the calling thread, and only until the deadline. A signal doesn't cut a wait short. Works
// on pseudo-terminals too.
#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "adapters/serial/baud_rates.h"

namespace vane {

using LineClock = std::chrono::steady_clock;

enum class EPortResult {
  DONE,
  NO_DEVICE,    ///< nothing is there under that path
  CANNOT_OPEN,  ///< it is there and can't be opened, or isn't a serial port
  IN_USE,       ///< another program, or another object of this one, has it open
  EXPIRED,      ///< the deadline came first
  LOST,         ///< the device has gone away; the port is closed now
};

class CSerialPort {
 public:
  CSerialPort() = default;
  ~CSerialPort() { Close(); }
  CSerialPort(const CSerialPort&) = delete;
  CSerialPort& operator=(const CSerialPort&) = delete;

  /// Takes the device for this object alone, which no child process inherits, and sets it to 8 data
  /// bits, no parity, 1 stop bit, no flow control at `rate`. Input that came before is thrown away.
  /// Closes an open port first; the port stays closed unless the result is DONE.
  EPortResult Open(const std::string& path, const BaudRateRow& rate);

  void Close();
  bool IsOpen() const { return handle_ >= 0; }

  /// Hands all `bytes` to the device. After EXPIRED a part of them may have gone out.
  EPortResult Write(std::string_view bytes, LineClock::time_point deadline);

  /// Waits for input and takes what is there, at least one byte, into `into`; `count` says how
  /// many. A deadline in the past takes what is there already.
  EPortResult Read(std::span<char> into, std::size_t& count, LineClock::time_point deadline);

  /// The system's words for the last result that wasn't DONE or EXPIRED.
  std::string Problem() const;

 private:
  EPortResult SetUp(const BaudRateRow& rate);
  EPortResult Wait(short events, LineClock::time_point deadline);
  EPortResult Fail(EPortResult result, int error);

  int handle_ = -1;
  bool isexclusive_ = false;
  int error_ = 0;
};

}  // namespace vane
