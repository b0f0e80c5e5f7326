#include "adapters/qt/qt_layout.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <cstddef>
#include <vector>

#include "adapters/qt/qt_text.h"

namespace vane {
namespace {

using ui::EKind;

constexpr std::size_t kMostRowsOfAColumn = 13;
constexpr int kListStretch = 100;  // of what is left, nearly all
constexpr int kColumnsOfARow = 3;  // label, field with its arrows, unit

struct Row {
  const ui::CControl* label = nullptr;
  const ui::CControl* field = nullptr;
  const ui::CControl* updown = nullptr;
  const ui::CControl* unit = nullptr;
  std::vector<const ui::CControl*> pages;  // of a tab strip: in one place
  bool iswhole = false;                    // as wide as its frame
};

using Controls = std::vector<const ui::CControl*>;

bool IsField(const ui::CControl* control) {
  return control != nullptr &&
         (control->Kind() == EKind::TEXT_FIELD || control->Kind() == EKind::DROP_DOWN ||
          control->Kind() == EKind::LIST_BOX);
}

bool IsPlainLabel(const ui::CControl* control) {
  return control != nullptr && control->Kind() == EKind::LABEL &&
         dynamic_cast<const ui::CLabel&>(*control).Style() == ui::ELabelStyle::PLAIN;
}

Controls ControlsIn(const ui::CForm& form, const ui::CFrame* frame) {
  Controls found;
  for (const auto& control : form.Controls()) {
    if (control->Frame() == frame) found.push_back(control.get());
  }
  return found;
}

std::vector<Row> RowsOf(const Controls& controls) {
  const auto at = [&](std::size_t place) -> const ui::CControl* {
    return place < controls.size() ? controls[place] : nullptr;
  };
  std::vector<Row> rows;
  for (std::size_t i = 0; i < controls.size(); ++i) {
    Row row;
    if (IsPlainLabel(at(i)) && IsField(at(i + 1))) row.label = at(i++);
    row.field = at(i);
    if (row.field->Kind() == EKind::TAB_STRIP) {
      while (at(i + 1) != nullptr && at(i + 1)->Kind() == EKind::FRAME)
        row.pages.push_back(at(++i));
    }
    if (IsField(row.field)) {
      if (at(i + 1) != nullptr && at(i + 1)->Kind() == EKind::UP_DOWN) row.updown = at(++i);
      if (IsPlainLabel(at(i + 1)) && !IsField(at(i + 2))) row.unit = at(++i);
    } else {
      row.iswhole = row.field->Kind() != EKind::BUTTON;
    }
    rows.push_back(row);
  }
  return rows;
}

struct Columns {
  std::size_t second;   // the row that begins the second column; none: behind the last
  std::size_t top = 0;  // the line where it begins
};

// Where a choice heads the rows behind it, the columns begin with the choices, side by side.
Columns ColumnsOf(const std::vector<Row>& rows) {
  if (rows.size() <= kMostRowsOfAColumn) return {rows.size()};
  std::vector<std::size_t> choices;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].field->Kind() == EKind::DROP_DOWN) choices.push_back(i);
  }
  if (choices.size() != 2) return {(rows.size() + 1) / 2};
  return {choices[1], choices[0]};
}

class CLayOut {
 public:
  CLayOut(const ui::CForm& form, const WidgetFinder& widgetof) : form_(form), widgetof_(widgetof) {}

  void Window(QWidget& window) const {
    auto* const layout = new QVBoxLayout(&window);
    Controls content;
    Controls buttons;
    for (const ui::CControl* control : ControlsIn(form_, nullptr)) {
      (control->Kind() == EKind::BUTTON ? buttons : content).push_back(control);
    }
    auto* const rows = new QWidget(&window);
    Fill(*rows, content, false);
    layout->addWidget(rows, 1);
    layout->addLayout(ButtonsBelow(buttons));
    layout->setSizeConstraint(QLayout::SetMinimumSize);
  }

 private:
  QLayout* ButtonsBelow(const Controls& buttons) const {
    auto* const layout = new QHBoxLayout();
    bool atleft = true;
    for (const ui::CControl* control : buttons) {
      const auto& button = dynamic_cast<const ui::CButton&>(*control);
      if (atleft && button.Role() != ui::EButtonRole::PLAIN) {
        layout->addStretch(1);
        atleft = false;
      }
      layout->addWidget(&widgetof_(button));
    }
    return layout;
  }

