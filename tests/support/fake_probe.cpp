#include "tests/support/fake_probe.h"

namespace vane::test {
namespace {

std::unique_ptr<CConversionSettings> SettingsFor(const Log& log, EVaneConversionType type) {
  using enum EVaneConversionType;
  switch (type) {
    case CONV_ITS90:
      return std::make_unique<CFakeITS90>(log);
    case CONV_IPTS68:
      return std::make_unique<CFakeIPTS68>(log, "IPTS-68", 5);
    case CONV_CVD:
      return std::make_unique<CFakeFormats<CCVDSettings>>(log, "CVD", 4);
    case CONV_POLYNOMIAL:
      return std::make_unique<CFakePolynomial>(log, "polynomial", 11);
    case CONV_THERMISTOR_TR:
      return std::make_unique<CFakeSeries<CThermistorSettings>>(log, "T(R)", 4);
    case CONV_THERMISTOR_RT:
      return std::make_unique<CFakeSeries<CThermistorSettings>>(log, "R(T)", 4);
    case CONV_WT90:
      return std::make_unique<CFakeRTPW<CWT90Settings>>(log, "W(T90)");
    default:
      return nullptr;
  }
}

}  // namespace

CFakeConversion::CFakeConversion(Log log, EVaneConversionType type)
    : log_(std::move(log)), settings_(SettingsFor(log_, type)) {}

}  // namespace vane::test
