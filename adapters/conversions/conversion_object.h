// A conversion: the type that a probe has at the moment, and the values of that type.
#pragma once

#include <memory>
#include <string>

#include "vane/components/conversion.h"
#include "vane/support/tracked.h"

namespace vane {

/// What a probe hands on to each of its conversions.
struct ConversionHost {
  bool haswindows = false;                  ///< whether the values can be edited in a window
  std::shared_ptr<CVaneRegistry> registry;  ///< keeps that window's place; may be null
};

class CConversion : public CVaneConversion {
 public:
  /// `changed` is the probe's flag; both outlive the conversion.
  CConversion(EVaneConversionType ct, CChangedFlag& changed, const ConversionHost& host);

  /// Nothing may be edited until the owner allows it.
  void SetAllowEdit(bool value) override { allowedit_ = value; }
  /// This component has no files.
  void SetFilePath(const std::string&) override {}

  CConversionSettings* Settings() override { return settings_.get(); }

  /// Raises `LibraryError` where the type has no values, or the host no windows.
  void EditSettings() override;

 private:
  const EVaneConversionType type_;
  const ConversionHost& host_;
  bool allowedit_ = false;
  std::unique_ptr<CConversionSettings> settings_;
};

}  // namespace vane
