#include "adapters/qt/qt_file_dialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QStringList>

#include "adapters/qt/qt_text.h"
#include "vane/components/library_error.h"

namespace vane {
namespace {

constexpr std::int32_t kOverwritePrompt = 0x2;

// The name of each pair holds its patterns already, in the form that the toolkit reads.
QStringList NamesOf(const std::string& filter) {
  const QStringList parts = ToQt(filter).split('|', Qt::SkipEmptyParts);
  QStringList names;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    names.append(parts[i].contains('(') ? parts[i] : parts[i] + " (" + parts[i + 1] + ")");
  }
  return names;
}

}  // namespace

void CQtFileDialog::ShowSave() {
  QFileDialog dialog(QApplication::activeWindow(), ToQt(title_), ToQt(initdir_));
  dialog.setEnabled(true);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setDefaultSuffix(ToQt(extension_));
  dialog.setOption(QFileDialog::DontConfirmOverwrite, (flags_ & kOverwritePrompt) == 0);
  if (!filter_.empty()) dialog.setNameFilters(NamesOf(filter_));
  dialog.selectFile(ToQt(filename_));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "No file was chosen: cancelled.");
  }
  filename_ = FromQt(dialog.selectedFiles().front());
}

std::optional<std::string> ChoosePrinterInWindow(const std::vector<std::string>& printers) {
  QStringList names;
  for (const std::string& printer : printers) names.append(ToQt(printer));
  QInputDialog dialog(QApplication::activeWindow());
  dialog.setEnabled(true);
  dialog.setWindowTitle("Print");
  dialog.setLabelText("Printer:");
  dialog.setComboBoxItems(names);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(dialog.textValue());
}

}  // namespace vane
