// What the line can read and write of a probe record.
#pragma once

#include <array>
#include <optional>

#include "protocol/command_table.h"
#include "simulator/probes.h"
#include "simulator/reply.h"

namespace vane::simulator {

/// The probe number in `text`, 1 to 16; nothing for any other text.
std::optional<std::int32_t> ParseProbeNumber(std::string_view text);

/// Answers a read or a write of a probe's record; nothing when the command is about something
/// else. A refused or empty write changes nothing.
std::optional<CReply> AnswerProbeCommand(const protocol::ParsedCommand& command,
                                         std::array<Probe, kProbeCount>& probes);

}  // namespace vane::simulator
