// A table from which Ctrl+C copies all rows with their titles, for a spreadsheet.
#pragma once

#include <QTableWidget>

namespace vane::desktop {

class CCopyTable : public QTableWidget {
 public:
  using QTableWidget::QTableWidget;

  /// Cells with tabs between, of the columns that are shown.
  QString Text() const;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace vane::desktop
