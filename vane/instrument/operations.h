// What the operations of an instrument share, in whatever folder they stand. No host needs it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "vane/instrument/t312b.h"
#include "vane/support/failure.h"

namespace vane {

class CLongRun;

/// The communications component, the module at `idx`, the host's registry component: each raises
/// where there is none.
CVaneCommunications& LineOf(const CVaneT312B& instrument);
CModule& ModuleOf(const CVaneT312B& instrument, std::int16_t idx);
CVaneRegistry& RegistryOf(const CVaneT312B& instrument);

/// "CVaneT312B - QueryUnits".
std::string InstrumentLabel(std::string_view operation);

/// Runs an operation that talks to the instrument: what it raises is raised again under the
/// operation's label with the object's help fields as they are then.
template <class Body>
auto Exchange(const CVaneT312B& instrument, std::string_view operation, Body&& body)
    -> decltype(body()) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    RaiseAgain(InstrumentLabel(operation), {instrument.HelpFile(), instrument.HCIDCommError()});
  }
}

/// The head of every long run: false when nobody answers, or when it is no T312B, which has then
/// been told.
bool ProveInstrument(CVaneT312B& instrument, CLongRun& run, bool setprops);

/// The scanner's stretches of the runs over all settings. False when the user has been told.
bool QueryScannerSettings(CVaneT312B& instrument, const Components& components, CLongRun& run,
                          ui::CWindow* frm);
bool UpdateScannerSettings(CVaneT312B& instrument, CLongRun& run, ui::CWindow* frm);

/// Which of the four groups of settings the instrument protects. True, or an error.
bool QueryPasscodeProtectionSettings(CVaneT312B& instrument);

}  // namespace vane
