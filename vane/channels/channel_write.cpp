// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/module.h"
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
namespace {

// The codes that the instrument takes in are shorter than what it answers. Anything else has no
// code: the command goes out without a value, which the instrument acknowledges and does not heed.

std::string CodeOf(ET312BProbeRefResistor resistor) {
  switch (resistor) {
    using enum ET312BProbeRefResistor;
    case PRR_EXTERNAL:
      return "EXT";
    case PRR_1_OHM:
      return "1";
    case PRR_10_OHM:
      return "10";
    case PRR_100_OHM:
      return "100";
    case PRR_10K_OHM:
      return "10K";
    default:
      return {};
  }
}

std::string CodeOf(EVaneConversionType type) {
  switch (type) {
    using enum EVaneConversionType;
    case CONV_ITS90:
      return "90";
    case CONV_IPTS68:
      return "68";
    case CONV_CVD:
      return "CVD";
    case CONV_POLYNOMIAL:
      return "POLY";
    case CONV_THERMISTOR_TR:
      return "TR";
    case CONV_THERMISTOR_RT:
      return "TT";
    case CONV_RESISTANCE:
      return "O";
    case CONV_WT90:
      return "W";
    case CONV_RATIO:
      return "R";
    default:
      return {};
  }
}

}  // namespace

bool CVaneT312BPRTTHRMChannel::UpdateInfo(ui::CWindow* frm) {
  return Labelled(kClassName, "UpdateInfo", [&] {
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
  return Labelled(kClassName, "UpdateProbeInfo", [&] {
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
          {EText::CONVERSION_TYPE, [&] { return UpdateCoefficients(prbidx, frm); }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateProbeIndex() {
  return Labelled(kClassName, "UpdateProbeIndex", [&] {
    const bool scanner = ActualChannel() > kNumInputs;
    const std::int32_t number = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
    Write(Line(), scanner ? ECommand::WRITE_SCANNER_PROBE_INDEX : ECommand::WRITE_PROBE_INDEX,
          {{&CommandParams::Probe, std::to_string(ProbeIndex())},
           {&CommandParams::Channel, std::to_string(number)}});
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateProbeSerial(std::int16_t prbidx) {
  return Update("ProbeSerial", ECommand::WRITE_PROBE_SERIAL, prbidx,
                [&] { return probe_->SerialNumber(); });
}

bool CVaneT312BPRTTHRMChannel::UpdateRefResistor(std::int16_t prbidx) {
  return Update("RefResistor", ECommand::WRITE_REF_RESISTOR, prbidx,
                [&] { return CodeOf(ProbeRefResistor()); });
}

bool CVaneT312BPRTTHRMChannel::UpdateCurrent(std::int16_t prbidx) {
  return Update("Current", ECommand::WRITE_PROBE_CURRENT, prbidx,
                [&] { return ToDotDecimal(FormatNumber(ProbeCurrent(), ProbeCurrentFormat())); });
}

bool CVaneT312BPRTTHRMChannel::Update3WireOffset(std::int16_t prbidx) {
  return Update("3WireOffset", ECommand::WRITE_PROBE_3WIRE_OFFSET, prbidx, [&] {
    return ToDotDecimal(FormatNumber(Probe3WireOffset(), Probe3WireOffsetFormat()));
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateConversionType(std::int16_t prbidx) {
  return Update("ConversionType", ECommand::WRITE_CONVERSION_TYPE, prbidx,
                [&] { return CodeOf(probe_->ConversionType()); });
}

}  // namespace vane
