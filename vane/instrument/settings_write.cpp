// The settings of the instrument, written one by one and in one run.
#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

// Beside the calibration parameters; the scanner has a stretch of its own.
constexpr std::int32_t kOtherSettings = 16;

}  // namespace

bool CVaneT312B::Update(const SettingRow& row) {
  return Exchange(*this, "Update" + std::string(row.name), [&] {
    Write(LineOf(*this), WriteOf(row.readid), {{row.field, row.text(*this)}});
    return true;
  });
}

bool CVaneT312B::UpdateUnits() { return Update(kUnits); }
bool CVaneT312B::UpdateSampleAction() { return Update(kSampleAction); }
bool CVaneT312B::UpdateInterval(ui::CWindow*) { return Update(kInterval); }
bool CVaneT312B::UpdateConversionTime() { return Update(kConversionTime); }
bool CVaneT312B::UpdateIntegrationTime() { return Update(kIntegrationTime); }
bool CVaneT312B::UpdateSampleN() { return Update(kSampleN); }
bool CVaneT312B::UpdateRepetitions() { return Update(kRepetitions); }
bool CVaneT312B::UpdateResolution() { return Update(kResolution); }
bool CVaneT312B::UpdateResistanceResolution() { return Update(kResistanceResolution); }
bool CVaneT312B::UpdateRatioResolution() { return Update(kRatioResolution); }
bool CVaneT312B::UpdateADC() { return Update(kADC); }
bool CVaneT312B::UpdateOven() { return Update(kOven); }
bool CVaneT312B::UpdateFilterType() { return Update(kFilterType); }
bool CVaneT312B::UpdateFilterResponseTime() { return Update(kFilterResponseTime); }
bool CVaneT312B::UpdateFilterThreshold() { return Update(kFilterThreshold); }

bool CVaneT312B::UpdateCalParam(std::int16_t index) {
  return Exchange(*this, "UpdateCalParam", [&] {
    const auto cp = static_cast<ET312BCalParams>(index);
    Write(
        LineOf(*this), ECommand::WRITE_CAL_PARAM,
        {{&CommandParams::Index, std::to_string(index)},
         {&CommandParams::value, ToDotDecimal(FormatNumber(CalParams(cp), CalParamsFormat(cp)))}});
    return true;
  });
}

bool CVaneT312B::UpdateInfo(ui::CWindow* frm, bool) {
  return Exchange(*this, "UpdateInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, false)) return false;
      if (HasScanners() && !UpdateScannerSettings(run, frm)) return false;
      run.Start(SubstituteParams(ResourceText(EText::UPDATING_SETTINGS), Model()),
                PercentShare(NumCalParams() + kOtherSettings));
      const bool settings = run.Steps({
          {ResourceText(EText::FILTER_TYPE), [&] { return UpdateFilterType(); }},
          {ResourceText(EText::FILTER_RESPONSE_TIME), [&] { return UpdateFilterResponseTime(); }},
          {ResourceText(EText::THRESHHOLD), [&] { return UpdateFilterThreshold(); }},
          {ResourceText(EText::UNITS), [&] { return UpdateUnits(); }},
          {ResourceText(EText::SAMPLE_ACTION), [&] { return UpdateSampleAction(); }},
          {ResourceText(EText::SAMPLE_N), [&] { return UpdateSampleN(); }},
          {ResourceText(EText::SAMPLE_INTERVAL), [&] { return UpdateInterval(); }},
          {ResourceText(EText::CONVERSION_TIME), [&] { return UpdateConversionTime(); }},
          {ResourceText(EText::INTEGRATION_TIME), [&] { return UpdateIntegrationTime(); }},
          {ResourceText(EText::TEMPERATURE_RESOLUTION), [&] { return UpdateResolution(); }},
          {ResourceText(EText::RESISTANCE_RESOLUTION),
           [&] { return UpdateResistanceResolution(); }},
          {ResourceText(EText::RATIO_RESOLUTION), [&] { return UpdateRatioResolution(); }},
          {ResourceText(EText::CHANNEL_MODE), [&] { return UpdateChannelMode(); }},
          {ResourceText(EText::REPETITIONS), [&] { return UpdateRepetitions(); }},
      });
      if (!settings) return false;
      if (CalParamPasscodeState() != ET312BPasscodeState::PS_ENABLED) return true;
      SetBusyCursor(true);
      for (std::int16_t index = 0; index < NumCalParams(); ++index) {
        const std::string name =
            ResourceText(EText::CALIBRATION_PARAMETER) + " " + std::to_string(index + 1);
        if (!run.Step({name, [&] { return UpdateCalParam(index); }})) return false;
      }
      return run.Steps({
          {ResourceText(EText::ADC), [&] { return UpdateADC(); }},
          {ResourceText(EText::OVEN), [&] { return UpdateOven(); }},
      });
    });
  });
}

}  // namespace vane
