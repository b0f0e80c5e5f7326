// The settings of the instrument, written one by one and in one run.
#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {

bool CVaneT312B::Update(const SettingRow& row) {
  return Exchange(*this, "Update" + std::string(row.name), [&] {
    Write(LineOf(*this), WriteOf(row.readid),
          {{row.field, row.text(*this)}, {&CommandParams::Index, IndexText(row)}});
    return true;
  });
}

bool CVaneT312B::UpdateRows(CLongRun& run, std::span<const SettingRow* const> rows) {
  return run.Steps(rows, [this](const SettingRow& row) { return Update(row); });
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

bool CVaneT312B::UpdateInfo(ui::CWindow* frm, bool) {
  return Exchange(*this, "UpdateInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, false)) return false;
      if (HasScanners() && !UpdateScannerSettings(run, frm)) return false;
      run.Start(SubstituteParams(ResourceText(EText::UPDATING_SETTINGS), Model()),
                PercentShare(std::ssize(kReadoutSettings) + std::ssize(kCalibrationSettings)));
      if (!UpdateRows(run, kReadoutSettings)) return false;
      if (CalParamPasscodeState() != ET312BPasscodeState::PS_ENABLED) return true;
      SetBusyCursor(true);
      return UpdateRows(run, kCalibrationSettings);
    });
  });
}

}  // namespace vane
