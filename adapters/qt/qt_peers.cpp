#include "adapters/qt/qt_peers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGroupBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <utility>
#include <vector>

#include "adapters/qt/qt_field.h"
#include "adapters/qt/qt_text.h"
#include "vane/components/library_error.h"

namespace vane {

void CControlPeer::Mirror(ui::EAspect aspect) {
  const bool before = std::exchange(mirroring_, true);
  if (aspect == ui::EAspect::ENABLED) {
    widget_->setEnabled(control_.Enabled());
  } else if (aspect == ui::EAspect::VISIBLE) {
    widget_->setVisible(control_.Visible());
  } else {
    Show(aspect);
  }
  mirroring_ = before;
}

void CControlPeer::MirrorAll() {
  using ui::EAspect;
  for (const EAspect aspect :
       {EAspect::CAPTION, EAspect::ENABLED, EAspect::VISIBLE, EAspect::ITEMS, EAspect::RANGE,
        EAspect::TEXT, EAspect::SELECTION, EAspect::CHECKED, EAspect::TAB}) {
    Mirror(aspect);
  }
}

namespace {

using ui::EAspect;

// The window takes the access keys itself; the button only shows its own.
void ShowCaption(QAbstractButton& button, const std::string& caption) {
  button.setText(ToQt(caption));
  button.setShortcut({});
}

// The frame around the content of a window. Its caption is that of the window, which stands in the
// title bar already, so it is there for screen readers alone.
class CFramePeer final : public CControlPeer {
 public:
  CFramePeer(ui::CControl& control, QWidget* parent) : CControlPeer(control, new QWidget(parent)) {}

 private:
  void Show(EAspect aspect) override {
    if (aspect == EAspect::CAPTION) Widget().setAccessibleName(ToQt(Control().Caption()));
  }
};

class CGroupPeer final : public CControlPeer {
 public:
  CGroupPeer(ui::CControl& control, QWidget* parent)
      : CControlPeer(control, new QGroupBox(parent)) {}

 private:
  void Show(EAspect aspect) override {
    if (aspect != EAspect::CAPTION) return;
    static_cast<QGroupBox&>(Widget()).setTitle(ToQt(Control().Caption()));
  }
};

// Red, and light enough to be read on a dark window.
QColor NoticeColour(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128 ? QColor(0xFF, 0x8A, 0x80)
                                                           : QColor(0xB0, 0x00, 0x20);
}

class CLabelPeer final : public CControlPeer {
 public:
  CLabelPeer(ui::CLabel& control, QWidget* parent) : CControlPeer(control, new QLabel(parent)) {
    auto& label = static_cast<QLabel&>(Widget());
    label.setTextFormat(Qt::PlainText);
    QFont font = label.font();
    font.setBold(control.Style() != ui::ELabelStyle::PLAIN);
    label.setFont(font);
    if (control.Style() != ui::ELabelStyle::NOTICE) return;
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, NoticeColour(palette));
    label.setPalette(palette);
  }

 private:
  void Show(EAspect aspect) override {
    if (aspect != EAspect::CAPTION) return;
    static_cast<QLabel&>(Widget()).setText(ToQt(ui::PlainCaption(Control().Caption())));
  }
};

// Two arrows, one above the other, as high as the field that they belong to.
class CUpDownPeer final : public CControlPeer {
 public:
  CUpDownPeer(ui::CUpDown& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new QWidget(parent)) {
    auto* const layout = new QVBoxLayout(&Widget());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const bool up : {true, false}) {
      auto* const arrow = new QToolButton(&Widget());
      arrow->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
      arrow->setAutoRepeat(true);
      arrow->setFocusPolicy(Qt::NoFocus);
      arrow->setFixedWidth(arrow->fontMetrics().height() + 2);
      arrow->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
      arrow->setAccessibleName(up ? "Up" : "Down");
      QObject::connect(arrow, &QToolButton::clicked, &Widget(),
                       [this, &control, &user, up] { TellUser([&] { user.Step(control, up); }); });
      layout->addWidget(arrow);
    }
    Widget().setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
  }

 private:
  void Show(EAspect) override {}
};

template <class List>
void ShowItems(List& widget, const ui::CItemList& list) {
  widget.clear();
  for (std::int32_t i = 0; i < list.ListCount(); ++i) widget.addItem(ToQt(list.ItemText(i)));
}

// Turned over by a wheel, a list that nobody looks at would change its setting.
class CCombo final : public QComboBox {
 public:
  using QComboBox::QComboBox;

  QSize sizeHint() const override { return Wider(QComboBox::sizeHint()); }
  QSize minimumSizeHint() const override { return Wider(QComboBox::minimumSizeHint()); }

 protected:
  void wheelEvent(QWheelEvent* event) override { event->ignore(); }

 private:
  // Some styles round down on screens of a high resolution, and cut the longest text.
  QSize Wider(const QSize& hint) const {
    return hint + QSize(2 * fontMetrics().averageCharWidth(), 0);
  }
};

