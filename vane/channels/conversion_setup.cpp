// What a conversion starts with: number formats, limits of its ranges, and the values that a user
// sees before any have been read.
#include <cstdint>
#include <span>

#include "vane/channels/channel.h"
#include "vane/channels/settings_of.h"
#include "vane/support/failure.h"

namespace vane {
namespace {

struct CoefficientRow {
  const char* format;
  double value;
};

constexpr char kRangeFormat[] = "0.0########E-00";

// R0, alpha, delta, A4, C4.
constexpr CoefficientRow kIPTS68[] = {
    {"##0.0##########", 100.0}, {"0.0############", 0.00392597}, {"0.0############", 1.496334},
    {"0.0########E-00", 0.0},   {"0.0########E-00", 0.0},
};

// R0, alpha, delta, beta.
constexpr CoefficientRow kCVD[] = {
    {"##0.0##########", 100.0},
    {"0.0############", 0.00385},
    {"0.0############", 1.507},
    {"0.0############", 0.111},
};

constexpr std::int32_t kPolynomialOrder = 10;
constexpr std::int32_t kPolynomialCoefficients = kPolynomialOrder + 1;
constexpr std::int32_t kThermistorCoefficients = 4;

void SetFormats(CCVDSettings& settings, std::span<const CoefficientRow> rows) {
  std::int32_t index = 0;
  for (const CoefficientRow& row : rows) settings.SetValueFormat(index++, row.format);
}

void SetCoefficients(CCVDSettings& settings, std::span<const CoefficientRow> rows) {
  std::int32_t index = 0;
  for (const CoefficientRow& row : rows) settings.SetCoefficients(index++, row.value);
}

void SetUpRange(CITS90Range& range, std::int32_t lowest, std::int32_t highest) {
  range.SetValueFormat(kRangeFormat);
  range.SetMinRange(lowest);
  range.SetMaxRange(highest);
}

void SetUpITS90(CITS90Settings& settings) {
  settings.SetRTPWFormat("##0.0############");
  SetUpRange(settings.LowRange(), 1, 5);
  SetUpRange(settings.HighRange(), 6, 11);
  settings.SetRTPW(25.0);
  settings.LowRange().SetRange(-1);
  settings.HighRange().SetRange(-1);
}

void SetUpIPTS68(CIPTS68Settings& settings) {
  settings.SetScaleEnabled(true);
  SetFormats(settings, kIPTS68);
  settings.SetIPTS68Scale(1);
  SetCoefficients(settings, kIPTS68);
}

void SetUpCVD(CCVDSettings& settings) {
  SetFormats(settings, kCVD);
  SetCoefficients(settings, kCVD);
}

void SetUpPolynomial(CPolynomialSettings& settings) {
  settings.SetOrder(kPolynomialOrder);
  settings.SetValueFormat("0.0########E-00");
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
  return Labelled(kClassName, "SetConversionType", [&] {
    if (probe_->ConversionType() != ct) StartConversion(*probe_, ct);
    probe_->Conversion().SetFilePath(filepath_);
    return true;
  });
}

}  // namespace vane
