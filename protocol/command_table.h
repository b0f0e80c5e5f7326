// The commands of the readout: one row per command id, with its wire text and
// the form of its answer.
//
// Both ends of the line use this table: the communications adapter to build a command, the
// simulated readout to understand one. `docs/protocol.md` shows it to people, and a test holds the
// two together.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "protocol/reply_form.h"

namespace vane::protocol {

/// The fields of a command, by the names that stand between the braces of a wire text.
struct Fields {
  std::string value;
  std::string Channel;
  std::string Probe;
  std::string Range;
  std::string Index;
  std::string FilterCode;

  friend bool operator==(const Fields&, const Fields&) = default;
};

/// One command. A text that ends in "?" asks for a value; every other one changes something and is
/// answered with an empty value. "{Probe}" is a place for that field; "{value}" and "{FilterCode}"
/// stand last in a text and may be empty, all other fields must be there.
struct CommandRow {
  std::int32_t id;
  std::string_view symbol;
  std::string_view text;
  ReplyForm form = {};

  constexpr bool IsRead() const { return text.back() == '?'; }
};

/// All commands, by rising id.
std::span<const CommandRow> CommandTable();

/// The row of `id`; null when there is none.
const CommandRow* FindCommand(std::int32_t id);

/// The command that gives the passcode. It has no id: it goes out as raw text.
inline constexpr std::string_view kPasscodeCommand = "PC?";
inline constexpr ReplyForm kPasscodeForm{.kind = EReply::NAME};

/// The wire text of `row` with its places filled, or nothing with the reason in `problem`: a field
/// that must be there is empty, or one holds a character that can't travel in its place.
std::optional<std::string> BuildCommand(const CommandRow& row, const Fields& fields,
                                        std::string& problem);

/// A command as it came in: its row and what stood in its places.
struct ParsedCommand {
  const CommandRow* row;
  Fields fields;
};

/// Finds the row whose text `command` fits. Fixed words are matched without regard to case; nothing
/// when no row fits.
std::optional<ParsedCommand> ParseCommand(std::string_view command);

}  // namespace vane::protocol
