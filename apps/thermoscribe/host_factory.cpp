#include "apps/thermoscribe/host_factory.h"

#include <utility>

#include "adapters/conversions/probe.h"
#include "adapters/files/column_file.h"
#include "adapters/files/field_reader.h"
#include "adapters/files/private_text_file.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/terminal_file_dialog.h"
#include "adapters/terminal/terminal_form.h"
#include "adapters/terminal/terminal_passcode.h"
#include "adapters/terminal/terminal_printer_choice.h"
#include "adapters/terminal/terminal_progress.h"
#include "vane/components/memory_forms.h"
#include "vane/support/paths.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kOpener = "xdg-open";

// Both note how far the making of a file has come: the library's result doesn't tell.

class CNotedFile final : public CColumnTextFile {
 public:
  CNotedFile(PrinterChoice printerchoice, Patience patience, WrittenFile& note)
      : CColumnTextFile(std::move(printerchoice), kOpener, std::move(patience)), note_(note) {}

  void WriteRow(bool& success) override {
    CColumnTextFile::WriteRow(success);
    if (success) ++note_.rows;
  }
  void Close(bool& success) override {
    CColumnTextFile::Close(success);
    if (success) note_.path = BuildFullPath(Folder(), FileName());
  }

 private:
  WrittenFile& note_;
};

class CNotedDialog final : public CTerminalFileDialog {
 public:
  CNotedDialog(CInterrupts& interrupts, WrittenFile& note)
      : CTerminalFileDialog(interrupts), note_(note) {}

  void ShowSave() override {
    note_.cancelled = true;
    CTerminalFileDialog::ShowSave();
    note_.cancelled = false;
  }

 private:
  WrittenFile& note_;
};

}  // namespace

std::unique_ptr<CVaneCommunications> CHostFactory::MakeCommunications() {
  return std::make_unique<CSerialCommunications>(line_);
}

std::unique_ptr<CVaneProbe> CHostFactory::MakeProbe() {
  return std::make_unique<CThermometerProbe>();
}

std::unique_ptr<CVaneProgress> CHostFactory::MakeProgress() {
  return std::make_unique<CTerminalProgress>(interrupts_);
}

std::unique_ptr<CVanePasscodeDialog> CHostFactory::MakePasscodeDialog() {
  return std::make_unique<CTerminalPasscodeDialog>(interrupts_, passcodefile_, 0, 2, Patience{},
                                                   tell_);
}

std::unique_ptr<CVaneOutputFile> CHostFactory::MakeOutputFile() {
  latestfile_ = {};
  return std::make_unique<CNotedFile>(
      [this](const std::vector<std::string>& printers) {
        return ChoosePrinter(interrupts_, printers);
      },
      Patience{.interrupted = [this] { return interrupts_.Pending(); }}, latestfile_);
}

std::unique_ptr<CVaneFileDialog> CHostFactory::MakeFileDialog() {
  return std::make_unique<CNotedDialog>(interrupts_, latestfile_);
}

std::unique_ptr<AwkOne> CHostFactory::MakeFieldParser() { return std::make_unique<CFieldReader>(); }

std::unique_ptr<CVaneTextFile> CHostFactory::CreateTextFile(const std::string& path) {
  return std::make_unique<CPrivateTextFile>(path);
}

std::unique_ptr<ui::CForm> CHostFactory::MakeForm(const std::string& name) {
  std::unique_ptr<ui::CFormView> view;
  if (showsforms_) {
    view = std::make_unique<CTerminalView>(interrupts_);
  } else {
    view = std::make_unique<CUnseenView>();
  }
  return std::make_unique<ui::CForm>(name, std::move(view));
}

}  // namespace vane::thermoscribe
