// Readings, and the wait for a new one.
#include <algorithm>
#include <functional>

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

}  // namespace

bool CVaneT312B::StartMeasure() {
  return AtBoundary([] { return SubstituteParams(ResourceText(113), ResourceText(202)); },
                    [&] {
                      Write(Line(), ECommand::WRITE_START_MEASURE);
                      return true;
                    });
}

bool CVaneT312B::StopMeasure() {
  return AtBoundary([] { return SubstituteParams(ResourceText(113), ResourceText(203)); },
                    [&] {
                      Write(Line(), ECommand::WRITE_STOP_MEASURE);
                      return true;
                    });
}

double CVaneT312B::QueryMeasurement(std::int16_t chan, bool waitfornew) {
  measurementtrouble_.reset();
  const bool selected = chan == -1;
  const std::int16_t chn = selected ? SelectedChannel() : chan;
  if (selected ? chn == -1 : chn > NumChannels() || chn < 1) {
    throw LibraryError(ERR_INVALID_CHANNEL, Label("QueryMeasurement"), ResourceText(171));
  }
  waitcancelled_ = false;
  return MeasurementOf("QueryMeasurement", 174, [&] {
    Line().params().ClearAll();
    if (waitfornew) WaitForNewData();
    if (chn > kNumInputs) return QueryScannerMeasurement(ScannerChannel(chn), waitfornew);
    Line().params().Channel = std::to_string(chn);
    return NumberFromText(Line().ReadSetting(ECommand::READ_MEASUREMENT));
  });
}

double CVaneT312B::QueryScannerMeasurement(std::int32_t chan, bool waitfornew) {
  if (chan > ScannerChannel(NumChannels()) || chan < 1) {
    throw LibraryError(ERR_INVALID_CHANNEL, Label("QueryScannerMeasurement"), ResourceText(171));
  }
  return MeasurementOf("QueryScannerMeasurement", 216, [&] {
    Line().params().ClearAll();
    if (waitfornew) WaitForNewData();
    Line().params().Channel = std::to_string(chan);
    return NumberFromText(Line().ReadSetting(ECommand::READ_SCANNER_MEASUREMENT));
  });
}

// A host that asks for a reading is told that there is none, not which exchange on the way failed.
double CVaneT312B::MeasurementOf(std::string_view operation, std::int16_t failedtext,
                                 const std::function<double()>& body) {
  try {
    return body();
  } catch (...) {
    // A scanner reading passes here twice; the inner one knows.
    if (!measurementtrouble_) {
      measurementtrouble_ = {EMeasurementTrouble::FAILED, PendingError()};
    }
    throw LibraryError(ERR_MEASUREMENT, Label(operation), ResourceText(failedtext), HelpFile(),
                       HCIDCommError());
  }
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
  return Query(kInterval) && (!HasScanners() || (QueryChannelMode() && QueryScannerScanMode() &&
                                                 Query(kScanSeqChannels) && Query(kScanSeqSteps)));
}

void CVaneT312B::WaitForNewData() {
  CPlatform& platform = components_.platform;
  // Summed up, since a wait may be longer than what the tick count can tell apart.
  std::int64_t waited = 0;
  std::uint32_t last = platform.TickCount();
  while (!Contains(Line().ReadSetting(ECommand::READ_NEW_DATA), "1")) {
    const std::uint32_t now = platform.TickCount();
    waited += now - last;
    last = now;
    if (waited >= NewDataLimit()) {
      EndWait(EMeasurementTrouble::TIMED_OUT, "No new reading came in time.");
    }
    PauseMs(kPollPause, [this] { return waitcancelled_; });
    if (waitcancelled_) {
      EndWait(EMeasurementTrouble::CANCELLED, "The wait for a new reading was cancelled.");
    }
  }
}

void CVaneT312B::EndWait(EMeasurementTrouble kind, const char* description) {
  measurementtrouble_ = {kind,
                         LibraryError(ERR_MEASUREMENT, Label("QueryMeasurement"), description)};
  throw measurementtrouble_->error;
}

}  // namespace vane
