// A thermometer's record in memory. It needs no file; the values of its conversion can be edited in
// a window where the host has windows.
#pragma once

#include <memory>
#include <string>

#include "adapters/conversions/conversion_object.h"
#include "vane/components/conversion.h"
#include "vane/support/tracked.h"

namespace vane {

/// A new probe is unchanged, without a serial number, and of type `CONV_NONE`, which has no values.
class CThermometerProbe : public CVaneProbe {
 public:
  /// `haswindows` says that the host's factory makes windows that can show any kind of control.
  explicit CThermometerProbe(bool haswindows = false);
  CThermometerProbe(const CThermometerProbe&) = delete;
  CThermometerProbe& operator=(const CThermometerProbe&) = delete;

  void SetRegistry(std::shared_ptr<CVaneRegistry>& registry) override { host_.registry = registry; }

  // For probes with files of their own, and for other inputs than resistance.
  void SetHelpFile(const std::string&) override {}
  void SetFilePath(const std::string&) override {}
  void SetInputKind(std::int32_t) override {}

  bool Changed() const override { return changed_.Changed(); }
  void SetChanged(bool value) override { changed_.SetChanged(value); }

  /// True for the types that have values, where the host has windows to show them in.
  bool ConversionHasSettings(EVaneConversionType ct) const override;

  const std::string& SerialNumber() const override { return serialnumber_.Get(); }
  void SetSerialNumber(const std::string& text) override { serialnumber_.Set(text); }

  CVaneConversion& Conversion() override { return *conversion_; }

  EVaneConversionType ConversionType() const override { return type_; }

  /// Always makes new objects, also for the type at hand, and marks the probe: the values that it
  /// had are gone. Any code is kept; one that this component doesn't know has no values.
  void SetConversionType(EVaneConversionType ct) override;

 private:
  ConversionHost host_;
  CChangedFlag changed_;
  CTracked<std::string, CChangedFlag> serialnumber_;
  EVaneConversionType type_ = EVaneConversionType::CONV_NONE;
  std::unique_ptr<CVaneConversion> conversion_;
};

}  // namespace vane