  void Fill(QWidget& container, const Controls& controls, bool hasmargin) const {
    auto* const grid = new QGridLayout(&container);
    if (!hasmargin) grid->setContentsMargins(0, 0, 0, 0);
    const std::vector<Row> rows = RowsOf(controls);
    const Columns columns = ColumnsOf(rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool isright = i >= columns.second;
      Place(*grid, rows[i], static_cast<int>(isright ? i - columns.second + columns.top : i),
            isright ? kColumnsOfARow + 1 : 0);
    }
    grid->setColumnStretch(1, 1);
    if (columns.second < rows.size()) {
      grid->setColumnStretch(kColumnsOfARow + 2, 1);
      grid->setColumnMinimumWidth(kColumnsOfARow, 2 * grid->horizontalSpacing());
    }
    grid->setRowStretch(grid->rowCount(), 1);
  }

  void Place(QGridLayout& grid, const Row& row, int line, int first) const {
    QWidget& field = widgetof_(*row.field);
    if (row.field->Kind() == EKind::FRAME) {
      grid.addWidget(&field, line, first, 1, kColumnsOfARow);
      return Fill(field, ControlsIn(form_, static_cast<const ui::CFrame*>(row.field)),
                  row.field->Frame() != nullptr);
    }
    if (row.iswhole) {
      if (row.pages.empty()) {
        grid.addWidget(&field, line, first, 1, kColumnsOfARow);
      } else {
        grid.addLayout(Tabs(field, row.pages), line, first, 1, kColumnsOfARow);
      }
      return;
    }
    if (row.field->Kind() == EKind::BUTTON) {
      grid.addWidget(&field, line, first + 1, 1, kColumnsOfARow - 1, Qt::AlignLeft);
      return;
    }
    const bool istall = row.field->Kind() == EKind::LIST_BOX;
    if (istall) grid.setRowStretch(line, kListStretch);
    if (row.label != nullptr) {
      auto& label = static_cast<QLabel&>(widgetof_(*row.label));
      label.setBuddy(&field);  // whose name it is
      if (istall && row.field->Frame() == nullptr) {
        auto* const stack = new QVBoxLayout();
        label.setWordWrap(true);
        stack->addWidget(&label);
        stack->addWidget(&field, 1);
        grid.addLayout(stack, line, first, 1, kColumnsOfARow);
        return;
      }
      grid.addWidget(&label, line, first, istall ? Qt::AlignTop : Qt::AlignVCenter);
    }
    const int span = row.unit == nullptr ? kColumnsOfARow - 1 : 1;
    if (row.updown != nullptr) {
      auto* const joined = new QHBoxLayout();
      joined->setSpacing(0);
      joined->addWidget(&field, 1);
      joined->addWidget(&widgetof_(*row.updown));
      grid.addLayout(joined, line, first + 1, 1, span);
    } else {
      grid.addWidget(&field, line, first + 1, 1, span);
    }
    if (row.unit != nullptr) grid.addWidget(&widgetof_(*row.unit), line, first + 2);
  }

  // The pages share one cell, which is as large as the largest.
  QLayout* Tabs(QWidget& strip, const Controls& pages) const {
    auto* const layout = new QVBoxLayout();
    layout->setSpacing(0);
    layout->addWidget(&strip);
    auto* const cell = new QGridLayout();
    for (const ui::CControl* page : pages) {
      QWidget& widget = widgetof_(*page);
      QSizePolicy policy = widget.sizePolicy();
      policy.setRetainSizeWhenHidden(true);
      widget.setSizePolicy(policy);
      Fill(widget, ControlsIn(form_, static_cast<const ui::CFrame*>(page)), true);
      cell->addWidget(&widget, 0, 0);
    }
    layout->addLayout(cell, 1);
    return layout;
  }

  const ui::CForm& form_;
  const WidgetFinder& widgetof_;
};

}  // namespace

void LayOutWindow(const ui::CForm& form, QWidget& window, const WidgetFinder& widgetof) {
  CLayOut(form, widgetof).Window(window);
}

}  // namespace vane
