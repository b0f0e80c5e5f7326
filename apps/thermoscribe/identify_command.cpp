// thermoscribe identify: who is on the line, and what hangs on it.

#include <cstdint>
#include <string>

#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/channels/module.h"

namespace vane::thermoscribe {
namespace {

constexpr char kBehindModel = ',';

std::string FirmwareText(const Json& members) {
  if (members["firmware"].is_null()) return "-";
  const std::string minimum = TextOf(members["minfirmware"]);
  return TextOf(members["firmware"]) +
         (members["firmwarerecent"].get<bool>()
              ? " (recent enough: at least " + minimum + ")"
              : " (older than " + minimum + ": logs can't be downloaded)");
}

std::string TextForPeople(const Json& members) {
  std::string text = "Model           " + TextOf(members["model"]);
  text += "\nFirmware        " + FirmwareText(members);
  text += "\nIdentification  " + TextOf(members["identification"]);
  text += "\nChannels        " + TextOf(members["numchannels"]);
  for (const Json& md : members["modules"]) {
    text += "\nModule " + TextOf(md["number"]) + "        " + TextOf(md["model"]) + ", " +
            TextOf(md["numchannels"]) + " channels";
  }
  return text;
}

Json ModulesOf(const CVaneT312B& instrument) {
  if (instrument.NumModules() == 0) return nullptr;
  Json modules = Json::array();
  for (std::int16_t idx = 0; idx < instrument.NumModules(); ++idx) {
    const CModule* const md = instrument.Modules(idx);
    if (md == nullptr) continue;
    modules.push_back({{"number", md->ModuleNumber()},
                       {"model", md->Model()},
                       {"numchannels", md->NumChannels()}});
  }
  return modules;
}

// What could not be found out is null.
Json Findings(const CHost& host, const CVaneT312B& instrument) {
  const auto known = [](bool isknown, Json value) { return isknown ? std::move(value) : Json(); };
  const bool ismodel = instrument.Identification().find(kBehindModel) != std::string::npos;
  const bool isfirmware = instrument.Firmware() != 0;
  return {{"model", known(ismodel, instrument.Model())},
          {"firmware", known(isfirmware, instrument.Firmware())},
          {"minfirmware", CVaneT312B::MinFirmwareRequired()},
          {"firmwarerecent", known(isfirmware, instrument.VerifyMinimumFirmware())},
          {"identification", instrument.Identification()},
          {"numchannels", known(host.ProblemOfCounts().empty(), instrument.NumChannels())},
          {"modules", ModulesOf(instrument)}};
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
  const CVaneT312B& instrument = host.Instrument();
  if (!instrument.Identification().empty()) {
    const Json members = Findings(host, instrument);
    host.Output().Record("identification", members, TextForPeople(members));
    if (members["firmware"].is_null()) host.Note("The identification names no firmware version.");
  }
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
