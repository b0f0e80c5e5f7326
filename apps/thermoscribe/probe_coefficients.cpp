#include "apps/thermoscribe/probe_coefficients.h"

#include <array>
#include <utility>

#include "vane/components/conversion.h"

namespace vane::thermoscribe {
namespace {

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

}  // namespace

std::vector<Coefficient> CoefficientsOf(const CVaneT312BPRTTHRMChannel& channel) {
  std::vector<Coefficient> coefficients;
  CConversionSettings* const settings = channel.Probe()->Conversion().Settings();
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

}  // namespace vane::thermoscribe
