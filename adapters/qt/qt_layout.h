// Where the controls of a window stand: told by their order alone.
//
// A label and the field behind it are a row, with the field's arrows and a label that names its
// unit; all else has a row of its own. A list of the window itself fills it, below its label. A
// frame inside another is a group; frames behind a tab strip are its pages, which share their
// place, so that the window keeps its size. A page with many rows has two columns. The buttons of
// the window itself stand below, those that answer it at the right.
#pragma once

#include <QWidget>
#include <functional>

#include "vane/components/form.h"

namespace vane {

using WidgetFinder = std::function<QWidget&(const ui::CControl&)>;

/// Lays out `window`, whose widgets are all made. Also names fields for screen readers by their
/// labels.
void LayOutWindow(const ui::CForm& form, QWidget& window, const WidgetFinder& widgetof);

}  // namespace vane
