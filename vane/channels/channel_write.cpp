// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_run.h"
#include "vane/channels/module.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/probe_words.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
bool CVaneT312BPRTTHRMChannel::UpdateInfo(ui::CWindow* frm) {
  return Labelled(kChannelClass, "UpdateInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      const bool scanner = ActualChannel() > kNumInputs;
      const std::int32_t shown = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
      run.Start(SubstituteParams(ResourceText(scanner ? EText::UPDATING_SCANNER_CHANNEL_SETTINGS
                                                      : EText::UPDATING_CHANNEL_SETTINGS),
                                 std::to_string(shown)),
                100);
      const std::string name =
          std::to_string(ActualChannel()) + " " + ResourceText(EText::PROBE_INDEX);
      if (!run.Step({name, [&] { return UpdateProbeIndex(); }})) return false;
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
          PercentShare(5));
      const bool record = run.Steps({
          {EText::SERIAL, [&] { return UpdateProbeSerial(prbidx); }},
          {EText::REFERENCE, [&] { return UpdateRefResistor(prbidx); }},
          {EText::CURRENT, [&] { return UpdateCurrent(prbidx); }},
          {EText::OFFSET_3W, [&] { return Update3WireOffset(prbidx); }},
      });
      if (!record) return false;
      if (Module()->BaseUnit()->ConvPasscodeState() != ET312BPasscodeState::PS_ENABLED) {
        return true;
      }
      if (!run.Step({EText::CONVERSION_TYPE, [&] { return UpdateConversionType(prbidx); }})) {
        return false;
      }
      run.Hide();  // the conversion has a reporter of its own
      return run.LastStep(
          {EText::CONVERSION_TYPE,
           [&] { return RunConversion(*this, components_, kConversionWrite, prbidx, frm); }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateProbeIndex() {
  return Labelled(kChannelClass, "UpdateProbeIndex", [&] {
    const bool scanner = ActualChannel() > kNumInputs;
    const std::int32_t number = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
    Write(LineOf(*this),
          scanner ? ECommand::WRITE_SCANNER_PROBE_INDEX : ECommand::WRITE_PROBE_INDEX,
          {{&CommandParams::Probe, std::to_string(ProbeIndex())},
           {&CommandParams::Channel, std::to_string(number)}});
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateProbeSerial(std::int16_t prbidx) {
  return UpdateProbe(*this, {"ProbeSerial", ECommand::READ_PROBE_SERIAL}, prbidx,
                     [&] { return probe_->SerialNumber(); });
}

bool CVaneT312BPRTTHRMChannel::UpdateRefResistor(std::int16_t prbidx) {
  return UpdateProbe(*this, {"RefResistor", ECommand::READ_REF_RESISTOR}, prbidx, [&] {
    return CodeOf<ET312BProbeRefResistor>(ProbeRefResistor(), kRefResistors);
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateCurrent(std::int16_t prbidx) {
  return UpdateProbe(*this, {"Current", ECommand::READ_PROBE_CURRENT}, prbidx, [&] {
    return ToDotDecimal(FormatNumber(ProbeCurrent(), ProbeCurrentFormat()));
  });
}

bool CVaneT312BPRTTHRMChannel::Update3WireOffset(std::int16_t prbidx) {
  return UpdateProbe(*this, {"3WireOffset", ECommand::READ_PROBE_3WIRE_OFFSET}, prbidx, [&] {
    return ToDotDecimal(FormatNumber(Probe3WireOffset(), Probe3WireOffsetFormat()));
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateConversionType(std::int16_t prbidx) {
  return UpdateProbe(*this, {"ConversionType", ECommand::READ_CONVERSION_TYPE}, prbidx, [&] {
    return CodeOf<EVaneConversionType>(probe_->ConversionType(), kConversionTypes);
  });
}

}  // namespace vane
