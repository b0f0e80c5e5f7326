#include "vane/channels/coefficients.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_table.h"

namespace vane {
namespace {

// A settings object whose coefficients go by a number.
template <class Settings>
void Add(std::vector<Coefficient>& coefficients, Settings& settings, std::int32_t index,
         std::string name, std::string format) {
  coefficients.push_back(
      {std::move(name), std::move(format),
       [&settings, index] { return settings.Coefficients(index); },
       [&settings, index](double value) { settings.SetCoefficients(index, value); }});
}

void AddRange(std::vector<Coefficient>& coefficients, CITS90Range& range) {
  for (std::int16_t i = 0; i < range.NumCoefficients(); ++i) {
    Add(coefficients, range, i, RangeCoefficientName(range.Range(), i), range.ValueFormat());
  }
}

}  // namespace

std::string RangeCoefficientName(std::int32_t subrange, std::int32_t index) {
  const RangeSide& side = kLowSide.CoefficientsOf(subrange) > 0 ? kLowSide : kHighSide;
  if (index < 0 || index >= side.CoefficientsOf(subrange)) return {};
  // a, b and, above 0.01 °C, c bear the number of their subrange; the others are numbered through
  // or stand alone.
  std::string name(side.rows[static_cast<std::size_t>(index)].name);
  if (name.size() == 1 && name != "d") name += std::to_string(subrange);
  return name;
}

std::vector<Coefficient> CoefficientsOf(CConversionSettings* settings, EVaneConversionType ct) {
  std::vector<Coefficient> coefficients;
  if (auto* const wt90 = dynamic_cast<CWT90Settings*>(settings)) {
    coefficients.push_back({"RTPW", wt90->RTPWFormat(), [wt90] { return wt90->RTPW(); },
                            [wt90](double value) { wt90->SetRTPW(value); }});
  }
  if (auto* const its90 = dynamic_cast<CITS90Settings*>(settings)) {
    AddRange(coefficients, its90->LowRange());
    AddRange(coefficients, its90->HighRange());
  } else if (auto* const cvd = dynamic_cast<CCVDSettings*>(settings)) {
    const bool ipts68 = dynamic_cast<CIPTS68Settings*>(settings) != nullptr;
    std::int32_t index = 0;
    for (const CoefficientRow& row :
         ipts68 ? std::span<const CoefficientRow>(kIPTS68Rows) : std::span(kCVDRows)) {
      Add(coefficients, *cvd, index, std::string(row.name), cvd->ValueFormat(index));
      ++index;
    }
  } else if (auto* const series = dynamic_cast<CThermistorSettings*>(settings)) {
    const auto row = std::ranges::find(kSeriesRows, ct, &SeriesRow::type);
    const std::string letter(row != std::end(kSeriesRows) ? row->letter : "");
    for (std::int16_t i = 0; i < series->NumCoefficients(); ++i) {
      Add(coefficients, *series, i, letter + std::to_string(i), series->ValueFormat());
    }
  }
  return coefficients;
}

std::vector<Coefficient> CoefficientsOf(const CVaneT312BPRTTHRMChannel& channel) {
  CVaneProbe& probe = *channel.Probe();
  return CoefficientsOf(probe.Conversion().Settings(), probe.ConversionType());
}

}  // namespace vane
