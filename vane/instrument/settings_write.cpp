// The settings of the instrument, written one by one and in one run.
#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {

bool Update(const CVaneT312B& instrument, const SettingRow& row) {
  return Exchange(instrument, "Update" + std::string(row.name), [&] {
    Write(LineOf(instrument), WriteOf(row.readid),
          {{row.field, row.text(instrument)}, {&CommandParams::Index, IndexText(row)}});
    return true;
  });
}

bool UpdateRows(const CVaneT312B& instrument, CLongRun& run,
                std::span<const SettingRow* const> rows) {
  return run.Steps(rows, [&](const SettingRow& row) { return Update(instrument, row); });
}

bool CVaneT312B::UpdateUnits() { return Update(*this, kUnits); }
bool CVaneT312B::UpdateSampleAction() { return Update(*this, kSampleAction); }
bool CVaneT312B::UpdateInterval(ui::CWindow*) { return Update(*this, kInterval); }
bool CVaneT312B::UpdateConversionTime() { return Update(*this, kConversionTime); }
bool CVaneT312B::UpdateIntegrationTime() { return Update(*this, kIntegrationTime); }
bool CVaneT312B::UpdateSampleN() { return Update(*this, kSampleN); }
bool CVaneT312B::UpdateRepetitions() { return Update(*this, kRepetitions); }
bool CVaneT312B::UpdateResolution() { return Update(*this, kResolution); }
bool CVaneT312B::UpdateResistanceResolution() { return Update(*this, kResistanceResolution); }
bool CVaneT312B::UpdateRatioResolution() { return Update(*this, kRatioResolution); }

bool CVaneT312B::UpdateInfo(ui::CWindow* frm, bool) {
  return Exchange(*this, "UpdateInfo", [&] {
    return RunLong(components_, kWriteRun, frm, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, false)) return false;
      if (HasScanners() && !UpdateScannerSettings(*this, run, frm)) return false;
      run.Start(SubstituteParams(ResourceText(EText::UPDATING_SETTINGS), Model()),
                PercentShare(std::ssize(kReadoutSettings) + std::ssize(kCalibrationSettings)));
      if (!UpdateRows(*this, run, kReadoutSettings)) return false;
      if (CalParamPasscodeState() != ET312BPasscodeState::PS_ENABLED) return true;
      SetBusyCursor(true);
      return UpdateRows(*this, run, kCalibrationSettings);
    });
  });
}

}  // namespace vane
