#include "adapters/qt/qt_passcode.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "adapters/qt/help_topics.h"
#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_view.h"
#include "vane/support/messages.h"

namespace vane {

bool CQtPasscodeDialog::ShowDialog(std::string& entered, ui::CWindow* owner) {
  QWidget* const parent = WidgetOfWindow(owner);
  QDialog dialog(parent != nullptr ? parent : QApplication::activeWindow());
  dialog.setObjectName("passcode");
  dialog.setWindowTitle("Passcode");
  dialog.setEnabled(true);
  auto* const layout = new QVBoxLayout(&dialog);
  auto* const label = new QLabel("Enter the &passcode of the readout:", &dialog);
  auto* const line = new QLineEdit(&dialog);
  line->setEchoMode(QLineEdit::Password);
  line->setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhHiddenText);
  line->setMinimumWidth(24 * line->fontMetrics().averageCharWidth());
  label->setBuddy(line);
  layout->addWidget(label);
  layout->addWidget(line);
  QDialogButtonBox::StandardButtons buttons = QDialogButtonBox::Ok | QDialogButtonBox::Cancel;
  if (!helpfile_.empty()) buttons |= QDialogButtonBox::Help;
  auto* const box = new QDialogButtonBox(buttons, &dialog);
  layout->addWidget(box);
  QPushButton* const ok = box->button(QDialogButtonBox::Ok);
  ok->setEnabled(false);
  QObject::connect(line, &QLineEdit::textChanged, ok,
                   [ok](const QString& text) { ok->setEnabled(!text.isEmpty()); });
  QObject::connect(box, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  QObject::connect(box, &QDialogButtonBox::helpRequested, &dialog,
                   [] { ShowHelpTopic(kPasscodeTopic); });
  const bool accepted = dialog.exec() == QDialog::Accepted;
  QString text = line->text();
  // From here on the text is this one's alone, and can be overwritten where it lies.
  line->clear();
  if (accepted) entered = FromQt(text);
  text.fill(QChar(u'\0'));
  return accepted;
}

}  // namespace vane
