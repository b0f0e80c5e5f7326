#include "apps/recording/line_source.h"

#include <algorithm>
#include <utility>

#include "vane/instrument/settings_table.h"
#include "vane/support/display_texts.h"
#include "vane/support/exchange.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr std::int64_t kMsPerSecond = 1000;

bool IsScanner(std::int16_t channel) { return channel > kNumInputs; }

std::string InputOrScanner(std::int16_t channel) {
  return std::to_string(IsScanner(channel) ? ScannerChannel(channel) : channel);
}

}  // namespace

CLineSource::CLineSource(CVaneT312B& instrument, const LineFailure& failure,
                         std::vector<std::int16_t> channels)
    : instrument_(instrument), failure_(failure) {
  const auto add = [this](const SettingRow* row) {
    Watched one{std::string(row->name), {row->readid}};
    if (row->index >= 0) {
      one.name += " " + std::to_string(row->index + 1);
      one.question.field = &CommandParams::Index;
      one.question.place = IndexText(*row);
    }
    watched_.push_back(std::move(one));
  };
  // The units are looked at behind each round.
  for (const SettingRow* row : kReadoutSettings) {
    if (row != &kUnits) add(row);
  }
  for (const SettingRow* row : kCalibrationSettings) add(row);
  if (std::ranges::any_of(channels, IsScanner)) {
    for (const SettingRow* row : kScannerReads) add(row);
  }
  for (const std::int16_t channel : channels) {
    const ECommand command =
        IsScanner(channel) ? ECommand::READ_SCANNER_PROBE_INDEX : ECommand::READ_PROBE_INDEX;
    watched_.push_back({"Probe of channel " + std::to_string(channel),
                        {command, &CommandParams::Channel, InputOrScanner(channel)}});
  }
}

void CLineSource::Identify(recorder::RecordingHead& head) {
  head.identification = Ask({ECommand::READ_IDENTIFICATION});
  for (std::int16_t probe = 1; probe <= CVaneT312B::NumProbes(); ++probe) {
    head.probes[probe] = ReadSerial(probe);
  }
}

// A readout that is silent when the port opens again answers nobody: the first exchange shows it.
std::string CLineSource::Differs(const recorder::RecordingHead& head) {
  const std::string identification = Ask({ECommand::READ_IDENTIFICATION});
  if (identification != head.identification) {
    return "On the line is \"" + identification + "\" and not \"" + head.identification +
           "\", which the recording is of.";
  }
  for (const auto& [probe, serial] : head.probes) {
    const std::string found = ReadSerial(probe);
    if (found != serial) {
      return "Probe " + std::to_string(probe) + " of the readout is \"" + found + "\" and not \"" +
             serial + "\", as in the recording.";
    }
  }
  return {};
}

std::string CLineSource::ReadSerial(std::int16_t probe) {
  return Ask({ECommand::READ_PROBE_SERIAL, &CommandParams::Probe, std::to_string(probe)});
}

recorder::MeasuringSetup CLineSource::ReadSetup() {
  recorder::MeasuringSetup setup;
  Exchange([&] {
    Query(instrument_, kInterval);
    Query(instrument_, kChannelMode);
  });
  setup.interval = std::int64_t{instrument_.Interval()} * kMsPerSecond;
  recorder::ScanPlan& plan = setup.plan;
  plan.mode = instrument_.ChannelMode();
  if (plan.mode == ET312BChannelMode::CM_SCANNER_CHANNEL) {
    Exchange([&] { Query(instrument_, kScanChannel); });
    plan.scanchannel = instrument_.ScanChannel();
  }
  if (plan.mode != ET312BChannelMode::CM_SCANNER_SEQUENCE) return setup;
  Exchange([&] {
    Query(instrument_, kScannerScanMode);
    Query(instrument_, kScanSeqChannels);
    Query(instrument_, kScanSeqSteps);
  });
  plan.scanmode = instrument_.ScannerScanMode();
  plan.sequencechannels = instrument_.ScanSeqChannels();
  if (plan.scanmode != ET312BScannerScanMode::SSM_USER_DEFINED) return setup;
  for (std::int16_t step = 1; step <= instrument_.ScanSeqSteps(); ++step) {
    const std::string text =
        Ask({ECommand::READ_SCAN_STEP, &CommandParams::Index, std::to_string(step)});
    std::int16_t channel = 0;
    Exchange([&] { channel = ToInteger(NumberFromText(text)); });
    plan.steps.push_back(text.empty() ? std::int16_t{0}
                                      : static_cast<std::int16_t>(channel + kNumInputs));
  }
  return setup;
}

bool CLineSource::HasNew() { return Contains(Ask({ECommand::READ_NEW_DATA}), "1"); }

std::string CLineSource::ReadReading(std::int16_t channel) {
  const ECommand command =
      IsScanner(channel) ? ECommand::READ_SCANNER_MEASUREMENT : ECommand::READ_MEASUREMENT;
  return Ask({command, &CommandParams::Channel, InputOrScanner(channel)});
}

std::string CLineSource::ReadUnit() {
  Exchange([&] { instrument_.QueryUnits(); });
  return UnitsText(static_cast<std::int16_t>(instrument_.Units()));
}

std::string CLineSource::Ask(const Question& question) {
  std::string answer;
  Exchange([&] {
    CVaneCommunications& line = *instrument_.Communications();
    line.params().ClearAll();
    if (question.field != nullptr) line.params().*question.field = question.place;
    answer = line.ReadSetting(question.command);
  });
  return answer;
}

void CLineSource::Exchange(const std::function<void()>& exchange) {
  try {
    exchange();
  } catch (const LibraryError& error) {
    // An answer of the right form that makes no sense.
    if (failure_.number == 0) throw recorder::CLineTrouble(error.Description());
    if (failure_.refused) throw recorder::CRefusal(failure_.description);
    throw recorder::CLineTrouble(failure_.description);
  }
}

}  // namespace vane::thermoscribe
