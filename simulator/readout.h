// The simulated T312B with its M420: everything but the line.
//
// It takes a command's text and gives the answer's body. Thread: none of its own and no lock; the
// line server calls it from one thread at a time.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/command_table.h"
#include "simulator/instrument_settings.h"
#include "simulator/logs.h"
#include "simulator/probes.h"
#include "simulator/reply.h"

namespace vane::simulator {

using Moment = std::chrono::steady_clock::time_point;
using Clock = std::function<Moment()>;

struct ReadoutOptions {
  std::string model = "T312B";
  std::string firmware = "5.03";
  bool scanner = true;
  std::uint64_t seed = 1;
  std::string passcode = "1234";
  bool protect_conversion = false;
  bool protect_calibration = false;
  bool protect_sampling = false;
  bool protect_units = false;
};

inline constexpr std::int32_t kInputs = 2;
inline constexpr std::int32_t kScannerChannels = 10;
inline constexpr std::int32_t kMaxScanSteps = 100;

class CReadout {
 public:
  /// `clock` drives the samples; a test hands in one that it moves itself.
  explicit CReadout(ReadoutOptions options, Clock clock = std::chrono::steady_clock::now);

  /// The body of the answer to `command`. Nothing when the readout stays silent: firmware before
  /// 5.03 passes a scanner command on, and without a scanner nobody answers it.
  std::optional<std::string> Answer(std::string_view command);

  /// The answer to the identification command: model, comma, firmware.
  std::string Identification() const;

  /// The clock of the readout, which no command reads.
  std::chrono::sys_seconds ClockTime() const;

 private:
  using Fields = protocol::Fields;
  struct Handler;

  bool IsOldFirmware() const;
  Reply Dispatch(const protocol::ParsedCommand& command);

  Reply Initialize(const Fields&) { return Reply::Done(); }
  Reply ReadProtectConversion(const Fields&) { return OnOff(options_.protect_conversion); }
  Reply ReadProtectCalibration(const Fields&) { return OnOff(options_.protect_calibration); }
  Reply ReadProtectSampling(const Fields&) { return OnOff(options_.protect_sampling); }
  Reply ReadProtectUnits(const Fields&) { return OnOff(options_.protect_units); }
  Reply StartMeasure(const Fields& fields);
  Reply StopMeasure(const Fields& fields);
  Reply ReadMeasurement(const Fields& fields);
  Reply ReadScannerMeasurement(const Fields& fields);
  Reply ReadNewData(const Fields& fields);
  Reply ReadIdentification(const Fields&) { return Identification(); }
  Reply ReadScannerModules(const Fields& fields);
  Reply ReadChannelCount(const Fields& fields);
  Reply ReadScanStep(const Fields& fields);
  Reply WriteScanStep(const Fields& fields);
  Reply ReadInputProbe(const Fields& fields);
  Reply WriteInputProbe(const Fields& fields);
  Reply ReadScannerProbe(const Fields& fields);
  Reply WriteScannerProbe(const Fields& fields);
  Reply ReadHistoryLog(const Fields& fields);
  Reply ReadMemoryLog(const Fields& fields);
  Reply WriteDate(const Fields& fields);
  Reply WriteTime(const Fields& fields);

  static Reply OnOff(bool value) { return std::string(value ? "ON" : "OFF"); }
  Reply Reading(std::int32_t channel);
  Reply ReadProbeOf(std::int32_t first, std::int32_t count, const Fields& fields);
  Reply WriteProbeOf(std::int32_t first, std::int32_t count, const Fields& fields);
  Reply ReadLog(ELog log, const Fields& fields) const;
  void SetClockTime(std::chrono::sys_seconds time);

  std::int64_t Sample() const;
  void RestartSamples(std::int64_t samples, bool running);

  const ReadoutOptions options_;
  const Clock clock_;
  CInstrumentSettings settings_;
  std::array<Probe, kProbeCount> probes_ = MakeProbes();
  std::array<std::int32_t, kInputs + kScannerChannels> probe_of_channel_;
  std::vector<std::optional<std::int32_t>> scan_steps_;

  // Samples are counted and never stored: there were `samples_before_` of them at
  // `counted_since_`, and since then one came per interval while measuring was on.
  bool measuring_ = true;
  std::int64_t samples_before_ = 0;
  Moment counted_since_;
  std::int64_t last_fetched_ = 0;

  std::chrono::sys_seconds clock_time_;
  Moment clock_set_at_;
};

}  // namespace vane::simulator