class CDropDownPeer final : public CControlPeer {
 public:
  CDropDownPeer(ui::CDropDown& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new CCombo(parent)), list_(control) {
    auto& combo = Combo();
    combo.setSizeAdjustPolicy(QComboBox::AdjustToContents);
    combo.setMinimumContentsLength(12);
    combo.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QObject::connect(&combo, &QComboBox::activated, &combo,
                     [this, &user](int index) { TellUser([&] { user.Pick(list_, index); }); });
  }

 private:
  QComboBox& Combo() const { return static_cast<QComboBox&>(Widget()); }

  void Show(EAspect aspect) override {
    if (aspect != EAspect::ITEMS && aspect != EAspect::SELECTION) return;
    const QSignalBlocker silence(&Combo());
    if (aspect == EAspect::ITEMS && !ShowsItems()) ShowItems(Combo(), list_);
    Combo().setCurrentIndex(list_.ListIndex());
  }

  bool ShowsItems() const {
    if (Combo().count() != list_.ListCount()) return false;
    for (std::int32_t i = 0; i < list_.ListCount(); ++i) {
      if (Combo().itemText(i) != ToQt(list_.ItemText(i))) return false;
    }
    return true;
  }

  ui::CDropDown& list_;
};

// Getting the focus selects nothing: that is the user's to do.
class CList final : public QListWidget {
 public:
  using QListWidget::QListWidget;

 protected:
  void focusInEvent(QFocusEvent* event) override {
    const bool hasnone = !currentIndex().isValid();
    const QSignalBlocker silence(this);
    QListWidget::focusInEvent(event);
    if (hasnone) selectionModel()->clear();
  }
};

class CListBoxPeer final : public CControlPeer {
 public:
  CListBoxPeer(ui::CListBox& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new CList(parent)), list_(control) {
    auto& box = Box();
    box.setUniformItemSizes(true);
    box.setMinimumHeight(6 * box.fontMetrics().lineSpacing());
    QObject::connect(&box, &QListWidget::currentRowChanged, &box, [this, &user](int row) {
      if (row >= 0) TellUser([&] { user.Pick(list_, row); });
    });
    QObject::connect(&box, &QListWidget::itemDoubleClicked, &box,
                     [this, &user](QListWidgetItem* item) {
                       const int row = Box().row(item);
                       TellUser([&] { user.DoubleClick(list_, row); });
                     });
  }

 private:
  QListWidget& Box() const { return static_cast<QListWidget&>(Widget()); }

  void Show(EAspect aspect) override {
    if (aspect != EAspect::ITEMS && aspect != EAspect::SELECTION) return;
    const QSignalBlocker silence(&Box());
    if (aspect == EAspect::ITEMS && !ShowsItems()) ShowItems(Box(), list_);
    if (Box().currentRow() != list_.ListIndex()) Box().setCurrentRow(list_.ListIndex());
  }

  bool ShowsItems() const {
    if (Box().count() != list_.ListCount()) return false;
    for (std::int32_t i = 0; i < list_.ListCount(); ++i) {
      if (Box().item(i)->text() != ToQt(list_.ItemText(i))) return false;
    }
    return true;
  }

  ui::CListBox& list_;
};

class CCheckBoxPeer final : public CControlPeer {
 public:
  CCheckBoxPeer(ui::CCheckBox& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new QCheckBox(parent)), box_(control) {
    QObject::connect(&Box(), &QCheckBox::clicked, &Box(),
                     [this, &user] { TellUser([&] { user.Click(box_); }); });
  }

 private:
  QCheckBox& Box() const { return static_cast<QCheckBox&>(Widget()); }

  void Show(EAspect aspect) override {
    if (aspect == EAspect::CAPTION) ShowCaption(Box(), box_.Caption());
    if (aspect == EAspect::CHECKED) Box().setChecked(box_.Checked());
  }

  ui::CCheckBox& box_;
};

class COptionGroupPeer final : public CControlPeer {
 public:
  COptionGroupPeer(ui::COptionGroup& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new QWidget(parent)), group_(control) {
    auto* const layout = new QVBoxLayout(&Widget());
    layout->setContentsMargins(0, 0, 0, 0);
    for (std::int32_t i = 0; i < group_.Count(); ++i) {
      auto* const button = new QRadioButton(&Widget());
      button->setAutoExclusive(false);
      QObject::connect(button, &QRadioButton::clicked, &Widget(),
                       [this, &user, i] { TellUser([&] { user.Choose(group_, i); }); });
      layout->addWidget(button);
      buttons_.push_back(button);
    }
  }

  QWidget& FocusWidget() const override {
    return *buttons_.at(static_cast<std::size_t>(std::max(group_.Selected(), 0)));
  }

