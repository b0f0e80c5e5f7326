// The settings of the readout itself: a table of numbers with limits, a table of words, and their
// present values. The tables hold everything of which a write changes what the read then tells;
// probes and assignments have files of their own.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "protocol/command_table.h"
#include "simulator/reply.h"

namespace vane::simulator {

enum class EUnits { CELSIUS, FAHRENHEIT, KELVIN, OHMS, RATIO, W };

class CInstrumentSettings {
 public:
  CInstrumentSettings();

  /// Answers a read or a write of one of these settings; nothing when the command is about
  /// something else. A refused or empty write changes nothing.
  std::optional<CReply> Answer(const protocol::ParsedCommand& command);

  EUnits Units() const;
  std::int32_t Interval() const;

  /// Digits behind the point of a reading in the present units.
  std::int32_t ReadingDigits() const;

  /// Ohms of the reference resistor by its number, 0 (external) to 4 (10 kilohm): its calibration
  /// parameter.
  double ReferenceOhms(std::size_t reference) const;

 private:
  std::vector<double> numbers_;
  std::vector<std::size_t> words_;
};

}  // namespace vane::simulator
