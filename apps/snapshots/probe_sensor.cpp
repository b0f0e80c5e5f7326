#include "apps/snapshots/probe_sensor.h"

#include <stdexcept>

#include "physics/record_check.h"
#include "vane/components/conversion.h"
#include "vane/support/display_texts.h"

namespace vane::thermoscribe {
namespace {

using enum EVaneConversionType;

std::string TypeText(EVaneConversionType type) {
  return ConversionTypeText(static_cast<std::int32_t>(type));
}

Value MemberOf(const ProbeValues& record, std::string_view name) {
  for (const auto& [key, value] : record) {
    if (key.row != nullptr && key.row->name == name) return value;
  }
  return {};
}

std::int32_t SubrangeOf(const ProbeValues& record, std::string_view name) {
  const Value value = MemberOf(record, name);
  return value.IsNone() ? physics::kNoSubrange : static_cast<std::int32_t>(value.Number());
}

// An object of the shape that the record's conversion has; its numbers come behind.
physics::Record ShapeOf(const ProbeValues& record) {
  const Value conversion = MemberOf(record, "conversion");
  const std::string type = conversion.IsNone() ? std::string() : conversion.Text();
  if (type == TypeText(CONV_ITS90)) {
    physics::Its90Record its90;
    its90.low = SubrangeOf(record, "lowrange");
    its90.high = SubrangeOf(record, "highrange");
    return its90;
  }
  if (type == TypeText(CONV_WT90)) return physics::Wt90Record{};
  if (type == TypeText(CONV_IPTS68)) {
    const Value scale = MemberOf(record, "scale");
    return physics::Ipts68Record{.is90 = !scale.IsNone() && scale.Number() == 90};
  }
  if (type == TypeText(CONV_CVD)) return physics::CvdRecord{};
  if (type == TypeText(CONV_THERMISTOR_TR)) return physics::ThermistorTRRecord{};
  if (type == TypeText(CONV_THERMISTOR_RT)) return physics::ThermistorRTRecord{};
  if (type == TypeText(CONV_POLYNOMIAL)) {
    physics::PolynomialRecord polynomial;
    for (const auto& [key, value] : record) {
      if (key.row == nullptr) polynomial.c.push_back(0);
    }
    return polynomial;
  }
  throw std::invalid_argument(type.empty() ? "The probe has no conversion."
                                           : "The conversion " + type + " gives no temperature.");
}

}  // namespace

physics::Record PhysicsRecordOf(const ProbeValues& record) {
  physics::Record numbers = ShapeOf(record);
  for (const auto& [name, number] : physics::ParametersOf(numbers)) {
    const Value value = ValueIn(record, ProbeKey(name));
    if (value.IsNone()) throw std::invalid_argument("The record has no " + name + ".");
    *number = value.Number();
  }
  return numbers;
}

std::vector<std::string> OddThingsAbout(const ProbeValues& record) {
  physics::Record numbers;
  try {
    numbers = PhysicsRecordOf(record);
  } catch (const std::invalid_argument&) {
    return {};
  }
  std::vector<std::string> texts;
  for (const physics::Finding& finding : physics::CheckRecord(numbers)) {
    texts.push_back(finding.text);
  }
  return texts;
}

}  // namespace vane::thermoscribe
