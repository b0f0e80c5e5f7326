// The readout as a recorder needs it. A program implements it over its line.
//
// Each operation is an exchange or a few, and raises `CLineTrouble` when there was no good answer
// or no line, `CRefusal` when the readout has refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "recorder/record_types.h"
#include "recorder/scan_plan.h"

namespace vane::recorder {

class CLineTrouble : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class CRefusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct MeasuringSetup {
  std::int64_t interval = 1000;  ///< between two samples, ms
  ScanPlan plan = {};
};

class CReadoutSource {
 public:
  virtual ~CReadoutSource() = default;

  /// Opens the line again where it was lost, and looks whether who answers is the readout of
  /// `head`. Empty when it is, else why not.
  virtual std::string Differs(const RecordingHead& head) = 0;

  virtual MeasuringSetup ReadSetup() = 0;

  /// Whether there was a sample since the latest `ReadReading`.
  virtual bool HasNew() = 0;

  /// The latest reading of `channel`, as it was sent: a number.
  virtual std::string ReadReading(std::int16_t channel) = 0;

  /// The unit of readings, in its usual short form.
  virtual std::string ReadUnit() = 0;

  // What of the readout is looked at for changes: `WatchedName(0)` and so on.

  virtual std::size_t NumWatched() const = 0;
  virtual std::string WatchedName(std::size_t idx) const = 0;
  virtual std::string ReadWatched(std::size_t idx) = 0;
};

}  // namespace vane::recorder
