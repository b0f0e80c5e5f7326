#include "apps/thermoscribe-desktop/difference_window.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include "adapters/qt/qt_text.h"
#include "apps/snapshots/value_text.h"
#include "apps/thermoscribe-desktop/copy_table.h"

namespace vane::desktop {
namespace {

// Numbers are in the order of their values, behind all texts.
class CCell final : public QTableWidgetItem {
 public:
  using QTableWidgetItem::QTableWidgetItem;

  bool operator<(const QTableWidgetItem& other) const override {
    bool isnumber = false;
    bool isother = false;
    const double value = QLocale().toDouble(text(), &isnumber);
    const double othervalue = QLocale().toDouble(other.text(), &isother);
    if (isnumber != isother) return isother;
    return isnumber ? value < othervalue : QTableWidgetItem::operator<(other);
  }
};

class CDifferenceWindow final : public QDialog {
 public:
  CDifferenceWindow(QWidget* parent, const DifferenceView& view)
      : QDialog(parent), table_(new CCopyTable(this)) {
    setObjectName("differences");
    setWindowTitle(view.title);
    auto* const layout = new QVBoxLayout(this);
    auto* const intro = new QLabel(view.intro, this);
    intro->setTextFormat(Qt::PlainText);
    intro->setWordWrap(true);
    intro->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(intro);
    Fill(view);
    layout->addWidget(table_, 1);
    auto* const box = new QDialogButtonBox(this);
    QPushButton* const close =
        box->addButton(view.accept.isEmpty() ? QDialogButtonBox::Close : QDialogButtonBox::Cancel);
    close->setDefault(true);
    if (!view.accept.isEmpty()) box->addButton(view.accept, QDialogButtonBox::AcceptRole);
    layout->addWidget(box);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(720, 420);
  }

 private:
  void Fill(const DifferenceView& view) {
    QStringList titles{"Where", view.left, view.right};
    if (view.note) titles << "Note";
    table_->setColumnCount(static_cast<int>(titles.size()));
    table_->setHorizontalHeaderLabels(titles);
    table_->setRowCount(static_cast<int>(view.rows.size()));
    int row = 0;
    for (const thermoscribe::Difference& one : view.rows) {
      std::vector<std::string> texts{one.place.Text(), thermoscribe::TextOf(one.left),
                                     thermoscribe::TextOf(one.right)};
      if (view.note) texts.push_back(view.note(one));
      for (int column = 0; column < titles.size(); ++column) {
        auto* const item = new CCell(ToQt(texts[static_cast<std::size_t>(column)]));
        item->setToolTip(item->text());
        table_->setItem(row, column, item);
      }
      ++row;
    }
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setAlternatingRowColors(true);
    table_->setTabKeyNavigation(false);
    table_->setShowGrid(false);
    table_->setSortingEnabled(true);
    table_->sortByColumn(-1, Qt::AscendingOrder);  // as they come, until the user wants otherwise
    table_->setAccessibleName("Differences");
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 8);
    table_->resizeColumnsToContents();
  }

  CCopyTable* const table_;
};

}  // namespace

bool ShowDifferences(QWidget* parent, const DifferenceView& view) {
  return CDifferenceWindow(parent, view).exec() == QDialog::Accepted;
}

}  // namespace vane::desktop
