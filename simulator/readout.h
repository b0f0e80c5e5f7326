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
  struct Handler;

  bool IsOldFirmware() const;
  Reply Dispatch(const protocol::ParsedCommand& command);

  Reply Initialize(const CommandParams&) { return Reply::Done(); }
  Reply ReadProtectConversion(const CommandParams&) { return OnOff(options_.protect_conversion); }
  Reply ReadProtectCalibration(const CommandParams&) { return OnOff(options_.protect_calibration); }
  Reply ReadProtectSampling(const CommandParams&) { return OnOff(options_.protect_sampling); }
  Reply ReadProtectUnits(const CommandParams&) { return OnOff(options_.protect_units); }
  Reply StartMeasure(const CommandParams& fields);
  Reply StopMeasure(const CommandParams& fields);
  Reply ReadMeasurement(const CommandParams& fields);
  Reply ReadScannerMeasurement(const CommandParams& fields);
  Reply ReadNewData(const CommandParams& fields);
  Reply ReadIdentification(const CommandParams&) { return Identification(); }
  Reply ReadScannerModules(const CommandParams& fields);
  Reply ReadChannelCount(const CommandParams& fields);
  Reply ReadScanStep(const CommandParams& fields);
  Reply WriteScanStep(const CommandParams& fields);
  Reply ReadInputProbe(const CommandParams& fields);
  Reply WriteInputProbe(const CommandParams& fields);
  Reply ReadScannerProbe(const CommandParams& fields);
  Reply WriteScannerProbe(const CommandParams& fields);
  Reply ReadHistoryLog(const CommandParams& fields);
  Reply ReadMemoryLog(const CommandParams& fields);
  Reply WriteDate(const CommandParams& fields);
  Reply WriteTime(const CommandParams& fields);

  static Reply OnOff(bool value) { return std::string(value ? "ON" : "OFF"); }
  Reply Reading(std::int32_t channel);
  Reply ReadProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields);
  Reply WriteProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields);
  Reply ReadLog(ELog log, const CommandParams& fields) const;
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
