// The settings of the instrument, read one by one and in one run.
#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {
bool CVaneT312B::Query(std::string_view name, ECommand id,
                       const std::function<bool(const std::string&)>& store,
                       std::initializer_list<FieldText> fields) {
  return Exchange(*this, "Query" + std::string(name),
                  [&] { return store(Read(LineOf(*this), id, fields)); });
}

bool CVaneT312B::Query(const SettingRow& row) {
  return Query(row.name, row.readid,
               [&](const std::string& reply) { return row.store(*this, reply); });
}

bool CVaneT312B::QueryUnits() { return Query(kUnits); }
bool CVaneT312B::QuerySampleAction() { return Query(kSampleAction); }
bool CVaneT312B::QueryChannelMode() { return Query(kChannelMode); }
bool CVaneT312B::QueryScannerScanMode() { return Query(kScannerScanMode); }

bool CVaneT312B::QueryCalParam(std::int16_t index) {
  return Query("CalParam", ECommand::READ_CAL_PARAM,
               [&](const std::string& reply) {
                 SetCalParams(static_cast<ET312BCalParams>(index), NumberFromText(reply));
                 return true;
               },
               {{&CommandParams::Index, std::to_string(index)}});
}

bool CVaneT312B::QueryInfo(ui::CWindow* frm, bool inclmodules, bool inclchannels) {
  return Exchange(*this, "QueryInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      if (!ProveInstrument(*this, run, true)) return false;
      const auto setting = [&](std::int16_t name, const SettingRow& row) {
        return RunStep{ResourceText(name), [this, &row] { return Query(row); }};
      };
      run.Start(SubstituteParams(ResourceText(105), Model()), PercentShare(NumCalParams() + 21));
      run.Advance();
      const bool settings = run.Steps({
          {ResourceText(127), [&] { return topology_.QueryNumChannels(); }},
          {ResourceText(150), [&] { return topology_.QueryNumModules(); }},
          {ResourceText(246), [&] { return QueryPasscodeProtectionSettings(*this); }},
          {ResourceText(127), [&] { return topology_.QueryNumChannels(); }},
          setting(131, kFilterType),
          setting(148, kFilterResponseTime),
          setting(253, kFilterThreshold),
          setting(133, kUnits),
          setting(135, kSampleAction),
          setting(235, kSampleN),
          setting(134, kInterval),
          setting(228, kConversionTime),
          setting(229, kIntegrationTime),
          setting(257, kResolution),
          setting(258, kResistanceResolution),
          setting(259, kRatioResolution),
          setting(260, kChannelMode),
          setting(234, kRepetitions),
      });
      if (!settings) return false;
      for (std::int16_t index = 0; index < NumCalParams(); ++index) {
        const std::string name = ResourceText(156) + " " + std::to_string(index + 1);
        if (!run.Step({name, [&] { return QueryCalParam(index); }})) return false;
      }
      if (!run.Steps({setting(244, kADC), setting(245, kOven)})) return false;
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
      run.Start(SubstituteParams(ResourceText(105), Model()), PercentShare(3));
      run.Advance();
      return run.Steps({
          {ResourceText(127), [&] { return topology_.QueryNumChannels(); }},
          {ResourceText(150), [&] { return topology_.QueryNumModules(); }},
      });
    });
  });
}

}  // namespace vane
