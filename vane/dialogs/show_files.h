// The dialog that lists the files of a finished download and lets the user open or print them.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "vane/components/components.h"
#include "vane/components/form.h"
#include "vane/components/output_file.h"

namespace vane {

/// Made for one download. What fails in it, an event included, is raised out of `Show`.
class frmShowFiles {
 public:
  explicit frmShowFiles(const Components& components);
  frmShowFiles(const frmShowFiles&) = delete;
  frmShowFiles& operator=(const frmShowFiles&) = delete;

  /// The files to list, before the dialog is shown; they stay the caller's and outlive it. The list
  /// ends at the first empty entry.
  void SetFiles(std::span<const std::unique_ptr<CVaneOutputFile>> files);

  /// Modal above `owner`, the window that the download was started from; null when none is known.
  void Show(ui::CWindow* owner);

  /// Forgets the files.
  void Unload() { form_->Unload(); }

 private:
  void FillList();
  void OpenSelected();

  std::vector<CVaneOutputFile*> files_;
  std::unique_ptr<ui::CForm> form_;
  ui::CLabel& instructions_;
  ui::CListBox& list_;
  ui::CCheckBox& print_;
  ui::CButton& ok_;
};

}  // namespace vane
