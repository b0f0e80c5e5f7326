// What the instrument measures and how it walks its channels.
#include <algorithm>
#include <cmath>
#include <string>

#include "vane/instrument/operations.h"
#include "vane/instrument/settings_table.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/long_run.h"
#include "vane/support/numbering.h"
#include "vane/support/text_table.h"
#include "vane/support/timing.h"

namespace vane {
namespace {

template <class Enum>
std::string CodeText(Enum value) {
  return std::to_string(static_cast<std::int32_t>(value));
}

// The text up to the next comma, which goes with it.
std::string CutItem(std::string& list) {
  const std::size_t comma = list.find(',');
  std::string item = list.substr(0, comma);
  list.erase(0, comma == list.npos ? comma : comma + 1);
  return item;
}

bool QueryScanChannelList(CVaneT312B& instrument, const Components& components, ui::CWindow* frm) {
  return Exchange(instrument, "QueryScanChannelList", [&] {
    instrument.SetScanChannels({});
    return RunLong(components, kScanSequenceRun, frm, [&](CLongRun& run) {
      const std::int32_t steps = instrument.ScanSeqSteps();
      run.Start(ResourceText(EText::READING_SCAN_SEQUENCE_STEPS), PercentShare(steps));
      CVaneCommunications& line = LineOf(instrument);
      line.params().ClearAll();
      for (std::int32_t step = 1; step <= steps; ++step) {
        line.params().Index = std::to_string(step);
        // A step that was never set answers nothing and counts as Input 2.
        const std::int16_t value = ToInteger(
            ToInteger(NumberFromText(line.ReadSetting(ECommand::READ_SCAN_STEP))) + kNumInputs);
        instrument.SetScanChannels(instrument.ScanChannels() + std::to_string(value) + ",");
        if (!run.Advance()) break;
      }
      if (instrument.ScanChannels().size() > 1) {
        instrument.SetScanChannels(
            instrument.ScanChannels().substr(0, instrument.ScanChannels().size() - 1));
      }
      return true;
    });
  });
}

bool UpdateScanScanMode(const CVaneT312B& instrument, bool override, bool scmode) {
  return Exchange(instrument, "UpdateScanScanMode", [&] {
    if (!instrument.HasScanners()) return false;
    using enum ET312BScannerScanMode;
    const std::string mode =
        override ? CodeText(scmode ? SSM_USER_DEFINED : SSM_SCAN) : CodeText(instrument.ScanMode());
    Write(LineOf(instrument), ECommand::WRITE_SCANNER_SCAN_MODE, {{&CommandParams::value, mode}});
    return true;
  });
}

}  // namespace

bool CVaneT312B::UpdateChannelMode() { return Update(*this, kChannelMode); }
bool CVaneT312B::UpdateScannerScanMode() { return Update(*this, kScannerScanMode); }
bool CVaneT312B::UpdateScanChannel() { return Update(*this, kScanChannel); }
bool CVaneT312B::UpdateScanSeqChannels() { return Update(*this, kScanSeqChannels); }
bool CVaneT312B::UpdateScanSeqSteps() { return Update(*this, kScanSeqSteps); }

bool QueryScannerSettings(CVaneT312B& instrument, const Components& components, CLongRun& run,
                          ui::CWindow* frm) {
  run.Finish();
  run.Start(
      SubstituteParams(ResourceText(EText::READING_SETTINGS), ModuleOf(instrument, 1).Model()),
      PercentShare(std::ssize(kScannerReads)));
  if (!QueryRows(instrument, run, kScannerReads)) return false;
  run.Hide();  // the sequence has a reporter of its own
  return run.Step(
      {EText::SCANNER_SEQUENCE, [&] { return QueryScanChannelList(instrument, components, frm); }});
}

bool UpdateScannerSettings(CVaneT312B& instrument, CLongRun& run, ui::CWindow* frm) {
  run.Start(
      SubstituteParams(ResourceText(EText::UPDATING_SETTINGS), ModuleOf(instrument, 1).Model()),
      PercentShare(std::ssize(kScannerWrites)));
  if (!UpdateRows(instrument, run, kScannerWrites)) return false;
  run.Hide();  // the sequence has a reporter of its own
  run.Finish();
  if (!run.LastStep(
          {EText::SCANNER_SEQUENCE, [&] { return instrument.UpdateScanChannelList(frm); }}))
    return false;
  run.Pause();
  return true;
}

bool CVaneT312B::UpdateScanChannelList(ui::CWindow* frm) {
  return Exchange(*this, "UpdateScanChannelList", [&] {
    if (!HasScanners()) return true;
    return RunLong(components_, kScanSequenceRun, frm, [&](CLongRun& run) {
      CVaneCommunications& line = LineOf(*this);
      line.params().ClearAll();
      std::string list = ScanChannels();
      // Of the items at hand: the host's events may change the properties while this goes on.
      const std::int16_t count = ToInteger(static_cast<double>(std::ranges::count(list, ',')) + 1);
      SetScanSeqSteps(count);
      UpdateScanSeqSteps();
      // The number of steps is the first stage.
      run.Start(ResourceText(EText::UPDATING_SCAN_SEQUENCE_STEPS), PercentShare(count + 1));
      run.Advance();
      const std::int32_t highest = ScannerChannel(NumChannels());
      for (std::int32_t step = 1; step <= count; ++step) {
        line.params().Index = std::to_string(step);
        // Whole before it is judged, so that what passes is what goes out.
        const double value = std::nearbyint(NumberFromText(CutItem(list))) - kNumInputs;
        if (value > highest || value < 0) {
          throw LibraryError(ERR_INVALID_CHANNEL, InstrumentLabel("UpdateScanChannelList"),
                             ResourceText(EText::INVALID_CHANNEL_IN_SCAN_SEQUENCE));
        }
        line.params().Channel = std::to_string(ToInteger(value));
        line.WriteSetting(ECommand::WRITE_SCAN_STEP);
        if (!run.Advance()) break;
        PauseMs(kWritePause);
      }
      return true;
    });
  });
}

bool CVaneT312B::UpdateScanMode(bool override, bool scmode) {
  return Exchange(*this, "UpdateScanMode", [&] {
    if (HasScanners()) {
      Write(LineOf(*this), ECommand::WRITE_CHANNEL_MODE,
            {{&CommandParams::value, CodeText(ET312BChannelMode::CM_SCANNER_SEQUENCE)}});
      LineOf(*this).params().value = "1";
      LineOf(*this).WriteSetting(ECommand::WRITE_REPETITIONS);
      return UpdateScanScanMode(*this, override, scmode);
    }
    using enum ET312BChannelMode;
    const std::string mode =
        override ? CodeText(scmode ? CM_ALTERNATE : CM_INPUT_1) : CodeText(ScanMode());
    Write(LineOf(*this), ECommand::WRITE_CHANNEL_MODE, {{&CommandParams::value, mode}});
    return true;
  });
}

}  // namespace vane
