#include "apps/snapshots/gates.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

#include "vane/instrument/t312b.h"

namespace vane::thermoscribe {
namespace {

// Whether editing of a group is open.
struct GateRow {
  EGate gate;
  ET312BPasscodeState (CVaneT312B::*state)() const;
  void (CVaneT312B::*setstate)(ET312BPasscodeState);
};

using I = CVaneT312B;  // a short name, for the table
constexpr std::array kGates = {
    GateRow{EGate::UNITS_TIME, &I::UnitsTimePasscodeState, &I::SetUnitsTimePasscodeState},
    GateRow{EGate::SAMPLING, &I::SamplingPasscodeState, &I::SetSamplingPasscodeState},
    GateRow{EGate::CALIBRATION, &I::CalParamPasscodeState, &I::SetCalParamPasscodeState},
    GateRow{EGate::CONVERSION, &I::ConvPasscodeState, &I::SetConvPasscodeState},
};

}  // namespace

EEnd OpenGates(CVaneT312B& instrument, CAudience& audience, std::span<const EGate> gates) {
  const bool isshut = std::ranges::any_of(kGates, [&](const GateRow& row) {
    return std::ranges::find(gates, row.gate) != gates.end() &&
           (instrument.*row.state)() != ET312BPasscodeState::PS_ENABLED;
  });
  if (!isshut) return EEnd::DONE;
  try {
    if (!instrument.ValidatePasscode(audience.ProgressWindow())) return EEnd::STOPPED;
  } catch (...) {
    audience.SayError("checking the passcode");
    return EEnd::RAISED;
  }
  // One passcode opens all groups.
  for (const GateRow& row : kGates) (instrument.*row.setstate)(ET312BPasscodeState::PS_ENABLED);
  return EEnd::DONE;
}

CGatesKept::CGatesKept(CVaneT312B& instrument) : instrument_(instrument), states_() {
  static_assert(kGates.size() == std::tuple_size_v<decltype(states_)>);
  std::ranges::transform(kGates, states_.begin(),
                         [&](const GateRow& row) { return (instrument.*row.state)(); });
}

CGatesKept::~CGatesKept() {
  for (std::size_t i = 0; i < kGates.size(); ++i) (instrument_.*kGates[i].setstate)(states_[i]);
}

}  // namespace vane::thermoscribe
