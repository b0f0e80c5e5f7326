// What the simulated readout says to a command, and the refusals that it knows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vane::simulator {

/// Why a command was refused. The numbers travel on the line.
///
///   1  unknown command           no row of the command table fits, or this firmware is too old
///   2  not a number              a number was expected
///   3  out of range              a number, index, channel or probe beyond its limits
///   4  no scanner attached       a scanner command, or a channel mode that needs a scanner
///   5  unknown code              a word that isn't among the codes of this setting
///   6  not a range of this probe a coefficient of an ITS-90 subrange that the probe doesn't use
///   7  text too long             a serial above 8 characters
///   8  not a date or time
///   9  not a serial number       it holds a comma, or is nothing but blanks
///  20  busy                      comes from a planned fault alone
enum class ERefusal : std::int32_t {
  UNKNOWN_COMMAND = 1,
  NOT_A_NUMBER = 2,
  OUT_OF_RANGE = 3,
  NO_SCANNER = 4,
  UNKNOWN_CODE = 5,
  NOT_A_RANGE_OF_PROBE = 6,
  TEXT_TOO_LONG = 7,
  NOT_A_DATE_OR_TIME = 8,
  NOT_A_SERIAL_NUMBER = 9,
  BUSY = 20,
};

std::string_view RefusalText(ERefusal refusal);

/// The body of an answer: a value ("" acknowledges a write) or a refusal.
class CReply {
 public:
  CReply(std::string value) : value_(std::move(value)) {}  // NOLINT: a value is a reply
  CReply(ERefusal refusal) : refusal_(refusal) {}          // NOLINT: a refusal is a reply

  static CReply Done() { return CReply(std::string()); }

  /// As it stands between tag and check value.
  std::string Body() const;

 private:
  std::string value_;
  std::optional<ERefusal> refusal_;
};

}  // namespace vane::simulator
