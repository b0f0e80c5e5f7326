#include "apps/thermoscribe/shown_record.h"

#include <array>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "apps/thermoscribe/value_rule.h"
#include "vane/components/conversion.h"
#include "vane/support/display_texts.h"

namespace vane::thermoscribe {
namespace {

using enum ET312BProbeRefResistor;
constexpr std::array kReferences = {PRR_EXTERNAL, PRR_1_OHM, PRR_10_OHM, PRR_100_OHM, PRR_10K_OHM};

using enum EVaneConversionType;
constexpr std::array kConversions = {CONV_ITS90,      CONV_IPTS68,        CONV_CVD,
                                     CONV_POLYNOMIAL, CONV_THERMISTOR_TR, CONV_THERMISTOR_RT,
                                     CONV_RESISTANCE, CONV_WT90,          CONV_RATIO};

std::string ConversionText(EVaneConversionType type) {
  return ConversionTypeText(static_cast<std::int32_t>(type));
}

template <class Codes, class Text>
std::vector<std::string> WordsOf(const Codes& codes, Text text) {
  std::vector<std::string> words;
  for (const auto code : codes) words.push_back(text(code));
  return words;
}

// `unknown` for a value that is none of the words.
template <class Codes, class Text, class Code>
Code CodeOfWord(const Codes& codes, Text text, const Json& word, Code unknown) {
  for (const Code code : codes) {
    if (word == text(code)) return code;
  }
  return unknown;
}

struct Coefficient {
  std::string name;
  std::function<double()> get;
  std::function<void(double)> set;
};

CConversionSettings* SettingsIn(const CVaneT312BPRTTHRMChannel& channel) {
  return channel.Probe()->Conversion().Settings();
}

std::string ConversionWord(const CVaneT312BPRTTHRMChannel& channel) {
  return ConversionTypeText(static_cast<std::int32_t>(channel.Probe()->ConversionType()));
}

Json RangeNumber(CITS90Range& range) {
  return range.Range() == -1 ? Json(nullptr) : Json(range.Range());
}

// The deviation functions of ITS-90 name their coefficients after the subrange: a, b and, above
// 0.01 °C, c carry its number; the others are numbered through or stand alone.
void AddRange(std::vector<Coefficient>& coefficients, CITS90Range& range, bool low) {
  const std::string number = std::to_string(range.Range());
  static constexpr std::array kLow = {"a", "b", "c1", "c2", "c3", "c4", "c5"};
  static constexpr std::array kHigh = {"a", "b", "c", "d"};
  for (std::int16_t i = 0; i < range.NumCoefficients(); ++i) {
    const auto place = static_cast<std::size_t>(i);
    std::string name = low ? kLow[place] : kHigh[place];
    if (name.size() == 1 && name != "d") name += number;
    coefficients.push_back({std::move(name), [&range, i] { return range.Coefficients(i); },
                            [&range, i](double value) { range.SetCoefficients(i, value); }});
  }
}

// Settings whose coefficients go by a number.
template <class Settings>
void AddIndexed(std::vector<Coefficient>& coefficients, Settings& settings, std::int32_t index,
                std::string name) {
  coefficients.push_back(
      {std::move(name), [&settings, index] { return settings.Coefficients(index); },
       [&settings, index](double value) { settings.SetCoefficients(index, value); }});
}

// All values of the channel's conversion, in the order of the readout. Good until the conversion or
// one of its subranges changes.
std::vector<Coefficient> CoefficientsOf(const CVaneT312BPRTTHRMChannel& channel) {
  std::vector<Coefficient> coefficients;
  CConversionSettings* const settings = SettingsIn(channel);
  if (auto* const wt90 = dynamic_cast<CWT90Settings*>(settings)) {
    coefficients.push_back(
        {"RTPW", [wt90] { return wt90->RTPW(); }, [wt90](double value) { wt90->SetRTPW(value); }});
  }
  if (auto* const its90 = dynamic_cast<CITS90Settings*>(settings)) {
    AddRange(coefficients, its90->LowRange(), true);
    AddRange(coefficients, its90->HighRange(), false);
  } else if (auto* const cvd = dynamic_cast<CCVDSettings*>(settings)) {
    const bool ipts68 = dynamic_cast<CIPTS68Settings*>(settings) != nullptr;
    static const std::vector<std::string> kIPTS68 = {"R0", "alpha", "delta", "a4", "c4"};
    static const std::vector<std::string> kCVD = {"R0", "alpha", "delta", "beta"};
    std::int32_t index = 0;
    for (const std::string& name : ipts68 ? kIPTS68 : kCVD) {
      AddIndexed(coefficients, *cvd, index++, name);
    }
  } else if (auto* const series = dynamic_cast<CThermistorSettings*>(settings)) {
    const EVaneConversionType type = channel.Probe()->ConversionType();
    const char* letter = type == EVaneConversionType::CONV_POLYNOMIAL      ? "c"
                         : type == EVaneConversionType::CONV_THERMISTOR_TR ? "B"
                                                                           : "A";
    for (std::int16_t i = 0; i < series->NumCoefficients(); ++i) {
      AddIndexed(coefficients, *series, i, letter + std::to_string(i));
    }
  }
  return coefficients;
}

// What the record holds behind the conversion's name.
Json ConversionMembers(const CVaneT312BPRTTHRMChannel& channel) {
  Json members = {{"lowrange", nullptr}, {"highrange", nullptr}, {"scale", nullptr}};
  CConversionSettings* const settings = SettingsIn(channel);
  if (auto* const its90 = dynamic_cast<CITS90Settings*>(settings)) {
    members["lowrange"] = RangeNumber(its90->LowRange());
    members["highrange"] = RangeNumber(its90->HighRange());
  } else if (auto* const ipts68 = dynamic_cast<CIPTS68Settings*>(settings)) {
    members["scale"] =
        ipts68->ScaleEnabled() ? Json(ipts68->IPTS68Scale() == 0 ? 90 : 68) : Json(nullptr);
  }
  Json& coefficients = members["coefficients"] = Json::object();
  for (const Coefficient& coefficient : CoefficientsOf(channel)) {
    coefficients[coefficient.name] = coefficient.get();
  }
  return members;
}

// The member of `values` under `name`; null when it isn't there or has no value.
const Json* Given(const Json& values, const char* name) {
  const auto member = values.find(name);
  return member == values.end() || member->is_null() ? nullptr : &*member;
}

void StoreRange(CITS90Range& range, const Json& values, const char* name) {
  const auto member = values.find(name);
  if (member != values.end()) range.SetRange(member->is_null() ? -1 : member->get<std::int32_t>());
}

// Raises for a member that belongs to another conversion.
template <class Settings>
Settings* SettingsFor(const CVaneT312BPRTTHRMChannel& channel, const char* name,
                      const char* conversion) {
  auto* const settings = dynamic_cast<Settings*>(SettingsIn(channel));
  if (settings == nullptr) {
    throw std::invalid_argument(std::string(name) + " can't be set: it belongs to " + conversion +
                                ", and the conversion is " + ConversionWord(channel) + ".");
  }
  return settings;
}

void StoreCoefficient(const CVaneT312BPRTTHRMChannel& channel, const std::string& name,
                      double value) {
  std::string known;
  for (const Coefficient& coefficient : CoefficientsOf(channel)) {
    if (Folded(coefficient.name) == Folded(name)) return coefficient.set(value);
    known += (known.empty() ? "" : ", ") + coefficient.name;
  }
  throw std::invalid_argument(name + " is no coefficient of " + ConversionWord(channel) +
                              (known.empty() ? ", which has none." : ", which has " + known + "."));
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
  record.update(ConversionMembers(channel));
  return record;
}

void StoreProbeRecord(CVaneT312BPRTTHRMChannel& channel, const Json& values) {
  if (const Json* const serial = Given(values, "serial")) {
    channel.Probe()->SetSerialNumber(serial->get<std::string>());
  }
  if (const Json* const word = Given(values, "reference")) {
    channel.SetProbeRefResistor(
        CodeOfWord(kReferences, RefResistorText, *word, ET312BProbeRefResistor::PRR_NONE));
  }
  if (const Json* const current = Given(values, "current")) {
    channel.SetProbeCurrent(current->get<double>());
  }
  if (const Json* const offset = Given(values, "offset3wire")) {
    channel.SetProbe3WireOffset(offset->get<double>());
  }
  if (values.contains("conversion")) {
    channel.SetConversionType(CodeOfWord(kConversions, ConversionText, values["conversion"],
                                         EVaneConversionType::CONV_NONE));
  }
  for (const char* const name : {"lowrange", "highrange"}) {
    if (!values.contains(name)) continue;
    // Null is "none" of a conversion that has subranges, and says nothing to any other.
    if (values[name].is_null() && dynamic_cast<CITS90Settings*>(SettingsIn(channel)) == nullptr) {
      continue;
    }
    auto* const its90 = SettingsFor<CITS90Settings>(channel, name, "ITS-90");
    StoreRange(name == std::string_view("lowrange") ? its90->LowRange() : its90->HighRange(),
               values, name);
  }
  if (const Json* const scale = Given(values, "scale")) {
    auto* const ipts68 = SettingsFor<CIPTS68Settings>(channel, "scale", "IPTS-68");
    ipts68->SetIPTS68Scale(*scale == 90 ? 0 : 1);
    ipts68->SetScaleEnabled(true);
  }
  if (const Json* const coefficients = Given(values, "coefficients")) {
    for (const auto& [name, value] : coefficients->items()) {
      StoreCoefficient(channel, name, value.get<double>());
    }
  }
}

std::vector<std::string> ReferenceWords() { return WordsOf(kReferences, RefResistorText); }

std::vector<std::string> ConversionWords() { return WordsOf(kConversions, ConversionText); }

std::string ProbeRecordText(const Json& record) {
  std::string text;
  // Members that go with one conversion only.
  const auto isanothers = [&](std::string_view key) {
    if (key == "lowrange" || key == "highrange") {
      return record["conversion"] != ConversionText(CONV_ITS90);
    }
    return key == "scale" && record["conversion"] != ConversionText(CONV_IPTS68);
  };
  static constexpr std::pair<const char*, const char*> kLines[] = {
      {"channel", "Channel"},       {"name", "Name"},
      {"probe", "Probe"},           {"serial", "Probe serial number"},
      {"reference", "Reference"},   {"current", "Current"},
      {"offset3wire", "3W offset"}, {"conversion", "Conversion type"},
      {"lowrange", "Low subrange"}, {"highrange", "High subrange"},
      {"scale", "Scale"},
  };
  for (const auto& [key, title] : kLines) {
    if (record.contains(key) && !isanothers(key)) AddLine(text, title, TextOf(record[key]));
  }
  for (const auto& [name, value] : record["coefficients"].items()) {
    AddLine(text, "  " + name, TextOf(value));
  }
  return text;
}

}  // namespace vane::thermoscribe
