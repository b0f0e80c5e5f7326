#include <functional>

#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"
#include "vane/support/timing.h"
#include "vane/topology/numbering.h"

namespace vane {
namespace {

constexpr std::int32_t WRITE_START_MEASURE = 10;
constexpr std::int32_t WRITE_STOP_MEASURE = 11;
constexpr std::int32_t READ_MEASUREMENT = 12;
constexpr std::int32_t READ_NEW_DATA = 15;
constexpr std::int32_t READ_SCANNER_MEASUREMENT = 103;

constexpr std::int32_t kPollPause = 1000;  // ms

}  // namespace

bool CVaneT312B::StartMeasure() {
  return AtBoundary([] { return SubstituteParams(ResourceText(113), ResourceText(202)); },
                    [&] {
                      Write(Line(), WRITE_START_MEASURE);
                      return true;
                    });
}

bool CVaneT312B::StopMeasure() {
  return AtBoundary([] { return SubstituteParams(ResourceText(113), ResourceText(203)); },
                    [&] {
                      Write(Line(), WRITE_STOP_MEASURE);
                      return true;
                    });
}

double CVaneT312B::QueryMeasurement(std::int16_t chan, bool waitfornew) {
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
    return NumberFromText(Line().ReadSetting(READ_MEASUREMENT));
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
    return NumberFromText(Line().ReadSetting(READ_SCANNER_MEASUREMENT));
  });
}

// A host that asks for a reading is told that there is none, not which exchange on the way failed.
double CVaneT312B::MeasurementOf(std::string_view operation, std::int16_t failedtext,
                                 const std::function<double()>& body) {
  try {
    return body();
  } catch (...) {
    throw LibraryError(ERR_MEASUREMENT, Label(operation), ResourceText(failedtext), HelpFile(),
                       HCIDCommError());
  }
}

void CVaneT312B::WaitForNewData() {
  CPlatform& platform = components_.platform;
  const std::uint32_t start = platform.TickCount();
  while (!Contains(Line().ReadSetting(READ_NEW_DATA), "1")) {
    const std::uint32_t waited = platform.TickCount() - start;
    if (waited >= static_cast<std::uint32_t>(std::max(newdatalimit_, 0))) {
      throw LibraryError(ERR_MEASUREMENT, {}, "No new reading came in time.");
    }
    PauseMs(kPollPause, [this] { return waitcancelled_; });
    if (waitcancelled_) {
      throw LibraryError(ERR_MEASUREMENT, {}, "The wait for a new reading was cancelled.");
    }
  }
}

}  // namespace vane
