// What two snapshots differ in, as a table in a window of its own.
#pragma once

#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "apps/snapshots/snapshot.h"

class QWidget;

namespace vane::desktop {

struct DifferenceView {
  QString title;
  QString intro;  ///< above the table; several lines at most
  QString left;   ///< whose values these are
  QString right;
  const std::vector<thermoscribe::Difference>& rows;
  std::function<std::string(const thermoscribe::Difference&)> note = {};  ///< null: no such column
  QString accept = {};  ///< the button that goes on; empty: there is only Close
};

/// Shows it until the user closes it. Ctrl+C copies all rows for a spreadsheet. True when he has
/// pressed the button that goes on.
bool ShowDifferences(QWidget* parent, const DifferenceView& view);

}  // namespace vane::desktop
