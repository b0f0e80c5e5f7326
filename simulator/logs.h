// The two logs of readings that the readout keeps: taken before it was switched on, and never
// changed after.
#pragma once

#include <cstdint>
#include <string>

namespace vane::simulator {

enum class ELog { HISTORY, MEMORY };

inline constexpr std::int32_t kHistoryLength = 320;
inline constexpr std::int32_t kMemoryLength = 240;

/// Reading `index` (from 1) of `log`: its number, its unit and its running number, separated by
/// blanks. Empty past the end of the log.
std::string LogLine(ELog log, std::int32_t index, std::uint64_t seed);

}  // namespace vane::simulator
