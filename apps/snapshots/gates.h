// The groups that the readout's passcode protects, opened for a piece of work.
#pragma once

#include <array>
#include <span>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/instrument_properties.h"

namespace vane::thermoscribe {

/// Opens editing of the groups of `gates`, with the passcode where one of them is protected; the
/// user is asked at most once. Behind a read of all settings. `STOPPED` when there was no passcode,
/// or the user has stopped; he knows then.
EEnd OpenGates(CVaneT312B& instrument, CAudience& audience, std::span<const EGate> gates);

/// Puts back at its end what was open and what was shut at its beginning: where the instrument
/// object lives on, a passcode that was given for one thing opens nothing else.
class CGatesKept {
 public:
  explicit CGatesKept(CVaneT312B& instrument);
  ~CGatesKept();
  CGatesKept(const CGatesKept&) = delete;
  CGatesKept& operator=(const CGatesKept&) = delete;

 private:
  CVaneT312B& instrument_;
  std::array<ET312BPasscodeState, 4> states_;
};

}  // namespace vane::thermoscribe
