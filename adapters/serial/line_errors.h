// The numbers of the errors that the serial line raises itself. A refusal by the readout carries
// the readout's own number instead.
#pragma once

#include <cstdint>

#include "vane/components/library_error.h"

namespace vane {

inline constexpr std::int32_t ERR_LINE_NO_PORT = ErrorCode(0x80040501);
inline constexpr std::int32_t ERR_LINE_CANNOT_OPEN = ErrorCode(0x80040502);
inline constexpr std::int32_t ERR_LINE_IN_USE = ErrorCode(0x80040503);
inline constexpr std::int32_t ERR_LINE_NO_ANSWER = ErrorCode(0x80040504);
/// The device went away during an exchange; whether the readout took the command isn't known.
inline constexpr std::int32_t ERR_LINE_LOST = ErrorCode(0x80040505);
inline constexpr std::int32_t ERR_LINE_GARBLED = ErrorCode(0x80040506);
inline constexpr std::int32_t ERR_LINE_OVERLONG = ErrorCode(0x80040507);
/// No such command id, or a read asked for by the id of a write, or the other way round.
inline constexpr std::int32_t ERR_LINE_UNKNOWN_COMMAND = ErrorCode(0x80040508);
/// A field is missing or can't travel, or the whole command is too long. Nothing was sent.
inline constexpr std::int32_t ERR_LINE_BAD_FIELD = ErrorCode(0x80040509);
/// An undamaged answer that isn't of the command's form, such as a word for a number. The readout
/// may have been switched off and on.
inline constexpr std::int32_t ERR_LINE_UNEXPECTED = ErrorCode(0x8004050A);
inline constexpr std::int32_t ERR_LINE_BAUD_RATE = ErrorCode(0x8004050B);
inline constexpr std::int32_t ERR_LINE_INSTRUMENT_KIND = ErrorCode(0x8004050C);
inline constexpr std::int32_t ERR_LINE_TRACE_FILE = ErrorCode(0x8004050D);

}  // namespace vane
