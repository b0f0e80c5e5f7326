// The save dialog and the choice of a printer as windows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vane/components/file_dialog.h"

namespace vane {

class CQtFileDialog final : public CVaneFileDialog {
 public:
  void SetOptionA(bool) override {}
  void SetDefaultExt(const std::string& extension) override { extension_ = extension; }
  void SetDialogTitle(const std::string& title) override { title_ = title; }
  void SetFlags(std::int32_t flags) override { flags_ = flags; }
  void SetFileName(const std::string& name) override { filename_ = name; }
  /// Pairs of a name and its patterns, "Text files (*.txt)|*.txt|...".
  void SetFilter(const std::string& filter) override { filter_ = filter; }
  void SetOptionB(bool) override {}
  void SetInitDir(const std::string& folder) override { initdir_ = folder; }

  void ShowSave() override;

  const std::string& FileName() const override { return filename_; }

 private:
  std::string extension_;
  std::string title_;
  std::string filename_;
  std::string filter_;
  std::string initdir_;
  std::int32_t flags_ = 0;
};

/// Asks for one of `printers`; nothing when the user doesn't want to print after all.
std::optional<std::string> ChoosePrinterInWindow(const std::vector<std::string>& printers);

}  // namespace vane