  bool TakeKey(int key, Qt::KeyboardModifiers, const QString&) override {
    const bool back = key == Qt::Key_Up || key == Qt::Key_Left;
    if (!back && key != Qt::Key_Down && key != Qt::Key_Right) return false;
    const std::int32_t next = group_.Selected() + (back ? -1 : 1);
    if (next >= 0 && next < group_.Count()) {
      buttons_[static_cast<std::size_t>(next)]->click();
      FocusWidget().setFocus();
    }
    return true;
  }

 private:
  void Show(EAspect aspect) override {
    for (std::int32_t i = 0; i < group_.Count(); ++i) {
      QRadioButton& button = *buttons_[static_cast<std::size_t>(i)];
      if (aspect == EAspect::ITEMS) ShowCaption(button, group_.OptionCaption(i));
      if (aspect == EAspect::SELECTION) button.setChecked(i == group_.Selected());
    }
  }

  ui::COptionGroup& group_;
  std::vector<QRadioButton*> buttons_;
};

class CButtonPeer final : public CControlPeer {
 public:
  CButtonPeer(ui::CButton& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new QPushButton(parent)), button_(control) {
    Button().setAutoDefault(false);
    Button().setDefault(control.Role() == ui::EButtonRole::DEFAULT);
    QObject::connect(&Button(), &QPushButton::clicked, &Button(),
                     [this, &user] { TellUser([&] { user.Click(button_); }); });
  }

 private:
  QPushButton& Button() const { return static_cast<QPushButton&>(Widget()); }

  void Show(EAspect aspect) override {
    if (aspect == EAspect::CAPTION) ShowCaption(Button(), button_.Caption());
  }

  ui::CButton& button_;
};

class CTabStripPeer final : public CControlPeer {
 public:
  CTabStripPeer(ui::CTabStrip& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new QTabBar(parent)), tabs_(control) {
    Bar().setExpanding(false);
    Bar().setUsesScrollButtons(false);
    Bar().setFocusPolicy(Qt::StrongFocus);
    QObject::connect(&Bar(), &QTabBar::currentChanged, &Bar(), [this, &user](int index) {
      if (index >= 0) TellUser([&] { user.SelectTab(tabs_, index); });
    });
  }

 private:
  QTabBar& Bar() const { return static_cast<QTabBar&>(Widget()); }

  void Show(EAspect aspect) override {
    if (aspect == EAspect::ITEMS) {
      while (Bar().count() < tabs_.Count()) Bar().addTab({});
      while (Bar().count() > tabs_.Count()) Bar().removeTab(Bar().count() - 1);
      for (std::int32_t i = 0; i < tabs_.Count(); ++i) {
        Bar().setTabText(i, ToQt(ui::PlainCaption(tabs_.TabText(i))));
      }
    }
    if (aspect == EAspect::ITEMS || aspect == EAspect::TAB) Bar().setCurrentIndex(tabs_.Selected());
  }

  ui::CTabStrip& tabs_;
};

}  // namespace

std::unique_ptr<CControlPeer> MakePeer(ui::CControl& control, ui::CUser& user, QWidget* parent) {
  using ui::EKind;
  switch (control.Kind()) {
    case EKind::LABEL:
      return std::make_unique<CLabelPeer>(dynamic_cast<ui::CLabel&>(control), parent);
    case EKind::TEXT_FIELD:
      return MakeFieldPeer(dynamic_cast<ui::CTextField&>(control), user, parent);
    case EKind::UP_DOWN:
      return std::make_unique<CUpDownPeer>(dynamic_cast<ui::CUpDown&>(control), user, parent);
    case EKind::DROP_DOWN:
      return std::make_unique<CDropDownPeer>(dynamic_cast<ui::CDropDown&>(control), user, parent);
    case EKind::LIST_BOX:
      return std::make_unique<CListBoxPeer>(dynamic_cast<ui::CListBox&>(control), user, parent);
    case EKind::CHECK_BOX:
      return std::make_unique<CCheckBoxPeer>(dynamic_cast<ui::CCheckBox&>(control), user, parent);
    case EKind::OPTION_GROUP:
      return std::make_unique<COptionGroupPeer>(dynamic_cast<ui::COptionGroup&>(control), user,
                                                parent);
    case EKind::BUTTON:
      return std::make_unique<CButtonPeer>(dynamic_cast<ui::CButton&>(control), user, parent);
    case EKind::TAB_STRIP:
      return std::make_unique<CTabStripPeer>(dynamic_cast<ui::CTabStrip&>(control), user, parent);
    case EKind::FRAME:
      // One inside another is a group of its own; the outer one is the window's content.
      if (control.Frame() == nullptr) return std::make_unique<CFramePeer>(control, parent);
      return std::make_unique<CGroupPeer>(control, parent);
    case EKind::FORM:
      break;
  }
  throw LibraryError(ERR_PLATFORM_CALL, "CQtView - Load",
                     "A window can't show " + control.Name() + ": there is no such kind.");
}

}  // namespace vane
