#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/module.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/numbers.h"
#include "vane/topology/numbering.h"

namespace vane {
namespace {

constexpr std::int32_t READ_SCANNER_PROBE_INDEX = 112;
constexpr std::int32_t READ_PROBE_INDEX = 136;

}  // namespace

CVaneCommunications& CVaneT312BPRTTHRMChannel::Line() const {
  if (module_ == nullptr || module_->BaseUnit() == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "The channel belongs to no instrument.");
  }
  return module_->BaseUnit()->Line();
}

bool CVaneT312BPRTTHRMChannel::QueryProbeIndex() {
  return Labelled("CVaneT312BPRTTHRMChannel", "QueryProbeIndex", [&] {
    const bool scanner = ActualChannel() > kNumInputs;
    const std::string number =
        std::to_string(scanner ? ScannerChannel(ActualChannel()) : ActualChannel());
    const std::string reply = Read(Line(), scanner ? READ_SCANNER_PROBE_INDEX : READ_PROBE_INDEX,
                                   {{&CommandParams::Channel, number}});
    SetProbeIndex(ToInteger(NumberFromText(reply)));
    return true;
  });
}

}  // namespace vane
