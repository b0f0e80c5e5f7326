#include "adapters/serial/baud_rates.h"

#include <algorithm>

namespace vane {
namespace {

constexpr BaudRateRow kBaudRates[] = {
    {EVaneBaudRate::BR_300, 300, B300},       {EVaneBaudRate::BR_600, 600, B600},
    {EVaneBaudRate::BR_1200, 1200, B1200},    {EVaneBaudRate::BR_2400, 2400, B2400},
    {EVaneBaudRate::BR_4800, 4800, B4800},    {EVaneBaudRate::BR_9600, 9600, B9600},
    {EVaneBaudRate::BR_19200, 19200, B19200}, {EVaneBaudRate::BR_38400, 38400, B38400},
    {EVaneBaudRate::BR_57600, 57600, B57600}, {EVaneBaudRate::BR_115200, 115200, B115200},
};

}  // namespace

std::span<const BaudRateRow> BaudRates() { return kBaudRates; }

const BaudRateRow* FindBaudRate(EVaneBaudRate rate) {
  const auto row = std::ranges::find(kBaudRates, rate, &BaudRateRow::rate);
  return row != std::end(kBaudRates) ? &*row : nullptr;
}

}  // namespace vane
