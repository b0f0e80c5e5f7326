// Values as text for people.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "apps/snapshots/value.h"

namespace vane::thermoscribe {

/// `number` with the user's decimal separator in place of ".".
std::string WithUsersSeparator(std::string number);

/// A value for people: a number as the shortest text that reads back equal, with the user's decimal
/// separator; "yes", "no", and "-" for none. Control characters are replaced.
std::string TextOf(const Value& value);
/// The same with its unit, which may be empty.
std::string TextOf(const Value& value, std::string_view unit);

/// Adds a line to a text of lines without a last end: `title` with blanks up to `columns`, and
/// `text`.
void AddLine(std::string& lines, const std::string& title, std::size_t columns,
             std::string_view text);

/// "2026-11-24T15:07:09".
std::string MomentText(std::chrono::local_seconds moment);

/// Characters of a UTF-8 text.
std::size_t Columns(std::string_view text);

/// `text` with blanks up to `columns` characters.
std::string Padded(const std::string& text, std::size_t columns);

}  // namespace vane::thermoscribe
