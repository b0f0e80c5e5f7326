// What a conversion starts with: number formats, limits of its ranges, and the values that a user
// sees before any have been read.
#include <cstdint>
#include <span>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_table.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/settings_of.h"
#include "vane/support/failure.h"

namespace vane {
namespace {

constexpr char kSmallFormat[] = "0.0########E-00";

void SetFormats(CCVDSettings& settings, std::span<const CoefficientRow> rows) {
  std::int32_t index = 0;
  for (const CoefficientRow& row : rows) settings.SetValueFormat(index++, row.format);
}

void SetCoefficients(CCVDSettings& settings, std::span<const CoefficientRow> rows) {
  std::int32_t index = 0;
  for (const CoefficientRow& row : rows) settings.SetCoefficients(index++, row.start);
}

void SetUpRange(CITS90Range& range, const RangeSide& side) {
  range.SetValueFormat(kSmallFormat);
  range.SetMinRange(side.first);
  range.SetMaxRange(side.last);
}

void SetUpITS90(CITS90Settings& settings) {
  settings.SetRTPWFormat("##0.0############");
  SetUpRange(settings.LowRange(), kLowSide);
  SetUpRange(settings.HighRange(), kHighSide);
  settings.SetRTPW(25.0);
  settings.LowRange().SetRange(kNoRange);
  settings.HighRange().SetRange(kNoRange);
}

void SetUpIPTS68(CIPTS68Settings& settings) {
  settings.SetScaleEnabled(true);
  SetFormats(settings, kIPTS68Rows);
  settings.SetIPTS68Scale(1);
  SetCoefficients(settings, kIPTS68Rows);
}

void SetUpCVD(CCVDSettings& settings) {
  SetFormats(settings, kCVDRows);
  SetCoefficients(settings, kCVDRows);
}

void SetUpPolynomial(CPolynomialSettings& settings) {
  settings.SetOrder(kPolynomialCoefficients - 1);
  settings.SetValueFormat(kSmallFormat);
  for (std::int32_t i = 0; i < kPolynomialCoefficients; ++i) settings.SetCoefficients(i, 0.0);
}

void SetUpThermistor(CThermistorSettings& settings) {
  settings.SetValueFormat("0.0#######E-00");
  for (std::int32_t i = 0; i < kThermistorCoefficients; ++i) settings.SetCoefficients(i, 0.0);
}

void SetUpWT90(CWT90Settings& settings) {
  settings.SetRTPWFormat("##0.0###########");
  settings.SetRTPW(25.5);
}

// Gives the probe the type `ct`, with a fresh conversion, and sets that up.
void StartConversion(CVaneProbe& probe, EVaneConversionType ct) {
  using enum EVaneConversionType;
  switch (ct) {
    case CONV_ITS90:
      probe.SetConversionType(ct);
      return SetUpITS90(SettingsOf<CITS90Settings>(probe));
    case CONV_IPTS68:
      probe.SetConversionType(ct);
      return SetUpIPTS68(SettingsOf<CIPTS68Settings>(probe));
    case CONV_CVD:
      probe.SetConversionType(ct);
      return SetUpCVD(SettingsOf<CCVDSettings>(probe));
    case CONV_POLYNOMIAL:
      probe.SetConversionType(ct);
      return SetUpPolynomial(SettingsOf<CPolynomialSettings>(probe));
    case CONV_THERMISTOR_TR:
    case CONV_THERMISTOR_RT:
      probe.SetConversionType(ct);
      return SetUpThermistor(SettingsOf<CThermistorSettings>(probe));
    case CONV_WT90:
      probe.SetConversionType(ct);
      return SetUpWT90(SettingsOf<CWT90Settings>(probe));
    case CONV_RESISTANCE:
    case CONV_RATIO:
      return probe.SetConversionType(ct);
    default:
      return probe.SetConversionType(CONV_NONE);
  }
}

}  // namespace

bool CVaneT312BPRTTHRMChannel::SetConversionType(EVaneConversionType ct) {
  return Labelled(kChannelClass, "SetConversionType", [&] {
    if (probe_->ConversionType() != ct) StartConversion(*probe_, ct);
    probe_->Conversion().SetFilePath(filepath_);
    return true;
  });
}

}  // namespace vane
