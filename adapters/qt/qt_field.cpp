#include "adapters/qt/qt_field.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <algorithm>
#include <functional>
#include <utility>

#include "adapters/qt/qt_text.h"

namespace vane {
namespace {

using ui::EAspect;

constexpr std::int16_t kBackspace = 8;

// The toolkit counts in units of UTF-16, the library in characters.
std::int32_t CharactersBefore(const QString& text, int place) {
  return static_cast<std::int32_t>(text.left(place).toUcs4().size());
}

int UnitsBefore(const QString& text, std::int32_t characters) {
  const auto codes = text.toUcs4();
  const auto count = std::min<qsizetype>(characters, codes.size());
  qsizetype units = 0;
  for (qsizetype i = 0; i < count; ++i) units += QChar::requiresSurrogates(codes[i]) ? 2 : 1;
  return static_cast<int>(units);
}

enum class EEdit : std::int32_t { CUT, COPY, PASTE, PASTE_SELECTION, SELECT_ALL };

// Moves its caret and selects by itself; all that would change its text is handed on.
class CLine final : public QLineEdit {
 public:
  CLine(QWidget* parent, std::function<void(EEdit)> edit, std::function<void(QString)> type)
      : QLineEdit(parent), edit_(std::move(edit)), type_(std::move(type)) {
    setAcceptDrops(false);
    setDragEnabled(false);
  }

 protected:
  void inputMethodEvent(QInputMethodEvent* event) override {
    if (!event->commitString().isEmpty()) type_(event->commitString());
    event->accept();
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() == Qt::MiddleButton) {
      edit_(EEdit::PASTE_SELECTION);
      return event->accept();
    }
    QLineEdit::mouseReleaseEvent(event);
  }

  void contextMenuEvent(QContextMenuEvent* event) override {
    QMenu menu;
    const auto add = [&](const char* text, EEdit edit, bool enabled) {
      menu.addAction(text, this, [this, edit] { edit_(edit); })->setEnabled(enabled);
    };
    add("Cu&t", EEdit::CUT, !isReadOnly() && hasSelectedText());
    add("&Copy", EEdit::COPY, hasSelectedText());
    add("&Paste", EEdit::PASTE, !isReadOnly() && !QApplication::clipboard()->text().isEmpty());
    add("Select &all", EEdit::SELECT_ALL, !text().isEmpty());
    menu.exec(event->globalPos());
  }

 private:
  const std::function<void(EEdit)> edit_;
  const std::function<void(QString)> type_;
};

class CFieldPeer final : public CControlPeer {
 public:
  CFieldPeer(ui::CTextField& control, ui::CUser& user, QWidget* parent)
      : CControlPeer(control, new CLine(
                                  parent, [this](EEdit edit) { Edit(edit); },
                                  [this](const QString& text) { Type(text); })),
        field_(control),
        user_(user) {
    QLineEdit& line = Line();
    line.setReadOnly(control.IsReadOnly());
    if (control.IsReadOnly()) {
      QPalette palette = line.palette();
      palette.setColor(QPalette::Base, palette.color(QPalette::Window));
      line.setPalette(palette);
    }
    QObject::connect(&line, &QLineEdit::selectionChanged, &line, [this] { TellSelection(); });
    QObject::connect(&line, &QLineEdit::cursorPositionChanged, &line, [this] { TellSelection(); });
    // For a back end that has changed the text past the door.
    QObject::connect(&line, &QLineEdit::textEdited, &line, [this] { TellUser([] {}); });
  }

