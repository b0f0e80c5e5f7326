#include "simulator/reply.h"

#include "protocol/framing.h"

namespace vane::simulator {

std::string_view RefusalText(ERefusal refusal) {
  switch (refusal) {
    case ERefusal::kUnknownCommand:
      return "unknown command";
    case ERefusal::kNotANumber:
      return "not a number";
    case ERefusal::kOutOfRange:
      return "out of range";
    case ERefusal::kNoScanner:
      return "no scanner attached";
    case ERefusal::kUnknownCode:
      return "unknown code";
    case ERefusal::kNotARangeOfProbe:
      return "not a range of this probe";
    case ERefusal::kTextTooLong:
      return "text too long";
    case ERefusal::kNotADateOrTime:
      return "not a date or time";
    case ERefusal::kNotASerialNumber:
      return "not a serial number";
    case ERefusal::kBusy:
      return "busy";
  }
  return "refused";
}

std::string Reply::Body() const {
  if (!refusal_) return protocol::ValueBody(value_);
  return protocol::RefusalBody(static_cast<std::int32_t>(*refusal_), RefusalText(*refusal_));
}

}  // namespace vane::simulator
