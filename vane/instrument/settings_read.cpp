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

bool Query(CVaneT312B& instrument, const SettingRow& row) {
  return Exchange(instrument, "Query" + std::string(row.name), [&] {
    return row.store(instrument, Read(LineOf(instrument), row.readid,
                                      {{&CommandParams::Index, IndexText(row)}}));
  });
}

bool QueryRows(CVaneT312B& instrument, CLongRun& run, std::span<const SettingRow* const> rows) {
  return run.Steps(rows, [&](const SettingRow& row) { return Query(instrument, row); });
}

bool CVaneT312B::QueryUnits() { return Query(*this, kUnits); }
bool CVaneT312B::QuerySampleAction() { return Query(*this, kSampleAction); }
bool CVaneT312B::QueryChannelMode() { return Query(*this, kChannelMode); }
bool CVaneT312B::QueryScannerScanMode() { return Query(*this, kScannerScanMode); }

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
      if (!run.Steps(layout) || !QueryRows(*this, run, kReadoutSettings) ||
          !QueryRows(*this, run, kCalibrationSettings)) {
        return false;
      }
      run.Hide();
      if (HasScanners() && !QueryScannerSettings(*this, components_, run, frm)) return false;
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
