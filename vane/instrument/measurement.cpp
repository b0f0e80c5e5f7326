// Readings, and the wait for a new one.
#include <algorithm>
#include <functional>
#include <optional>
#include <string>

#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/numbering.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"
#include "vane/support/timing.h"

namespace vane {
namespace {

constexpr std::int32_t kPollPause = 1000;  // ms

constexpr std::int64_t kShortestLimit = 120'000;  // ms
constexpr std::int64_t kMsPerSecond = 1000;

// A reading on its way.
class CReading {
 public:
  CReading(const CVaneT312B& instrument, CPlatform& platform, const bool& cancelled,
           std::optional<MeasurementTrouble>& trouble)
      : instrument_(instrument), platform_(platform), cancelled_(cancelled), trouble_(trouble) {}

  double OfChannel(std::int16_t chn, bool waitfornew);

 private:
  double OfScanner(std::int32_t chan, bool waitfornew);
  // A host that asks for a reading is told that there is none, not which exchange on the way
  // failed.
  double Guarded(std::string_view operation, EText failedtext, const std::function<double()>& body);
  void WaitForNewData();
  [[noreturn]] void EndWait(EMeasurementTrouble kind, const char* description);

  const CVaneT312B& instrument_;
  CPlatform& platform_;
  const bool& cancelled_;
  std::optional<MeasurementTrouble>& trouble_;  // the first
};

double CReading::OfChannel(std::int16_t chn, bool waitfornew) {
  return Guarded("QueryMeasurement", EText::UNABLE_TO_QUERY_MEASUREMENT, [&] {
    LineOf(instrument_).params().ClearAll();
    if (waitfornew) WaitForNewData();
    if (chn > kNumInputs) return OfScanner(ScannerChannel(chn), waitfornew);
    LineOf(instrument_).params().Channel = std::to_string(chn);
    return NumberFromText(LineOf(instrument_).ReadSetting(ECommand::READ_MEASUREMENT));
  });
}

double CReading::OfScanner(std::int32_t chan, bool waitfornew) {
  if (chan > ScannerChannel(instrument_.NumChannels()) || chan < 1) {
    throw LibraryError(ERR_INVALID_CHANNEL, InstrumentLabel("QueryScannerMeasurement"),
                       ResourceText(EText::INVALID_CHANNEL_INDEX));
  }
  return Guarded("QueryScannerMeasurement", EText::UNABLE_TO_QUERY_SCANNER_MEASUREMENT, [&] {
    LineOf(instrument_).params().ClearAll();
    if (waitfornew) WaitForNewData();
    LineOf(instrument_).params().Channel = std::to_string(chan);
    return NumberFromText(LineOf(instrument_).ReadSetting(ECommand::READ_SCANNER_MEASUREMENT));
  });
}

double CReading::Guarded(std::string_view operation, EText failedtext,
                         const std::function<double()>& body) {
  try {
    return body();
  } catch (...) {
    // A scanner reading passes here twice; the inner one knows.
    if (!trouble_) {
      trouble_ = {EMeasurementTrouble::FAILED, PendingError()};
    }
    throw LibraryError(ERR_MEASUREMENT, InstrumentLabel(operation), ResourceText(failedtext),
                       instrument_.HelpFile(), instrument_.HCIDCommError());
  }
}

void CReading::WaitForNewData() {
  // Summed up, since a wait may be longer than what the tick count can tell apart.
  std::int64_t waited = 0;
  std::uint32_t last = platform_.TickCount();
  while (!Contains(LineOf(instrument_).ReadSetting(ECommand::READ_NEW_DATA), "1")) {
    const std::uint32_t now = platform_.TickCount();
    waited += now - last;
    last = now;
    if (waited >= instrument_.NewDataLimit()) {
      EndWait(EMeasurementTrouble::TIMED_OUT, "No new reading came in time.");
    }
    PauseMs(kPollPause, [this] { return cancelled_; });
    if (cancelled_) {
      EndWait(EMeasurementTrouble::CANCELLED, "The wait for a new reading was cancelled.");
    }
  }
}

void CReading::EndWait(EMeasurementTrouble kind, const char* description) {
  trouble_ = {kind,
              LibraryError(ERR_MEASUREMENT, InstrumentLabel("QueryMeasurement"), description)};
  throw trouble_->error;
}

}  // namespace

bool CVaneT312B::StartMeasure() {
  return AtBoundary(
      [] {
        return SubstituteParams(ResourceText(EText::ATTEMPTING_TO_UPDATE),
                                ResourceText(EText::START_MEASURE));
      },
      [&] {
        Write(LineOf(*this), ECommand::WRITE_START_MEASURE);
        return true;
      });
}

bool CVaneT312B::StopMeasure() {
  return AtBoundary(
      [] {
        return SubstituteParams(ResourceText(EText::ATTEMPTING_TO_UPDATE),
                                ResourceText(EText::STOP_MEASURE));
      },
      [&] {
        Write(LineOf(*this), ECommand::WRITE_STOP_MEASURE);
        return true;
      });
}

double CVaneT312B::QueryMeasurement(std::int16_t chan, bool waitfornew) {
  measurementtrouble_.reset();
  const bool selected = chan == -1;
  const std::int16_t chn = selected ? SelectedChannel() : chan;
  if (selected ? chn == -1 : chn > NumChannels() || chn < 1) {
    throw LibraryError(ERR_INVALID_CHANNEL, InstrumentLabel("QueryMeasurement"),
                       ResourceText(EText::INVALID_CHANNEL_INDEX));
  }
  waitcancelled_ = false;
  return CReading(*this, components_.platform, waitcancelled_, measurementtrouble_)
      .OfChannel(chn, waitfornew);
}

std::int64_t CVaneT312B::NewDataLimit() const {
  if (newdatalimit_) return *newdatalimit_;
  std::int64_t round = 2;
  if (HasScanners() && ChannelMode() == ET312BChannelMode::CM_SCANNER_SEQUENCE) {
    const std::int64_t sequence = ScannerScanMode() == ET312BScannerScanMode::SSM_USER_DEFINED
                                      ? ScanSeqSteps()
                                      : 2 * ScanSeqChannels();
    round = std::max(round, sequence);
  }
  return std::max(kShortestLimit, (1 + round) * Interval() * kMsPerSecond);
}

bool CVaneT312B::QueryWaitSettings() {
  return Query(*this, kInterval) &&
         (!HasScanners() || (QueryChannelMode() && QueryScannerScanMode() &&
                             Query(*this, kScanSeqChannels) && Query(*this, kScanSeqSteps)));
}

}  // namespace vane
