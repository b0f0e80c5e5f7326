// The settings of the instrument, read one by one and in one run.
#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

// The proof that the instrument is there counts as a step of a read.
constexpr std::ptrdiff_t kHead = 1;

}  // namespace

bool CVaneT312B::Query(const SettingRow& row) {
  return Exchange(*this, "Query" + std::string(row.name), [&] {
    return row.store(*this,
                     Read(LineOf(*this), row.readid, {{&CommandParams::Index, IndexText(row)}}));
  });
}

bool CVaneT312B::QueryRows(CLongRun& run, std::span<const SettingRow* const> rows) {
  return run.Steps(rows, [this](const SettingRow& row) { return Query(row); });
}

bool CVaneT312B::QueryUnits() { return Query(kUnits); }
bool CVaneT312B::QuerySampleAction() { return Query(kSampleAction); }
bool CVaneT312B::QueryChannelMode() { return Query(kChannelMode); }
bool CVaneT312B::QueryScannerScanMode() { return Query(kScannerScanMode); }

bool CVaneT312B::QueryInfo(ui::CWindow* frm, bool inclmodules, bool inclchannels) {
  return Exchange(*this, "QueryInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, true)) return false;
      const std::initializer_list<RunStep> layout = {
          {EText::CHANNELS, [&] { return topology_.QueryNumChannels(); }},
          {EText::NUMBER_OF_MODULES, [&] { return topology_.QueryNumModules(); }},
          {EText::PASSCODE_PROTECTION, [&] { return QueryPasscodeProtectionSettings(*this); }},
          {EText::CHANNELS, [&] { return topology_.QueryNumChannels(); }},
      };
      run.Start(SubstituteParams(ResourceText(EText::READING_SETTINGS), Model()),
                PercentShare(kHead + std::ssize(layout) + std::ssize(kReadoutSettings) +
                             std::ssize(kCalibrationSettings)));
      run.Advance();
      if (!run.Steps(layout) || !QueryRows(run, kReadoutSettings) ||
          !QueryRows(run, kCalibrationSettings)) {
        return false;
      }
      run.Hide();
      if (HasScanners() && !QueryScannerSettings(run, frm)) return false;
      if (inclmodules) {
        for (std::int16_t idx = 0; idx < NumModules(); ++idx) {
          ModuleOf(*this, idx).QueryInfo(frm, inclchannels);
        }
      }
      return true;
    });
  });
}

bool CVaneT312B::QueryChannelInfo() {
  return Exchange(*this, "QueryChannelInfo", [&] {
    return RunLong(components_, kReadRun, std::nullopt, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, true)) return false;
      const std::initializer_list<RunStep> layout = {
          {EText::CHANNELS, [&] { return topology_.QueryNumChannels(); }},
          {EText::NUMBER_OF_MODULES, [&] { return topology_.QueryNumModules(); }},
      };
      run.Start(SubstituteParams(ResourceText(EText::READING_SETTINGS), Model()),
                PercentShare(kHead + std::ssize(layout)));
      run.Advance();
      return run.Steps(layout);
    });
  });
}

}  // namespace vane
