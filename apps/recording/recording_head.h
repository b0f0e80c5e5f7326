// What is measured with, for the head of a recording.
#pragma once

#include <cstdint>
#include <vector>

#include "apps/snapshots/snapshot.h"
#include "recorder/record_types.h"

namespace vane::thermoscribe {

/// Adds what the readout keeps, and `channels`, to a head that knows who answers.
void AddSettings(recorder::RecordingHead& head, const Snapshot& snapshot,
                 const std::vector<std::int16_t>& channels);

/// This program, on this machine; `port` is where the readout is.
recorder::SessionHead SessionOf(const std::string& program, const std::string& port,
                                const recorder::CClock& clock);

}  // namespace vane::thermoscribe
