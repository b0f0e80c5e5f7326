// thermoscribe identify: who is on the line, and what hangs on it.

#include <cstdint>
#include <string>

#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"
#include "vane/channels/module.h"

namespace vane {
namespace {

std::string TextForPeople(const Json& members) {
  const std::string minimum = TextOf(members["minfirmware"]);
  std::string text = "Model           " + TextOf(members["model"]);
  text += "\nFirmware        " + TextOf(members["firmware"]);
  text += members["firmwarerecent"].get<bool>()
              ? " (recent enough: at least " + minimum + ")"
              : " (older than " + minimum + ": logs can't be downloaded)";
  text += "\nIdentification  " + TextOf(members["identification"]);
  text += "\nChannels        " + TextOf(members["numchannels"]);
  for (const Json& md : members["modules"]) {
    text += "\nModule " + TextOf(md["number"]) + "        " + TextOf(md["model"]) + ", " +
            TextOf(md["numchannels"]) + " channels";
  }
  return text;
}

EExitCode RunIdentify(CHost& host) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  const CVaneT312B& instrument = host.Instrument();
  Json members = {{"model", instrument.Model()},
                  {"firmware", instrument.Firmware()},
                  {"minfirmware", CVaneT312B::MinFirmwareRequired()},
                  {"firmwarerecent", instrument.VerifyMinimumFirmware()},
                  {"identification", instrument.Identification()},
                  {"numchannels", instrument.NumChannels()},
                  {"modules", Json::array()}};
  for (std::int16_t idx = 0; idx < instrument.NumModules(); ++idx) {
    const CModule& md = *instrument.Modules(idx);
    members["modules"].push_back(
        {{"number", md.ModuleNumber()}, {"model", md.Model()}, {"numchannels", md.NumChannels()}});
  }
  host.Output().Record("identification", members, TextForPeople(members));
  return EExitCode::DONE;
}

}  // namespace

Command IdentifyCommand() {
  return {.name = "identify",
          .brief = "Tell the readout's model, firmware and modules",
          .footer =
              R"(Tells the model, the firmware version and whether it is recent enough, the whole
identification as the readout sends it, and each module with its channels: module 0 is
the readout with its two inputs, module 1 the scanner.

Example:
  thermoscribe identify --port /dev/ttyUSB0)",
          .body = RunIdentify};
}

}  // namespace vane