  bool TakeKey(int key, Qt::KeyboardModifiers modifiers, const QString& text) override {
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    for (const auto& [sequence, edit] : {std::pair{QKeySequence::Cut, EEdit::CUT},
                                         {QKeySequence::Copy, EEdit::COPY},
                                         {QKeySequence::Paste, EEdit::PASTE},
                                         {QKeySequence::SelectAll, EEdit::SELECT_ALL}}) {
      if (event.matches(sequence)) return Edit(edit), true;
    }
    for (const auto sequence : {QKeySequence::Undo, QKeySequence::Redo}) {
      if (event.matches(sequence)) return true;
    }
    if (key == Qt::Key_Up || key == Qt::Key_Down) return Step(key == Qt::Key_Up);
    if (key == Qt::Key_Backspace) return TellUser([&] { user_.Key(kBackspace); }), true;
    if (key == Qt::Key_Delete) return TellUser([&] { user_.Delete(); }), true;
    // Tab and its like are texts too.
    if (text.isEmpty() || !text.at(0).isPrint() ||
        (modifiers & (Qt::ControlModifier | Qt::AltModifier)) != 0) {
      // Of the caret; a key of the toolkit's own that would cut or delete is none.
      const bool ismove =
          key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Home || key == Qt::Key_End;
      return !ismove && (modifiers & Qt::ControlModifier) != 0;
    }
    Type(text);
    return true;
  }

 private:
  QLineEdit& Line() const { return static_cast<QLineEdit&>(Widget()); }

  void Type(const QString& text) {
    TellUser([&] { user_.Type(FromQt(text)); });
  }

  bool Step(bool up) {
    for (const auto& control : field_.Form().Controls()) {
      auto* const updown = dynamic_cast<ui::CUpDown*>(control.get());
      if (updown == nullptr || &updown->Field() != &field_) continue;
      TellUser([&] { user_.Step(*updown, up); });
      return true;
    }
    return false;
  }

  void Edit(EEdit edit) {
    QClipboard& clipboard = *QApplication::clipboard();
    if ((edit == EEdit::CUT || edit == EEdit::COPY) && Line().hasSelectedText()) {
      clipboard.setText(Line().selectedText());
    }
    TellUser([&] {
      switch (edit) {
        case EEdit::CUT:
          if (field_.SelectionLength() > 0) user_.Delete();
          break;
        case EEdit::COPY:
          break;
        case EEdit::PASTE:
          user_.Paste(FromQt(clipboard.text()));
          break;
        case EEdit::PASTE_SELECTION:
          if (clipboard.supportsSelection()) {
            user_.Paste(FromQt(clipboard.text(QClipboard::Selection)));
          }
          break;
        case EEdit::SELECT_ALL:
          user_.SelectAll();
          break;
      }
    });
  }

  // The caret is the toolkit's to move; where it stands now is told, and not put back.
  void TellSelection() {
    if (IsMirroring() || field_.Form().Focused() != &field_) return;
    const QString text = Line().text();
    const int start = Line().hasSelectedText() ? Line().selectionStart() : Line().cursorPosition();
    const std::int32_t first = CharactersBefore(text, start);
    const bool before = std::exchange(telling_, true);
    user_.Select(first, CharactersBefore(text, start + Line().selectionLength()) - first);
    telling_ = before;
  }

  void Show(EAspect aspect) override {
    switch (aspect) {
      case EAspect::RANGE:
        // The door counts the characters.
        break;
      case EAspect::TEXT:
        if (const QString text = ToQt(field_.Text()); Line().text() != text) Line().setText(text);
        break;
      case EAspect::SELECTION: {
        if (telling_) break;
        const int first = UnitsBefore(Line().text(), field_.SelectionStart());
        const int end =
            UnitsBefore(Line().text(), field_.SelectionStart() + field_.SelectionLength());
        if (first == end) {
          Line().deselect();
          Line().setCursorPosition(first);
        } else {
          Line().setSelection(first, end - first);
        }
        break;
      }
      default:
        break;
    }
  }

  ui::CTextField& field_;
  ui::CUser& user_;
  bool telling_ = false;
};

}  // namespace

std::unique_ptr<CControlPeer> MakeFieldPeer(ui::CTextField& control, ui::CUser& user,
                                            QWidget* parent) {
  return std::make_unique<CFieldPeer>(control, user, parent);
}

}  // namespace vane
