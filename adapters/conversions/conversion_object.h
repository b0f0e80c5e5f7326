// A conversion: the type that a probe has at the moment, and the values of that type.
#pragma once

#include <memory>
#include <string>

#include "vane/components/conversion.h"
#include "vane/support/tracked.h"

namespace vane {

class CConversion : public CVaneConversion {
 public:
  /// `changed` is the probe's flag; it outlives the conversion.
  CConversion(EVaneConversionType ct, CChangedFlag& changed);

  // Both serve a dialog and the files it would read, which this component doesn't have.
  void SetAllowEdit(bool) override {}
  void SetFilePath(const std::string&) override {}

  CConversionSettings* Settings() override { return settings_.get(); }

  /// Raises `LibraryError`: there is no dialog here. The values are reached through `Settings`.
  void EditSettings() override;

 private:
  std::unique_ptr<CConversionSettings> settings_;
};

}  // namespace vane
