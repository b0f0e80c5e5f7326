#include "apps/thermoscribe/probe_record.h"

#include <algorithm>
#include <array>
#include <utility>

#include "vane/components/conversion.h"
#include "vane/support/display_texts.h"

namespace vane {
namespace {

// The deviation functions of ITS-90 name their coefficients after the subrange: a, b and, above
// 0.01 °C, c carry its number; the others are numbered through or stand alone.
void AddRange(Json& coefficients, CITS90Range& range, bool low) {
  const std::string number = std::to_string(range.Range());
  static constexpr std::array kLow = {"a", "b", "c1", "c2", "c3", "c4", "c5"};
  static constexpr std::array kHigh = {"a", "b", "c", "d"};
  for (std::int16_t i = 0; i < range.NumCoefficients(); ++i) {
    const auto place = static_cast<std::size_t>(i);
    std::string name = low ? kLow[place] : kHigh[place];
    if (name.size() == 1 && name != "d") name += number;
    coefficients[name] = range.Coefficients(i);
  }
}

Json RangeNumber(CITS90Range& range) {
  return range.Range() == -1 ? Json(nullptr) : Json(range.Range());
}

void AddCoefficients(Json& coefficients, const CCVDSettings& settings,
                     const std::array<const char*, 5>& names, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    coefficients[names[static_cast<std::size_t>(i)]] = settings.Coefficients(i);
  }
}

// What the record holds behind the conversion's name.
Json ConversionMembers(CVaneConversion& conversion, EVaneConversionType type) {
  Json members = Json::object();
  Json coefficients = Json::object();
  CConversionSettings* const settings = conversion.Settings();
  if (auto* const its90 = dynamic_cast<CITS90Settings*>(settings)) {
    members["lowrange"] = RangeNumber(its90->LowRange());
    members["highrange"] = RangeNumber(its90->HighRange());
    coefficients["RTPW"] = its90->RTPW();
    AddRange(coefficients, its90->LowRange(), true);
    AddRange(coefficients, its90->HighRange(), false);
  } else if (auto* const wt90 = dynamic_cast<CWT90Settings*>(settings)) {
    coefficients["RTPW"] = wt90->RTPW();
  } else if (auto* const ipts68 = dynamic_cast<CIPTS68Settings*>(settings)) {
    members["scale"] =
        ipts68->ScaleEnabled() ? Json(ipts68->IPTS68Scale() == 0 ? 90 : 68) : Json(nullptr);
    AddCoefficients(coefficients, *ipts68, {"R0", "alpha", "delta", "a4", "c4"}, 5);
  } else if (auto* const cvd = dynamic_cast<CCVDSettings*>(settings)) {
    AddCoefficients(coefficients, *cvd, {"R0", "alpha", "delta", "beta", ""}, 4);
  } else if (auto* const series = dynamic_cast<CThermistorSettings*>(settings)) {
    const char* letter = type == EVaneConversionType::CONV_POLYNOMIAL      ? "c"
                         : type == EVaneConversionType::CONV_THERMISTOR_TR ? "B"
                                                                           : "A";
    for (std::int16_t i = 0; i < series->NumCoefficients(); ++i) {
      coefficients[letter + std::to_string(i)] = series->Coefficients(i);
    }
  }
  members["coefficients"] = std::move(coefficients);
  return members;
}

void AddLine(std::string& text, const std::string& name, const std::string& value) {
  constexpr std::size_t kNameColumns = 21;
  if (!text.empty()) text += '\n';
  text += Padded(name, kNameColumns) + value;
}

}  // namespace

Json ProbeRecord(const CVaneT312BPRTTHRMChannel& channel, std::int16_t number) {
  CVaneProbe& probe = *channel.Probe();
  const EVaneConversionType type = probe.ConversionType();
  // "Keep existing", the text of the code for none, is a choice in a list and no conversion.
  const bool none = type == EVaneConversionType::CONV_NONE;
  Json record = {
      {"probe", number},
      {"serial", probe.SerialNumber()},
      {"reference", RefResistorText(channel.ProbeRefResistor())},
      {"current", channel.ProbeCurrent()},
      {"offset3wire", channel.Probe3WireOffset()},
      {"conversion",
       none ? Json(nullptr) : Json(ConversionTypeText(static_cast<std::int32_t>(type)))},
  };
  record.update(ConversionMembers(probe.Conversion(), type));
  return record;
}

std::string ProbeRecordText(const Json& record) {
  std::string text;
  static constexpr std::pair<const char*, const char*> kLines[] = {
      {"channel", "Channel"},       {"name", "Name"},
      {"probe", "Probe"},           {"serial", "Probe serial number"},
      {"reference", "Reference"},   {"current", "Current"},
      {"offset3wire", "3W offset"}, {"conversion", "Conversion type"},
      {"lowrange", "Low subrange"}, {"highrange", "High subrange"},
      {"scale", "Scale"},
  };
  for (const auto& [key, title] : kLines) {
    if (record.contains(key)) AddLine(text, title, TextOf(record[key]));
  }
  for (const auto& [name, value] : record["coefficients"].items()) {
    AddLine(text, "  " + name, TextOf(value));
  }
  return text;
}

}  // namespace vane
