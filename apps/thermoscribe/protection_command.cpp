// thermoscribe protection: which settings are behind the readout's passcode, and whether the user
// has it.

#include <string>
#include <utility>

#include "apps/snapshots/instrument_properties.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kNameColumns = 16;

EExitCode RunShow(CHost& host) {
  if (const EExitCode code = host.ReadSettings(); code != EExitCode::DONE) return code;
  Members members;
  std::string text;
  for (const PropertyRow& row : InstrumentProperties()) {
    if (row.group != EPropertyGroup::PROTECTION) continue;
    const Value flag = row.get(host.Instrument());
    members.push_back({std::string(row.name), flag});
    AddLine(text, std::string(row.words), kNameColumns, PropertyText(row, flag));
  }
  host.Output().Record("protection", members, text);
  return EExitCode::DONE;
}

EExitCode RunUnlock(CHost& host) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  if (!host.Instrument().ValidatePasscode(nullptr)) {
    return host.IsInterrupted() ? EExitCode::ABORTED : EExitCode::NO_PASSCODE;
  }
  host.Output().Record("unlock", {{"unlocked", true}}, "The passcode is right.");
  return EExitCode::DONE;
}

}  // namespace

Command ProtectionCommand() {
  Command show{.name = "show",
               .brief = "Show which groups are protected",
               .footer =
                   R"(Tells of each of the four groups whether the readout protects it:
  Conversion      probes' conversions, the external resistor
  Calibration     the internal resistors, ADC, oven
  Sampling        sample interval, integration time, conversion time
  Units and time  units

Example:
  thermoscribe protection show --port /dev/ttyUSB0)",
               .body = RunShow};
  Command unlock{
      .name = "unlock",
      .brief = "Check a passcode against the readout's",
      .footer =
          R"(Asks for the passcode, without showing it, until it is the readout's or you give up by an
empty line, and exits with 0 when it was right, with 9 when not. Nothing stays open behind
it: each command that changes what is protected asks for itself. A script gives the
passcode by --passcode-file, once.

Examples:
  thermoscribe protection unlock --port /dev/ttyUSB0
  thermoscribe protection unlock --passcode-file ~/.thermoscribe-passcode
  thermoscribe protection unlock --passcode-file 3 3< <(pass show readout))",
      .body = RunUnlock};
  return {.name = "protection",
          .brief = "Tell what the passcode protects, and check it",
          .members = {std::move(show), std::move(unlock)}};
}

}  // namespace vane::thermoscribe
