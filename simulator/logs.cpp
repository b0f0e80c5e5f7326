#include "simulator/logs.h"

#include "simulator/measurement_model.h"
#include "simulator/readout_numbers.h"

namespace vane::simulator {
namespace {

constexpr int kDigits = 4;

// The units were changed while the memory log ran: each unit held for this many readings.
constexpr std::int32_t kReadingsPerUnit = 60;

}  // namespace

std::string LogLine(ELog log, std::int32_t index, std::uint64_t seed) {
  if (index > (log == ELog::HISTORY ? kHistoryLength : kMemoryLength)) return {};
  const std::int32_t channel = log == ELog::HISTORY ? 1 : 2;
  const double celsius = BathTemperature(Bath{}, seed, channel, index);
  double value = celsius;
  std::string unit = "C";
  if (log == ELog::MEMORY) {
    switch ((index - 1) / kReadingsPerUnit) {
      case 0:
        break;
      case 1:
        value = celsius * 1.8 + 32;
        unit = "F";
        break;
      case 2:
        value = celsius + 273.15;
        unit = "K";
        break;
      default:
        value = SensorResistance({ESensor::PLATINUM, 25.5}, celsius);
        unit = "OHM";
        break;
    }
  }
  return FixedText(value, kDigits) + " " + unit + " " + std::to_string(index);
}

}  // namespace vane::simulator
