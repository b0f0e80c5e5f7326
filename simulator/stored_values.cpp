#include "simulator/stored_values.h"

#include <optional>

#include "protocol/letters.h"
#include "simulator/readout_numbers.h"

namespace vane::simulator {

CReply WriteNumber(const Limits& limits, const std::string& text, double& stored) {
  if (text.empty()) return CReply::Done();
  const std::optional<double> value =
      limits.whole ? std::optional<double>(ParseWhole(text)) : ParseReal(text);
  if (!value) return ERefusal::NOT_A_NUMBER;
  if (*value < limits.lowest || *value > limits.highest) return ERefusal::OUT_OF_RANGE;
  stored = *value;
  return CReply::Done();
}

CReply WriteNumber(const Limits& limits, const std::string& text, std::int32_t& stored) {
  double number = stored;
  CReply reply = WriteNumber(limits, text, number);
  stored = static_cast<std::int32_t>(number);
  return reply;
}

CReply WriteWord(std::span<const Word> words, const std::string& text, std::size_t& stored) {
  if (text.empty()) return CReply::Done();
  for (std::size_t place = 0; place < words.size(); ++place) {
    if (!protocol::IsSameWord(words[place].code, text)) continue;
    stored = place;
    return CReply::Done();
  }
  return ERefusal::UNKNOWN_CODE;
}

}  // namespace vane::simulator
