#include "vane/dialogs/show_files.h"

#include "vane/components/library_error.h"
#include "vane/support/messages.h"
#include "vane/support/paths.h"
#include "vane/support/text_table.h"

namespace vane {

frmShowFiles::frmShowFiles(const Components& components)
    : form_(components.factory.MakeForm("frmShowFiles")),
      instructions_(form_->Add<ui::CLabel>("lblInstructions")),
      list_(form_->Add<ui::CListBox>("lstFiles")),
      print_(form_->Add<ui::CCheckBox>("chkPrint")),
      ok_(form_->Add<ui::CButton>("cmdOK", nullptr, ui::EButtonRole::DEFAULT)) {
  form_->OnLoad([this] {
    form_->SetCaption(ResourceText(EText::DOWNLOADED_FILES));
    instructions_.SetCaption(ResourceText(EText::DATA_WAS_WRITTEN_TO_FILES));
    print_.SetCaption(ResourceText(EText::SEND_TO_PRINTER));
    ok_.SetCaption(ResourceText(EText::OK));
  });
  form_->OnFirstPaint([this] {
    FillList();
    SetBusyCursor(false);
  });
  form_->OnUnload([this] { files_.clear(); });
  list_.OnDoubleClick([this] { OpenSelected(); });
  ok_.OnClick([this] { form_->Hide(); });
}

void frmShowFiles::SetFiles(std::span<const std::unique_ptr<CVaneOutputFile>> files) {
  files_.clear();
  for (const auto& file : files) files_.push_back(file.get());
}

void frmShowFiles::Show(ui::CWindow* owner) { form_->ShowModal(owner); }

void frmShowFiles::FillList() {
  for (std::size_t index = 0; index < files_.size() && files_[index] != nullptr; ++index) {
    list_.AddItem(BuildFullPath(files_[index]->Folder(), files_[index]->FileName()));
    list_.SetItemData(list_.NewIndex(), static_cast<std::int32_t>(index));
  }
}

void frmShowFiles::OpenSelected() {
  const auto index = static_cast<std::size_t>(list_.ItemData(list_.ListIndex()));
  CVaneOutputFile& file = *files_.at(index);
  const std::shared_ptr<CVaneRegistry>& registry = file.Registry();
  if (!registry) throw LibraryError(ERR_PLATFORM_CALL, {}, "There is no registry component.");
  const bool selectprinter =
      registry->ReadBoolean("SelectPrinter", true, kCurrentUserRoot, {}) != 0;
  if (print_.Checked()) {
    bool success = false;
    file.Print(selectprinter, success);
  } else {
    file.Show(true);
  }
}

}  // namespace vane
