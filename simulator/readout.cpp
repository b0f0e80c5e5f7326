#include "simulator/readout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/clock_parser.h"
#include "simulator/probe_settings.h"
#include "simulator/readout_numbers.h"
#include "simulator/sensor_model.h"

namespace vane::simulator {
namespace {

using enum ECommand;

// The channel modes that need a scanner.
constexpr std::int32_t kFirstScannerMode = 3;
constexpr std::int32_t kLastScannerMode = 4;

// The first firmware that knows the scanner and channel counts, and that answers for an absent
// scanner.
constexpr double kNewFirmware = 5.03;

constexpr std::chrono::sys_days kClockAtStart = std::chrono::year(2020) / std::chrono::January / 1;

// The whole number in `text` if it lies in the limits.
std::optional<std::int32_t> WholeWithin(std::string_view text, std::int32_t lowest,
                                        std::int32_t highest) {
  const auto value = ParseWhole(text);
  return value && *value >= lowest && *value <= highest ? value : std::nullopt;
}

}  // namespace

struct CReadout::Handler {
  ECommand id;
  CReply (CReadout::*answer)(const CommandParams&);
};

CReadout::CReadout(ReadoutOptions options, Clock clock)
    : options_(std::move(options)),
      clock_(std::move(clock)),
      // The second step was never set, and the readout says so by an empty answer.
      scansteps_({1, std::nullopt, 2, 3, 10}),
      countedsince_(clock_()),
      clocktime_(kClockAtStart),
      clocksetat_(countedsince_) {
  scansteps_.resize(kMaxScanSteps);
  for (std::size_t i = 0; i < probeofchannel_.size(); ++i) {
    probeofchannel_[i] = static_cast<std::int32_t>(i) + 1;
  }
}

std::optional<std::string> CReadout::Answer(std::string_view command) {
  if (command == protocol::kPasscodeCommand) return CReply(options_.passcode).Body();
  const auto parsed = protocol::ParseCommand(command);
  if (!parsed) return CReply(ERefusal::UNKNOWN_COMMAND).Body();
  const ECommand id = parsed->row->id;
  if (id == READ_SCANNER_MODULES || id == READ_CHANNEL_COUNT) {
    if (IsOldFirmware()) return CReply(ERefusal::UNKNOWN_COMMAND).Body();
  } else if (!options_.scanner && parsed->row->text.starts_with("SCANNER:")) {
    if (IsOldFirmware()) return std::nullopt;
    return CReply(ERefusal::NO_SCANNER).Body();
  }
  return Dispatch(*parsed).Body();
}

std::string CReadout::Identification() const { return options_.model + ", " + options_.firmware; }

std::chrono::sys_seconds CReadout::ClockTime() const {
  return clocktime_ + std::chrono::floor<std::chrono::seconds>(clock_() - clocksetat_);
}

void CReadout::SwitchOn() {
  RestartSamples(Sample(), true);
  lastfetched_ = Sample();
}

bool CReadout::IsOldFirmware() const {
  return ParseReal(options_.firmware).value_or(0) < kNewFirmware;
}

CReply CReadout::Dispatch(const protocol::ParsedCommand& command) {
  static constexpr Handler kHandlers[] = {
      {WRITE_INITIALIZE, &CReadout::Initialize},
      {READ_PROTECT_CONVERSION, &CReadout::ReadProtectConversion},
      {READ_PROTECT_CALIBRATION, &CReadout::ReadProtectCalibration},
      {READ_PROTECT_SAMPLING, &CReadout::ReadProtectSampling},
      {READ_PROTECT_UNITS_TIME, &CReadout::ReadProtectUnits},
      {WRITE_START_MEASURE, &CReadout::StartMeasure},
      {WRITE_STOP_MEASURE, &CReadout::StopMeasure},
      {READ_MEASUREMENT, &CReadout::ReadMeasurement},
      {READ_NEW_DATA, &CReadout::ReadNewData},
      {READ_IDENTIFICATION, &CReadout::ReadIdentification},
      {READ_SCANNER_MODULES, &CReadout::ReadScannerModules},
      {READ_CHANNEL_COUNT, &CReadout::ReadChannelCount},
      {READ_SCANNER_MEASUREMENT, &CReadout::ReadScannerMeasurement},
      {READ_SCAN_STEP, &CReadout::ReadScanStep},
      {WRITE_SCAN_STEP, &CReadout::WriteScanStep},
      {READ_SCANNER_PROBE_INDEX, &CReadout::ReadScannerProbe},
      {WRITE_SCANNER_PROBE_INDEX, &CReadout::WriteScannerProbe},
      {READ_PROBE_INDEX, &CReadout::ReadInputProbe},
      {WRITE_PROBE_INDEX, &CReadout::WriteInputProbe},
      {READ_HISTORY_LOG, &CReadout::ReadHistoryLog},
      {READ_MEMORY_LOG, &CReadout::ReadMemoryLog},
      {WRITE_DATE, &CReadout::WriteDate},
      {WRITE_TIME, &CReadout::WriteTime},
  };
  const CommandParams& fields = command.fields;
  if (command.row->id == WRITE_CHANNEL_MODE && !options_.scanner &&
      WholeWithin(fields.value, kFirstScannerMode, kLastScannerMode)) {
    return ERefusal::NO_SCANNER;
  }
  // The samples up to now keep the interval that they were taken with.
  const std::int64_t sample = Sample();
  const std::int32_t interval = settings_.Interval();
  if (auto reply = settings_.Answer(command)) {
    if (settings_.Interval() != interval) RestartSamples(sample, measuring_);
    return *std::move(reply);
  }
  if (auto reply = AnswerProbeCommand(command, probes_)) return *std::move(reply);
  const auto* handler = std::ranges::find(kHandlers, command.row->id, &Handler::id);
  if (handler == std::end(kHandlers)) return ERefusal::UNKNOWN_COMMAND;
  return (this->*handler->answer)(fields);
}

CReply CReadout::StartMeasure(const CommandParams&) {
  RestartSamples(Sample(), true);
  return CReply::Done();
}

CReply CReadout::StopMeasure(const CommandParams&) {
  RestartSamples(Sample(), false);
  return CReply::Done();
}

CReply CReadout::ReadMeasurement(const CommandParams& fields) {
  const auto channel = WholeWithin(fields.Channel, 1, kInputs);
  return channel ? Reading(*channel) : ERefusal::OUT_OF_RANGE;
}

CReply CReadout::ReadScannerMeasurement(const CommandParams& fields) {
  const auto channel = WholeWithin(fields.Channel, 1, kScannerChannels);
  return channel ? Reading(kInputs + *channel) : ERefusal::OUT_OF_RANGE;
}

CReply CReadout::ReadNewData(const CommandParams&) {
  return std::string(Sample() > lastfetched_ ? "1" : "0");
}

CReply CReadout::ReadScannerModules(const CommandParams&) {
  return std::string(options_.scanner ? "1" : "0");
}

CReply CReadout::ReadChannelCount(const CommandParams&) {
  return std::to_string(kInputs + (options_.scanner ? kScannerChannels : 0));
}

CReply CReadout::ReadScanStep(const CommandParams& fields) {
  const auto step = WholeWithin(fields.Index, 1, kMaxScanSteps);
  if (!step) return ERefusal::OUT_OF_RANGE;
  const auto& channel = scansteps_[static_cast<std::size_t>(*step - 1)];
  return channel ? std::to_string(*channel) : std::string();
}

CReply CReadout::WriteScanStep(const CommandParams& fields) {
  const auto step = WholeWithin(fields.Index, 1, kMaxScanSteps);
  const auto channel = WholeWithin(fields.Channel, 0, kScannerChannels);
  if (!step || !channel) return ERefusal::OUT_OF_RANGE;
  scansteps_[static_cast<std::size_t>(*step - 1)] = channel;
  return CReply::Done();
}

CReply CReadout::ReadInputProbe(const CommandParams& fields) {
  return ReadProbeOf(0, kInputs, fields);
}

CReply CReadout::WriteInputProbe(const CommandParams& fields) {
  return WriteProbeOf(0, kInputs, fields);
}

CReply CReadout::ReadScannerProbe(const CommandParams& fields) {
  return ReadProbeOf(kInputs, kScannerChannels, fields);
}

CReply CReadout::WriteScannerProbe(const CommandParams& fields) {
  return WriteProbeOf(kInputs, kScannerChannels, fields);
}

CReply CReadout::ReadHistoryLog(const CommandParams& fields) {
  return ReadLog(ELog::HISTORY, fields);
}

CReply CReadout::ReadMemoryLog(const CommandParams& fields) {
  return ReadLog(ELog::MEMORY, fields);
}

CReply CReadout::WriteDate(const CommandParams& fields) {
  if (fields.value.empty()) return CReply::Done();
  const auto date = ParseDate(fields.value);
  if (!date) return ERefusal::NOT_A_DATE_OR_TIME;
  const auto now = ClockTime();
  SetClockTime(*date + (now - std::chrono::floor<std::chrono::days>(now)));
  return CReply::Done();
}

CReply CReadout::WriteTime(const CommandParams& fields) {
  if (fields.value.empty()) return CReply::Done();
  const auto time = ParseTimeOfDay(fields.value);
  if (!time) return ERefusal::NOT_A_DATE_OR_TIME;
  SetClockTime(std::chrono::floor<std::chrono::days>(ClockTime()) + *time);
  return CReply::Done();
}

// As on a bench: a bath has its temperature, the thermometer in it a resistance, the readout a
// ratio to its reference resistor, and everything shown comes from that by the numbers that it
// holds.
CReply CReadout::Reading(std::int32_t channel) {
  lastfetched_ = Sample();
  const auto place = static_cast<std::size_t>(channel - 1);
  const auto number = static_cast<std::size_t>(probeofchannel_[place] - 1);
  const Probe& probe = probes_[number];
  const Probe& works = works_[number];
  const double bath = BathTemperature(options_.bath, options_.seed, channel, lastfetched_);
  const double truereference = worksettings_.ReferenceOhms(probe.reference);
  const double ratio = (TrueResistance(works, bath) + works.numbers[NUMBER_OFFSET]) / truereference;
  const double ohms =
      ratio * settings_.ReferenceOhms(probe.reference) - probe.numbers[NUMBER_OFFSET];
  double value = 0;
  switch (settings_.Units()) {
    case EUnits::CELSIUS:
    case EUnits::FAHRENHEIT:
    case EUnits::KELVIN: {
      // A resistor has none; what stands for it follows its bath.
      const bool isthermometer = RecordOf(probe).has_value();
      const auto celsius = isthermometer ? TemperatureBy(probe, ohms) : bath;
      if (!celsius) return ERefusal::OUT_OF_RANGE;
      value = settings_.Units() == EUnits::CELSIUS      ? *celsius
              : settings_.Units() == EUnits::FAHRENHEIT ? *celsius * 1.8 + 32
                                                        : *celsius + 273.15;
      break;
    }
    case EUnits::OHMS:
      value = ohms;
      break;
    case EUnits::RATIO:
      value = ratio;
      break;
    case EUnits::W:
      value = ohms / BaseOfW(probe, works);
      break;
  }
  return FixedText(value, settings_.ReadingDigits());
}

CReply CReadout::ReadProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields) {
  const auto channel = WholeWithin(fields.Channel, 1, count);
  if (!channel) return ERefusal::OUT_OF_RANGE;
  return std::to_string(probeofchannel_[static_cast<std::size_t>(first + *channel - 1)]);
}

