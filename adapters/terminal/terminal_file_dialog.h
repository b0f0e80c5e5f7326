// The save dialog as a question on a terminal.
//
// It offers the suggested path and takes another. Lives on the user-interface thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "adapters/terminal/interrupts.h"
#include "vane/components/file_dialog.h"

namespace vane {

class CTerminalFileDialog : public CVaneFileDialog {
 public:
  /// `interrupts` outlives the dialog; the descriptors stay the host's.
  explicit CTerminalFileDialog(CInterrupts& interrupts, int input = 0, int output = 2);

  void SetOptionA(bool) override {}
  void SetDefaultExt(const std::string& extension) override { extension_ = extension; }
  void SetDialogTitle(const std::string& title) override { title_ = title; }
  void SetFlags(std::int32_t flags) override { flags_ = flags; }
  void SetFileName(const std::string& name) override { filename_ = name; }
  void SetFilter(const std::string&) override {}  // no list of files is shown
  void SetOptionB(bool) override {}
  void SetInitDir(const std::string& folder) override { initdir_ = folder; }

  /// An empty line takes the suggestion. A path that isn't absolute counts from `InitDir`, a folder
  /// stands for the suggested name in it, and a name without an extension gets the default one.
  ///
  /// Ctrl-C (which stays pending), the end of the input, and a host without a terminal cancel it;
  /// the output says which, and `FileName` stays what it was.
  void ShowSave() override;

  const std::string& FileName() const override { return filename_; }

 private:
  std::string Ask(const std::string& question);
  std::filesystem::path PathOf(const std::string& answer) const;
  bool IsAccepted(const std::filesystem::path& path);
  void Say(const std::string& text) const;
  [[noreturn]] void Cancel(const std::string& why) const;

  CInterrupts& interrupts_;
  int input_;
  int output_;
  std::string extension_;
  std::string title_;
  std::int32_t flags_ = 0;
  std::string filename_;
  std::string initdir_;
};

}  // namespace vane
