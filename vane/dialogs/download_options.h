// The dialog that asks what of a log to download, and starts the download. It stays open for
// another one, and remembers nothing but its place.
#pragma once

#include <cstdint>
#include <memory>

#include "vane/components/components.h"
#include "vane/components/field_parser.h"
#include "vane/dialogs/number_field.h"

namespace vane {

class CVaneT312B;

/// Loaded, handed its instrument, shown and unloaded once, by `CVaneT312B::DownloadLoggedData`.
class frmT312BDownloadOptions {
 public:
  explicit frmT312BDownloadOptions(const Components& components);
  frmT312BDownloadOptions(const frmT312BDownloadOptions&) = delete;
  frmT312BDownloadOptions& operator=(const frmT312BDownloadOptions&) = delete;

  ui::CForm& Form() { return *form_; }

  /// The instrument outlives the dialog's unloading.
  void SetInstrument(CVaneT312B& instrument) { instrument_ = &instrument; }

 private:
  void LoadCaptions();
  void SetUpFields();
  void ChooseReadings();
  void Download();

  CVaneT312B* instrument_ = nullptr;
  std::int32_t logchoice_ = 0;
  std::int32_t filechoice_ = 0;
  std::int32_t readingschoice_ = 0;
  const std::unique_ptr<AwkOne> awkparser_;

  std::unique_ptr<ui::CForm> form_;
  ui::CFrame& options_;
  ui::CFrame& logframe_;
  ui::COptionGroup& log_;
  ui::CFrame& readingsframe_;
  ui::COptionGroup& readings_;
  ui::CTextField& txtreadings_;
  ui::CUpDown& udreadings_;
  ui::CLabel& lblreadings_;
  ui::CLabel& lblresolution_;
  ui::CTextField& txtresolution_;
  ui::CUpDown& udresolution_;
  ui::CLabel& lblplaces_;
  ui::CFrame& filesframe_;
  ui::COptionGroup& files_;
  ui::CCheckBox& prompt_;
  ui::CButton& download_;
  ui::CButton& close_;
  ui::CButton& help_;
  CNumberField numreadings_;
  CNumberField resolution_;
};

}  // namespace vane
