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
      run.Start(SubstituteParams(ResourceText(110), Model()),
                PercentShare(NumCalParams() + kOtherSettings));
      const bool settings = run.Steps({
          {ResourceText(131), [&] { return UpdateFilterType(); }},
          {ResourceText(148), [&] { return UpdateFilterResponseTime(); }},
          {ResourceText(253), [&] { return UpdateFilterThreshold(); }},
          {ResourceText(133), [&] { return UpdateUnits(); }},
          {ResourceText(135), [&] { return UpdateSampleAction(); }},
          {ResourceText(235), [&] { return UpdateSampleN(); }},
          {ResourceText(134), [&] { return UpdateInterval(); }},
          {ResourceText(228), [&] { return UpdateConversionTime(); }},
          {ResourceText(229), [&] { return UpdateIntegrationTime(); }},
          {ResourceText(257), [&] { return UpdateResolution(); }},
          {ResourceText(258), [&] { return UpdateResistanceResolution(); }},
          {ResourceText(259), [&] { return UpdateRatioResolution(); }},
          {ResourceText(260), [&] { return UpdateChannelMode(); }},
          {ResourceText(234), [&] { return UpdateRepetitions(); }},
      });
      if (!settings) return false;
      if (CalParamPasscodeState() != ET312BPasscodeState::PS_ENABLED) return true;
      SetBusyCursor(true);
      for (std::int16_t index = 0; index < NumCalParams(); ++index) {
        const std::string name = ResourceText(156) + " " + std::to_string(index + 1);
        if (!run.Step({name, [&] { return UpdateCalParam(index); }})) return false;
      }
      return run.Steps({
          {ResourceText(244), [&] { return UpdateADC(); }},
          {ResourceText(245), [&] { return UpdateOven(); }},
      });
    });
  });
}

}  // namespace vane
