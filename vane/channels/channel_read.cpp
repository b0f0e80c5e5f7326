// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_run.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/probe_words.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
bool CVaneT312BPRTTHRMChannel::QueryInfo(ui::CWindow* frm) {
  return Labelled(kChannelClass, "QueryInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      const bool scanner = ActualChannel() > kNumInputs;
      const std::int32_t shown = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
      run.Start(SubstituteParams(ResourceText(scanner ? EText::READING_SCANNER_CHANNEL_SETTINGS
                                                      : EText::READING_CHANNEL_SETTINGS),
                                 std::to_string(shown)),
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
          PercentShare(5));
      const bool record = run.Steps({
          {EText::SERIAL, [&] { return QueryProbeSerialNumber(prbidx); }},
          {EText::REFERENCE, [&] { return QueryRefResistor(prbidx); }},
          {EText::CURRENT, [&] { return QueryCurrent(prbidx); }},
          {EText::OFFSET_3W, [&] { return Query3WireOffset(prbidx); }},
          {EText::CONVERSION_TYPE, [&] { return QueryConversionType(prbidx); }},
      });
      if (!record) return false;
      run.Hide();  // the conversion has a reporter of its own
      return run.LastStep({EText::CONVERSION_TYPE, [&] {
                             return RunConversion(*this, components_, kConversionRead, prbidx, frm);
                           }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeIndex() {
  return Labelled(kChannelClass, "QueryProbeIndex", [&] {
    const bool scanner = ActualChannel() > kNumInputs;
    const std::int32_t number = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
    const std::string reply = Read(
        LineOf(*this), scanner ? ECommand::READ_SCANNER_PROBE_INDEX : ECommand::READ_PROBE_INDEX,
        {{&CommandParams::Channel, std::to_string(number)}});
    SetProbeIndex(ToInteger(NumberFromText(reply)));
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeSerialNumber(std::int16_t prbidx) {
  return QueryProbe(*this, {"ProbeSerialNumber", ECommand::READ_PROBE_SERIAL}, prbidx,
                    [&](const std::string& reply) { probe_->SetSerialNumber(reply); });
}

bool CVaneT312BPRTTHRMChannel::QueryRefResistor(std::int16_t prbidx) {
  return QueryProbe(*this, {"RefResistor", ECommand::READ_REF_RESISTOR}, prbidx,
                    [&](const std::string& reply) {
                      SetProbeRefResistor(ValueOf<ET312BProbeRefResistor>(
                          reply, kRefResistors, ET312BProbeRefResistor::PRR_NONE));
                    });
}

bool CVaneT312BPRTTHRMChannel::QueryCurrent(std::int16_t prbidx) {
  return QueryProbe(*this, {"Current", ECommand::READ_PROBE_CURRENT}, prbidx,
                    [&](const std::string& reply) { SetProbeCurrent(NumberFromText(reply)); });
}

bool CVaneT312BPRTTHRMChannel::Query3WireOffset(std::int16_t prbidx) {
  return QueryProbe(*this, {"3WireOffset", ECommand::READ_PROBE_3WIRE_OFFSET}, prbidx,
                    [&](const std::string& reply) { SetProbe3WireOffset(NumberFromText(reply)); });
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
    const std::string reply = UpperCase(line.ReadSetting(ECommand::READ_CONVERSION_TYPE));
    port.SetCheckNonAscii(kept);
    SetConversionType(
        ValueOf<EVaneConversionType>(reply, kConversionTypes, EVaneConversionType::CONV_NONE));
    return true;
  });
}

}  // namespace vane
