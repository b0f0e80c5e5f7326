#include "adapters/qt/qt_factory.h"

#include "adapters/conversions/probe.h"
#include "adapters/files/column_file.h"
#include "adapters/qt/help_topics.h"
#include "adapters/qt/pumped_communications.h"
#include "adapters/qt/qt_file_dialog.h"
#include "adapters/qt/qt_passcode.h"
#include "adapters/qt/qt_progress.h"
#include "adapters/qt/qt_view.h"

namespace vane {

std::unique_ptr<CVaneCommunications> CQtFactory::MakeCommunications() {
  return std::make_unique<CPumpedCommunications>(CHeadlessFactory::MakeCommunications());
}

std::unique_ptr<CVaneProbe> CQtFactory::MakeProbe() {
  return std::make_unique<CThermometerProbe>(true);
}

std::unique_ptr<CVaneProgress> CQtFactory::MakeProgress() {
  return std::make_unique<CQtProgress>();
}

std::unique_ptr<CVaneOutputFile> CQtFactory::MakeOutputFile() {
  return std::make_unique<CColumnTextFile>(ChoosePrinterInWindow);
}

std::unique_ptr<CVaneFileDialog> CQtFactory::MakeFileDialog() {
  return std::make_unique<CQtFileDialog>();
}

std::unique_ptr<CVanePasscodeDialog> CQtFactory::MakePasscodeDialog() {
  return std::make_unique<CQtPasscodeDialog>();
}

std::unique_ptr<ui::CForm> CQtFactory::MakeForm(const std::string& name) {
  auto form = std::make_unique<ui::CForm>(name, std::make_unique<CQtView>());
  form->SetHelpContext(HelpTopicOfWindow(name));
  return form;
}

}  // namespace vane
