// thermoscribe identify: who is on the line, and what hangs on it.

#include <cstdint>
#include <optional>
#include <string>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/channels/module.h"

namespace vane::thermoscribe {
namespace {

constexpr char kBehindModel = ',';

constexpr std::size_t kTitleColumns = 16;

// What could not be found out is none.
void ShowFindings(CHost& host) {
  const CVaneT312B& instrument = host.Instrument();
  std::optional<std::string> model;
  if (instrument.Identification().find(kBehindModel) != std::string::npos) {
    model = instrument.Model();
  }
  std::optional<double> firmware;
  std::optional<bool> isrecent;
  std::string firmwaretext = TextOf({});
  if (instrument.Firmware() != 0) {
    firmware = instrument.Firmware();
    isrecent = instrument.VerifyMinimumFirmware();
    const std::string minimum = TextOf(CVaneT312B::MinFirmwareRequired());
    firmwaretext =
        TextOf(*firmware) + (*isrecent ? " (recent enough: at least " + minimum + ")"
                                       : " (older than " + minimum + ": logs can't be downloaded)");
  }
  const Value numchannels =
      host.ProblemOfCounts().empty() ? Value(instrument.NumChannels()) : Value();

  std::string text;
  AddLine(text, "Model", kTitleColumns, TextOf(Known(model)));
  AddLine(text, "Firmware", kTitleColumns, firmwaretext);
  AddLine(text, "Identification", kTitleColumns, TextOf(instrument.Identification()));
  AddLine(text, "Channels", kTitleColumns, TextOf(numchannels));
  List modules;
  for (std::int16_t idx = 0; idx < instrument.NumModules(); ++idx) {
    const CModule* const md = instrument.Modules(idx);
    if (md == nullptr) continue;
    modules.emplace_back(Members{{"number", md->ModuleNumber()},
                                 {"model", md->Model()},
                                 {"numchannels", md->NumChannels()}});
    AddLine(text, "Module " + TextOf(md->ModuleNumber()), kTitleColumns,
            TextOf(md->Model()) + ", " + TextOf(md->NumChannels()) + " channels");
  }
  host.Output().Record("identification",
                       {{"model", Known(model)},
                        {"firmware", Known(firmware)},
                        {"minfirmware", CVaneT312B::MinFirmwareRequired()},
                        {"firmwarerecent", Known(isrecent)},
                        {"identification", instrument.Identification()},
                        {"numchannels", numchannels},
                        {"modules", instrument.NumModules() == 0 ? Value() : Value(modules)}},
                       text);
  if (!firmware) host.Note("The identification names no firmware version.");
}

// Whoever asks who is there wants to know most when something is wrong: what is known comes first,
// then the trouble.
EExitCode RunIdentify(CHost& host) {
  host.Hold();
  EExitCode code = EExitCode::FAILED;
  try {
    code = host.Connect();
  } catch (...) {
    code = host.ReportFailure("finding out what is on the line");
  }
  if (!host.Instrument().Identification().empty()) ShowFindings(host);
  host.Release();
  return code;
}

}  // namespace

Command IdentifyCommand() {
  return {.name = "identify",
          .brief = "Tell the readout's model, firmware and modules",
          .footer =
              R"(Tells the model, the firmware version and whether it is recent enough, the whole
identification as the readout sends it, and each module with its channels: module 0 is
the readout with its two inputs, module 1 the scanner. Of an instrument of another model,
or one whose answers make no sense, it tells what it could find out, and then what is
wrong.

Example:
  thermoscribe identify --port /dev/ttyUSB0)",
          .body = RunIdentify};
}

}  // namespace vane::thermoscribe
