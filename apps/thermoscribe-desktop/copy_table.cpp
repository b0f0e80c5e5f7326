#include "apps/thermoscribe-desktop/copy_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>

namespace vane::desktop {

QString CCopyTable::Text() const {
  QStringList lines;
  for (int row = -1; row < rowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < columnCount(); ++column) {
      if (isColumnHidden(column)) continue;
      cells << (row < 0 ? horizontalHeaderItem(column) : item(row, column))->text();
    }
    lines << cells.join('\t');
  }
  return lines.join('\n') + '\n';
}

void CCopyTable::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    QGuiApplication::clipboard()->setText(Text());
    return;
  }
  QTableWidget::keyPressEvent(event);
}

}  // namespace vane::desktop