CReply CReadout::WriteProbeOf(std::int32_t first, std::int32_t count, const CommandParams& fields) {
  const auto channel = WholeWithin(fields.Channel, 1, count);
  const auto probe = ParseProbeNumber(fields.Probe);
  if (!channel || !probe) return ERefusal::OUT_OF_RANGE;
  probeofchannel_[static_cast<std::size_t>(first + *channel - 1)] = *probe;
  return CReply::Done();
}

CReply CReadout::ReadLog(ELog log, const CommandParams& fields) const {
  const auto index = ParseWhole(fields.Index);
  if (!index) return ERefusal::NOT_A_NUMBER;
  if (*index < 1) return ERefusal::OUT_OF_RANGE;
  return LogLine(log, *index, options_.seed);
}

void CReadout::SetClockTime(std::chrono::sys_seconds time) {
  clocktime_ = time;
  clocksetat_ = clock_();
}

std::int64_t CReadout::Sample() const {
  if (!measuring_) return samplesbefore_;
  return samplesbefore_ + (clock_() - countedsince_) / std::chrono::seconds(settings_.Interval());
}

void CReadout::RestartSamples(std::int64_t samples, bool running) {
  samplesbefore_ = samples;
  countedsince_ = clock_();
  measuring_ = running;
}

}  // namespace vane::simulator
