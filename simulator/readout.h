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
  Bath bath = {};
  std::string passcode = "1234";
  bool protectconversion = false;
  bool protectcalibration = false;
  bool protectsampling = false;
  bool protectunits = false;
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

  /// Switched off and on again just now: what is stored stays, and the first sample is one interval
  /// away. The baths go on.
  void SwitchOn();

  /// The sample of the latest reading that was asked for.
  std::int64_t FetchedSample() const { return lastfetched_; }

  /// The clock of the readout, which no command reads.
  std::chrono::sys_seconds ClockTime() const;

 private:
  struct Handler;

  bool IsOldFirmware() const;
  CReply Dispatch(const protocol::ParsedCommand& command);

  CReply Initialize(const CommandParams&) { return CReply::Done(); }
  CReply ReadProtectConversion(const CommandParams&) { return OnOff(options_.protectconversion); }
  CReply ReadProtectCalibration(const CommandParams&) { return OnOff(options_.protectcalibration); }
  CReply ReadProtectSampling(const CommandParams&) { return OnOff(options_.protectsampling); }
  CReply ReadProtectUnits(const CommandParams&) { return OnOff(options_.protectunits); }
  CReply StartMeasure(const CommandParams& fields);
  CReply StopMeasure(const CommandParams& fields);
  CReply ReadMeasurement(const CommandParams& fields);
  CReply ReadScannerMeasurement(const CommandParams& fields);
  CReply ReadNewData(const CommandParams& fields);
  CReply ReadIdentification(const CommandParams&) { return Identification(); }
  CReply ReadScannerModules(const CommandParams& fields);
  CReply ReadChannelCount(const CommandParams& fields);
  CReply ReadScanStep(const CommandParams& fields);
  CReply WriteScanStep(const CommandParams& fields);
  CReply ReadInputProbe(const CommandParams& fields);
  CReply WriteInputProbe(const CommandParams& fields);
  CReply ReadScannerProbe(const CommandParams& fields);
  CReply WriteScannerProbe(const CommandParams& fields);
  CReply ReadHistoryLog(const CommandParams& fields);
  CReply ReadMemoryLog(const CommandParams& fields);
  CReply WriteDate(const CommandParams& fields);
  CReply WriteTime(const CommandParams& fields);

  static CReply OnOff(bool value) { return std::string(value ? "ON" : "OFF"); }
  CReply Reading(std::int32_t channel);
  CReply ReadProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields);
  CReply WriteProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields);
  CReply ReadLog(ELog log, const CommandParams& fields) const;
  void SetClockTime(std::chrono::sys_seconds time);

  std::int64_t Sample() const;
  void RestartSamples(std::int64_t samples, bool running);

  const ReadoutOptions options_;
  const Clock clock_;
  CInstrumentSettings settings_;
  std::array<Probe, kProbeCount> probes_ = MakeProbes();
  // What the thermometers and reference resistors truly are, whatever anybody writes.
  const std::array<Probe, kProbeCount> works_ = MakeProbes();
  const CInstrumentSettings worksettings_;
  std::array<std::int32_t, kInputs + kScannerChannels> probeofchannel_;
  std::vector<std::optional<std::int32_t>> scansteps_;

  // Samples are counted and never stored: there were `samplesbefore_` of them at
  // `countedsince_`, and since then one came per interval while measuring was on.
  bool measuring_ = true;
  std::int64_t samplesbefore_ = 0;
  Moment countedsince_;
  std::int64_t lastfetched_ = 0;

  std::chrono::sys_seconds clocktime_;
  Moment clocksetat_;
};

}  // namespace vane::simulator
