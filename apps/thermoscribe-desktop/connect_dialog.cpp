#include "apps/thermoscribe-desktop/connect_dialog.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "adapters/qt/qt_text.h"
#include "adapters/serial/baud_rates.h"
#include "adapters/serial/serial_ports.h"

namespace vane::desktop {
namespace {

constexpr double kLeastTimeout = 0.01;  // s
constexpr double kMostTimeout = 3600;

class CConnectDialog final : public QDialog {
 public:
  CConnectDialog(QWidget* parent, const std::optional<Connection>& last) : QDialog(parent) {
    setObjectName("connect");
    setWindowTitle("Connect to a readout");
    auto* const layout = new QVBoxLayout(this);
    ports_->setHeaderLabels({"Port", "Adapter", "Serial number"});
    ports_->setRootIsDecorated(false);
    ports_->setAlternatingRowColors(true);
    ports_->setAccessibleName("Ports");
    layout->addWidget(ports_);
    auto* const form = new QFormLayout();
    path_->setPlaceholderText("/dev/...");
    form->addRow("&Device:", path_);
    for (const BaudRateRow& row : BaudRates()) {
      baud_->addItem(QString::number(row.bits), static_cast<int>(row.rate));
    }
    form->addRow("Line &speed (bit/s):", baud_);
    timeout_->setRange(kLeastTimeout, kMostTimeout);
    timeout_->setDecimals(2);
    timeout_->setSingleStep(0.5);
    timeout_->setSuffix(" s");
    form->addRow("&Time-out:", timeout_);
    layout->addLayout(form);
    auto* const box = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect_ = box->addButton("&Connect", QDialogButtonBox::AcceptRole);
    auto* const anew = box->addButton("&Look again", QDialogButtonBox::ResetRole);
    layout->addWidget(box);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(anew, &QPushButton::clicked, this, [this] { FillPorts(PortInUse()); });
    connect(ports_, &QTreeWidget::currentItemChanged, this, [this] { TakePort(); });
    connect(ports_, &QTreeWidget::itemDoubleClicked, this, [this] { accept(); });
    connect(path_, &QLineEdit::textEdited, this, [this] {
      ports_->setCurrentItem(nullptr);
      Enable();
    });
    const Connection shown = last.value_or(Connection{});
    baud_->setCurrentIndex(baud_->findData(static_cast<int>(shown.baud)));
    timeout_->setValue(std::chrono::duration<double>(shown.timeout).count());
    FillPorts(shown.simulated ? "" : shown.port);
    Enable();
    resize(560, 380);
  }

  Connection Chosen() const {
    Connection chosen;
    chosen.simulated = IsSimulated();
    chosen.port = FromQt(path_->text().trimmed());
    chosen.baud = EVaneBaudRate{baud_->currentData().toInt()};
    chosen.timeout = std::chrono::round<std::chrono::milliseconds>(
        std::chrono::duration<double>(timeout_->value()));
    return chosen;
  }

 private:
  bool IsSimulated() const {
    return ports_->currentItem() != nullptr && ports_->currentItem() == simulated_;
  }
  std::string PortInUse() const { return IsSimulated() ? "" : FromQt(path_->text()); }

  // With the port of that path selected; the simulated readout for none.
  void FillPorts(const std::string& selected) {
    ports_->clear();
    QTreeWidgetItem* current = nullptr;
    for (const SerialPortRecord& port : ListSerialPorts()) {
      const std::string adapter =
          port.product.empty() ? port.driver : port.maker + " " + port.product;
      auto* const item = new QTreeWidgetItem(
          ports_, {ToQt(port.path), ToQt(adapter).trimmed(), ToQt(port.serialnumber)});
      item->setToolTip(1, ToQt(port.id));
      if (port.path == selected) current = item;
    }
    simulated_ = new QTreeWidgetItem(ports_, {"Simulated readout", "No instrument at hand", ""});
    for (int column = 0; column < ports_->columnCount(); ++column) {
      ports_->resizeColumnToContents(column);
    }
    if (current == nullptr && selected.empty()) current = simulated_;
    ports_->setCurrentItem(current);
    if (current == nullptr) path_->setText(ToQt(selected));
  }

  void TakePort() {
    const QTreeWidgetItem* const item = ports_->currentItem();
    if (item != nullptr) path_->setText(item == simulated_ ? QString() : item->text(0));
    Enable();
  }

  void Enable() {
    const bool isreal = !IsSimulated();
    baud_->setEnabled(isreal);
    timeout_->setEnabled(isreal);
    connect_->setEnabled(!isreal || !path_->text().trimmed().isEmpty());
  }

  QTreeWidget* const ports_ = new QTreeWidget(this);
  QLineEdit* const path_ = new QLineEdit(this);
  QComboBox* const baud_ = new QComboBox(this);
  QDoubleSpinBox* const timeout_ = new QDoubleSpinBox(this);
  QPushButton* connect_ = nullptr;
  QTreeWidgetItem* simulated_ = nullptr;
};

}  // namespace

std::optional<Connection> AskForConnection(QWidget* parent, const std::optional<Connection>& last) {
  CConnectDialog dialog(parent, last);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.Chosen();
}

}  // namespace vane::desktop
