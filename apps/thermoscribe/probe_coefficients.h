// The coefficients of a probe's conversion by their names in the field.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "vane/channels/channel.h"

namespace vane::thermoscribe {

struct Coefficient {
  std::string name;
  std::function<double()> get;
  std::function<void(double)> set;
};

/// All values of the channel's conversion, in the order of the readout: "RTPW", "a4", "R0", "c10".
/// Good until the conversion or one of its subranges changes.
std::vector<Coefficient> CoefficientsOf(const CVaneT312BPRTTHRMChannel& channel);

}  // namespace vane::thermoscribe
