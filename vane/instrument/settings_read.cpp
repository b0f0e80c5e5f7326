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
      const auto setting = [&](EText name, const SettingRow& row) {
        return RunStep{ResourceText(name), [this, &row] { return Query(row); }};
      };
      run.Start(SubstituteParams(ResourceText(EText::READING_SETTINGS), Model()),
                PercentShare(NumCalParams() + 21));
      run.Advance();
      const bool settings = run.Steps({
          {ResourceText(EText::CHANNELS), [&] { return topology_.QueryNumChannels(); }},
          {ResourceText(EText::NUMBER_OF_MODULES), [&] { return topology_.QueryNumModules(); }},
          {ResourceText(EText::PASSCODE_PROTECTION),
           [&] { return QueryPasscodeProtectionSettings(*this); }},
          {ResourceText(EText::CHANNELS), [&] { return topology_.QueryNumChannels(); }},
          setting(EText::FILTER_TYPE, kFilterType),
          setting(EText::FILTER_RESPONSE_TIME, kFilterResponseTime),
          setting(EText::THRESHHOLD, kFilterThreshold),
          setting(EText::UNITS, kUnits),
          setting(EText::SAMPLE_ACTION, kSampleAction),
          setting(EText::SAMPLE_N, kSampleN),
          setting(EText::SAMPLE_INTERVAL, kInterval),
          setting(EText::CONVERSION_TIME, kConversionTime),
          setting(EText::INTEGRATION_TIME, kIntegrationTime),
          setting(EText::TEMPERATURE_RESOLUTION, kResolution),
          setting(EText::RESISTANCE_RESOLUTION, kResistanceResolution),
          setting(EText::RATIO_RESOLUTION, kRatioResolution),
          setting(EText::CHANNEL_MODE, kChannelMode),
          setting(EText::REPETITIONS, kRepetitions),
      });
      if (!settings) return false;
      for (std::int16_t index = 0; index < NumCalParams(); ++index) {
        const std::string name =
            ResourceText(EText::CALIBRATION_PARAMETER) + " " + std::to_string(index + 1);
        if (!run.Step({name, [&] { return QueryCalParam(index); }})) return false;
      }
      if (!run.Steps({setting(EText::ADC, kADC), setting(EText::OVEN, kOven)})) return false;
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
      run.Start(SubstituteParams(ResourceText(EText::READING_SETTINGS), Model()), PercentShare(3));
      run.Advance();
      return run.Steps({
          {ResourceText(EText::CHANNELS), [&] { return topology_.QueryNumChannels(); }},
          {ResourceText(EText::NUMBER_OF_MODULES), [&] { return topology_.QueryNumModules(); }},
      });
    });
  });
}

}  // namespace vane
