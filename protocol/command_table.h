// The commands of the readout: one row per command id, with its wire text and
// the form of its answer.
//
// Both ends of the line use this table: the communications adapter to build a command, the
// simulated readout to understand one. `docs/protocol.md` shows it to people, and a test holds the
// two together.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "protocol/reply_form.h"
#include "vane/components/commands.h"

namespace vane::protocol {

/// One command. A text that ends in "?" asks for a value; every other one changes something and is
/// answered with an empty value. "{Probe}" is a place for that field of `CommandParams`; "{value}"
/// and "{FilterCode}" stand last in a text and may be empty, all other fields must be there.
struct CommandRow {
  ECommand id;
  std::string_view symbol;  ///< the name of `id`
  std::string_view text;
  ReplyForm form = {};

  constexpr bool IsRead() const { return text.back() == '?'; }
};

/// All commands, by rising id.
std::span<const CommandRow> CommandTable();

/// The row of `id`; null when there is none.
const CommandRow* FindCommand(ECommand id);

/// The command that gives the passcode. It has no id: it goes out as raw text.
inline constexpr std::string_view kPasscodeCommand = "PC?";
inline constexpr ReplyForm kPasscodeForm{.kind = EReply::NAME};

/// The wire text of `row` with its places filled, or nothing with the reason in `problem`: a field
/// that must be there is empty, or one holds a character that can't travel in its place.
std::optional<std::string> BuildCommand(const CommandRow& row, const CommandParams& fields,
                                        std::string& problem);

/// A command as it came in: its row and what stood in its places.
struct ParsedCommand {
  const CommandRow* row;
  CommandParams fields;
};

/// Finds the row whose text `command` fits. Fixed words are matched without regard to case; nothing
/// when no row fits.
std::optional<ParsedCommand> ParseCommand(std::string_view command);

}  // namespace vane::protocol
