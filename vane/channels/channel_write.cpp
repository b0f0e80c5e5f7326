// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_run.h"
#include "vane/channels/module.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/probe_record.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

bool UpdateProbeIndex(const CVaneT312BPRTTHRMChannel& channel) {
  return Labelled(kChannelClass, "UpdateProbeIndex", [&] {
    const ChannelPlace place = PlaceOf(channel);
    Write(LineOf(channel), WriteOf(place.readprobeindex),
          {{&CommandParams::Probe, std::to_string(channel.ProbeIndex())},
           {&CommandParams::Channel, place.number}});
    return true;
  });
}

}  // namespace

bool CVaneT312BPRTTHRMChannel::UpdateInfo(ui::CWindow* frm) {
  return Labelled(kChannelClass, "UpdateInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      const ChannelPlace place = PlaceOf(*this);
      run.Start(
          SubstituteParams(ResourceText(place.scanner ? EText::UPDATING_SCANNER_CHANNEL_SETTINGS
                                                      : EText::UPDATING_CHANNEL_SETTINGS),
                           place.number),
          100);
      const std::string name =
          std::to_string(ActualChannel()) + " " + ResourceText(EText::PROBE_INDEX);
      if (!run.Step({name, [&] { return UpdateProbeIndex(*this); }})) return false;
      run.Hide();  // the probe's record has a reporter of its own
      return run.LastStep({name, [&] { return UpdateProbeInfo(ProbeIndex(), frm); }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateProbeInfo(std::int16_t prbidx, ui::CWindow* frm) {
  return Labelled(kChannelClass, "UpdateProbeInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      run.Start(
          SubstituteParams(ResourceText(EText::UPDATING_PROBE_INFORMATION), std::to_string(prbidx)),
          PercentShare(std::ssize(kProbeRecord) + 1));
      const auto update = [&](const ProbeRow& row) { return UpdateProbe(*this, row, prbidx); };
      if (!run.Steps(kProbeRecord, update)) return false;
      if (Module()->BaseUnit()->ConvPasscodeState() != ET312BPasscodeState::PS_ENABLED) {
        return true;
      }
      if (!run.Step({TitleOf(kConversionType), [&] { return update(kConversionType); }})) {
        return false;
      }
      run.Hide();  // the conversion has a reporter of its own
      return run.LastStep(
          {TitleOf(kConversionType),
           [&] { return RunConversion(*this, components_, kConversionWrite, prbidx, frm); }});
    });
  });
}

}  // namespace vane
