// The assigned probe of a channel and the record of a probe, without the values of its conversion.
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/module.h"
#include "vane/instrument/operations.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

// Searched from the top, since the shorter texts stand within the longer ones.
constexpr struct {
  std::string_view text;
  ET312BProbeRefResistor resistor;
} kRefResistors[] = {
    {"EXT", ET312BProbeRefResistor::PRR_EXTERNAL},
    {"10 KOHM", ET312BProbeRefResistor::PRR_10K_OHM},
    {"100 OHM", ET312BProbeRefResistor::PRR_100_OHM},
    {"10 OHM", ET312BProbeRefResistor::PRR_10_OHM},
    {"1 OHM", ET312BProbeRefResistor::PRR_1_OHM},
};

ET312BProbeRefResistor RefResistorIn(std::string_view reply) {
  for (const auto& row : kRefResistors) {
    if (Contains(reply, row.text)) return row.resistor;
  }
  return ET312BProbeRefResistor::PRR_NONE;
}

}  // namespace

CVaneCommunications& CVaneT312BPRTTHRMChannel::Line() const {
  if (module_ == nullptr || module_->BaseUnit() == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "The channel belongs to no instrument.");
  }
  return LineOf(*module_->BaseUnit());
}

bool CVaneT312BPRTTHRMChannel::QueryInfo(ui::CWindow* frm) {
  return Labelled(kClassName, "QueryInfo", [&] {
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
  return Labelled(kClassName, "QueryProbeInfo", [&] {
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
      return run.LastStep({EText::CONVERSION_TYPE, [&] { return QueryCoefficients(prbidx, frm); }});
    });
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeIndex() {
  return Labelled(kClassName, "QueryProbeIndex", [&] {
    const bool scanner = ActualChannel() > kNumInputs;
    const std::int32_t number = scanner ? ScannerChannel(ActualChannel()) : ActualChannel();
    const std::string reply =
        Read(Line(), scanner ? ECommand::READ_SCANNER_PROBE_INDEX : ECommand::READ_PROBE_INDEX,
             {{&CommandParams::Channel, std::to_string(number)}});
    SetProbeIndex(ToInteger(NumberFromText(reply)));
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::QueryProbeSerialNumber(std::int16_t prbidx) {
  return Query("ProbeSerialNumber", ECommand::READ_PROBE_SERIAL, prbidx,
               [&](const std::string& reply) { probe_->SetSerialNumber(reply); });
}

bool CVaneT312BPRTTHRMChannel::QueryRefResistor(std::int16_t prbidx) {
  return Query("RefResistor", ECommand::READ_REF_RESISTOR, prbidx,
               [&](const std::string& reply) { SetProbeRefResistor(RefResistorIn(reply)); });
}

bool CVaneT312BPRTTHRMChannel::QueryCurrent(std::int16_t prbidx) {
  return QueryNumber("Current", ECommand::READ_PROBE_CURRENT, prbidx,
                     [&](double value) { SetProbeCurrent(value); });
}

bool CVaneT312BPRTTHRMChannel::Query3WireOffset(std::int16_t prbidx) {
  return QueryNumber("3WireOffset", ECommand::READ_PROBE_3WIRE_OFFSET, prbidx,
                     [&](double value) { SetProbe3WireOffset(value); });
}

}  // namespace vane
