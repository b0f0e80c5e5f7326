#include "simulator/reply.h"

#include "protocol/framing.h"

namespace vane::simulator {

std::string_view RefusalText(ERefusal refusal) {
  switch (refusal) {
    case ERefusal::UNKNOWN_COMMAND:
      return "unknown command";
    case ERefusal::NOT_A_NUMBER:
      return "not a number";
    case ERefusal::OUT_OF_RANGE:
      return "out of range";
    case ERefusal::NO_SCANNER:
      return "no scanner attached";
    case ERefusal::UNKNOWN_CODE:
      return "unknown code";
    case ERefusal::NOT_A_RANGE_OF_PROBE:
      return "not a range of this probe";
    case ERefusal::TEXT_TOO_LONG:
      return "text too long";
    case ERefusal::NOT_A_DATE_OR_TIME:
      return "not a date or time";
    case ERefusal::NOT_A_SERIAL_NUMBER:
      return "not a serial number";
    case ERefusal::BUSY:
      return "busy";
  }
  return "refused";
}

std::string CReply::Body() const {
  if (!refusal_) return protocol::ValueBody(value_);
  return protocol::RefusalBody(static_cast<std::int32_t>(*refusal_), RefusalText(*refusal_));
}

}  // namespace vane::simulator
