// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_run.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/probe_record.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {

bool CVaneT312BPRTTHRMChannel::QueryInfo(ui::CWindow* frm) {
  return Labelled(kChannelClass, "QueryInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      const ChannelPlace place = PlaceOf(*this);
      run.Start(
          SubstituteParams(ResourceText(place.scanner ? EText::READING_SCANNER_CHANNEL_SETTINGS
                                                      : EText::READING_CHANNEL_SETTINGS),
                           place.number),
          100);
      const std::string name =
          std::to_string(ActualChannel()) + " " + ResourceText(EText::PROBE_INDEX);
      if (!run.Step({name, [&] { return QueryProbeIndex(); }})) return false;
      run.Hide();  // the probe's record has a reporter of its own
      return run.LastStep({name, [&] { return QueryProbeInfo(ProbeIndex(), frm); }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeInfo(std::int16_t prbidx, ui::CWindow* frm) {
  return Labelled(kChannelClass, "QueryProbeInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      run.Start(
          SubstituteParams(ResourceText(EText::READING_PROBE_INFORMATION), std::to_string(prbidx)),
          PercentShare(std::ssize(kProbeRecord) + 1));
      const auto query = [&](const ProbeRow& row) { return QueryProbe(*this, row, prbidx); };
      if (!run.Steps(kProbeRecord, query)) return false;
      if (!run.Step({TitleOf(kConversionType), [&] { return QueryConversionType(prbidx); }})) {
        return false;
      }
      run.Hide();  // the conversion has a reporter of its own
      return run.LastStep({TitleOf(kConversionType), [&] {
                             return RunConversion(*this, components_, kConversionRead, prbidx, frm);
                           }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeIndex() {
  return Labelled(kChannelClass, "QueryProbeIndex", [&] {
    const ChannelPlace place = PlaceOf(*this);
    const std::string reply =
        Read(LineOf(*this), place.readprobeindex, {{&CommandParams::Channel, place.number}});
    SetProbeIndex(ToInteger(NumberFromText(reply)));
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeSerialNumber(std::int16_t prbidx) {
  return QueryProbe(*this, kProbeSerial, prbidx);
}
bool CVaneT312BPRTTHRMChannel::QueryRefResistor(std::int16_t prbidx) {
  return QueryProbe(*this, kRefResistor, prbidx);
}
bool CVaneT312BPRTTHRMChannel::QueryCurrent(std::int16_t prbidx) {
  return QueryProbe(*this, kProbeCurrent, prbidx);
}
bool CVaneT312BPRTTHRMChannel::Query3WireOffset(std::int16_t prbidx) {
  return QueryProbe(*this, kProbe3WireOffset, prbidx);
}

bool CVaneT312BPRTTHRMChannel::QueryConversionType(std::int16_t prbidx) {
  return Labelled(kChannelClass, "QueryConversionType", [&] {
    CVaneCommunications& line = LineOf(*this);
    if (prbidx == -1) {
      if (!QueryProbeIndex()) return false;
      prbidx = ProbeIndex();
    }
    SetFields(line, {{&CommandParams::Probe, std::to_string(prbidx)}});
    // The reply may hold the sign for ohms. A failed read leaves the check off.
    CVaneCOMPort& port = line.COMPort();
    const bool kept = port.CheckNonAscii();
    port.SetCheckNonAscii(false);
    const std::string reply = UpperCase(line.ReadSetting(kConversionType.readid));
    port.SetCheckNonAscii(kept);
    kConversionType.store(*this, reply);
    return true;
  });
}

}  // namespace vane
