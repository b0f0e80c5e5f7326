// The line speeds: what the library calls them, in bit/s, and as the operating system's constant.
#pragma once

#include <termios.h>

#include <cstdint>
#include <span>

#include "vane/components/communications.h"

namespace vane {

struct BaudRateRow {
  EVaneBaudRate rate;
  std::int32_t bits;  ///< per second
  speed_t speed;
};

/// By rising speed.
std::span<const BaudRateRow> BaudRates();

/// Null for a rate that a serial port doesn't have, infrared among them.
const BaudRateRow* FindBaudRate(EVaneBaudRate rate);

}  // namespace vane
