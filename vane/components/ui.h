// The toolkit seam: what the library sees of windows and their controls.
//
// A dialog is behaviour: it adds its controls to a form (`form.h`) by kind and name, gives them
// captions and handlers, and shows the form. The state of a control lives here, and three doors
// lead to it:
//
// - out: a back end, which draws the form, is told which aspect of which control has changed;
// - in: what a user does goes through `CUser` (`user.h`), which holds the rules of what is usable
//   and in which order events run; a desktop's slots and a test's lines call the same;
// - program: what a dialog sets itself, by the members below. A selection that a program sets runs
//   the control's click event, also while the window is disabled, and a text that it sets the
//   field's change event; neither runs when nothing changes. Clearing a list runs nothing, and the
//   event of an up-down is the user's alone.
//
// Everything lives on the user-interface thread. What a handler raises goes to the program that
// caused the event, or, where a user did, to the form's failure handler. Indexes count from 0; one
// that is not there raises `std::out_of_range`. Texts are UTF-8; lengths and places within them
// count characters.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vane::ui {

class CForm;
class CFrame;
class CUser;

/// Runs at an event. May be empty.
using Handler = std::function<void()>;

/// A window of the host or of this library. An operation that takes one only passes it on as the
/// owner of a display; null stands for "no window", and the display then stays hidden.
class CWindow {
 public:
  virtual ~CWindow() = default;
};

/// A list of choices: each entry shows a text and carries a whole number, its code. A host that
/// wants its own list filled implements this.
class CListControl {
 public:
  virtual ~CListControl() = default;

  virtual void Clear() = 0;
  virtual void AddItem(const std::string& text) = 0;
  /// Index of the entry just added; a list that sorts its entries may put it anywhere.
  virtual std::int32_t NewIndex() const = 0;
  virtual std::int32_t ListCount() const = 0;
  virtual std::int32_t ItemData(std::int32_t index) const = 0;
  virtual void SetItemData(std::int32_t index, std::int32_t value) = 0;
  /// The selected entry; -1 is none. Setting it to another runs the list's click event.
  virtual std::int32_t ListIndex() const = 0;
  virtual void SetListIndex(std::int32_t index) = 0;
};

enum class EKind : std::int32_t {
  FORM,
  FRAME,
  LABEL,
  TEXT_FIELD,
  UP_DOWN,
  DROP_DOWN,
  LIST_BOX,
  CHECK_BOX,
  OPTION_GROUP,
  BUTTON,
  TAB_STRIP,
};

/// What of a control has changed.
enum class EAspect : std::int32_t {
  CAPTION,
  ENABLED,
  VISIBLE,
  TEXT,       ///< of a field
  ITEMS,      ///< entries, options or tabs: their number, texts or codes
  SELECTION,  ///< the selected entry or option; of a field, the selected part of its text
  RANGE,      ///< limits of an up-down or of a field's length
  CHECKED,
  TAB,    ///< the selected tab
  FOCUS,  ///< the control has got the focus; of a form: no control has it
  SHOWN,  ///< of a form
  PLACE,  ///< of a form: the program has moved or sized it
};

/// Where a control belongs; made by the form.
struct Socket {
  CForm& form;
  std::string name;
  CFrame* frame = nullptr;  ///< that contains it; null is the form itself
};

/// What every control has. A caption may mark its access key with "&".
class CControl {
 public:
  CControl(Socket socket, EKind kind)
      : form_(socket.form), name_(std::move(socket.name)), frame_(socket.frame), kind_(kind) {}
  virtual ~CControl() = default;
  CControl(const CControl&) = delete;
  CControl& operator=(const CControl&) = delete;

  EKind Kind() const { return kind_; }
  /// One of an array bears its index: "txtCalParam(1)".
  const std::string& Name() const { return name_; }
  CForm& Form() const { return form_; }
  CFrame* Frame() const { return frame_; }

  const std::string& Caption() const { return caption_; }
  void SetCaption(const std::string& text) { Change(caption_, text, EAspect::CAPTION); }
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool value) { Change(enabled_, value, EAspect::ENABLED); }
  bool Visible() const { return visible_; }
  void SetVisible(bool value) { Change(visible_, value, EAspect::VISIBLE); }

  /// Whether it and the frames around it are visible and enabled. The form itself may be disabled.
  bool IsOpen() const;

  /// Whether it can have the focus by its kind.
  bool TakesFocus() const;

  /// Events of the focus: before the control loses it, and after it has got it.
  void OnLostFocus(Handler handler) { lostfocus_ = std::move(handler); }
  void OnGotFocus(Handler handler) { gotfocus_ = std::move(handler); }

 protected:
  void Tell(EAspect aspect);

  template <class T>
  bool Change(T& member, const T& value, EAspect aspect) {
    if (member == value) return false;
    member = value;
    Tell(aspect);
    return true;
  }

  static void Run(const Handler& handler) {
    if (handler) handler();
  }

 private:
  friend class CForm;
  friend class CUser;

  CForm& form_;
  const std::string name_;
  CFrame* const frame_;
  const EKind kind_;
  std::string caption_;
  bool enabled_ = true;
  bool visible_ = true;
  Handler lostfocus_;
  Handler gotfocus_;
};

/// A container: what is in it is hidden and disabled with it.
class CFrame : public CControl {
 public:
  explicit CFrame(Socket socket) : CControl(std::move(socket), EKind::FRAME) {}
};

/// A notice is red and bold.
enum class ELabelStyle : std::int32_t { PLAIN, HEADING, NOTICE };

class CLabel : public CControl {
 public:
  explicit CLabel(Socket socket, ELabelStyle style = ELabelStyle::PLAIN)
      : CControl(std::move(socket), EKind::LABEL), style_(style) {}

  ELabelStyle Style() const { return style_; }

 private:
  const ELabelStyle style_;
};

/// A line of text. One that is read-only has the background of inactive controls; it takes the
/// focus, and its text can be copied.
class CTextField : public CControl {
 public:
  explicit CTextField(Socket socket, bool readonly = false)
      : CControl(std::move(socket), EKind::TEXT_FIELD), readonly_(readonly) {}

  bool IsReadOnly() const { return readonly_; }
  const std::string& Text() const { return text_; }
  /// Puts the caret at the beginning.
  void SetText(const std::string& text);
  std::int32_t TextLength() const;

  /// What a user can type at most; 0 is no limit.
  std::int32_t MaxLength() const { return maxlength_; }
  void SetMaxLength(std::int32_t value) { Change(maxlength_, value, EAspect::RANGE); }

  /// The selected part; one of no length is the caret. Limited to the text.
  std::int32_t SelectionStart() const { return selection_.first; }
  std::int32_t SelectionLength() const { return selection_.second; }
  void SetSelection(std::int32_t start, std::int32_t length);

  void OnChange(Handler handler) { change_ = std::move(handler); }
  /// Runs before a typed character goes into the field; see the filters of
  /// `vane/support/field_editing.h`.
  void OnKeyPress(std::function<void(std::int16_t& key)> filter) { keypress_ = std::move(filter); }

 private:
  friend class CUser;

  const bool readonly_;
  std::string text_;
  std::int32_t maxlength_ = 0;
  std::pair<std::int32_t, std::int32_t> selection_;
  Handler change_;
  std::function<void(std::int16_t& key)> keypress_;
};

/// Two arrows that move the number in a text field within limits.
class CUpDown : public CControl {
 public:
  CUpDown(Socket socket, CTextField& field)
      : CControl(std::move(socket), EKind::UP_DOWN), field_(field) {}

  CTextField& Field() const { return field_; }
  std::int32_t Min() const { return min_; }
  std::int32_t Max() const { return max_; }
  std::int32_t Increment() const { return increment_; }
  void SetRange(std::int32_t min, std::int32_t max, std::int32_t increment);

  /// The user has moved the number; the field shows it already.
  void OnChange(Handler handler) { change_ = std::move(handler); }

 private:
  friend class CUser;

  CTextField& field_;
  std::int32_t min_ = 0;
  std::int32_t max_ = 0;
  std::int32_t increment_ = 1;
  Handler change_;
};

/// Keeps its entries in the order in which they were added.
class CItemList : public CControl, public CListControl {
 public:
  void Clear() override;
  void AddItem(const std::string& text) override;
  std::int32_t NewIndex() const override { return newindex_; }
  std::int32_t ListCount() const override { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t ItemData(std::int32_t index) const override { return At(index).data; }
  void SetItemData(std::int32_t index, std::int32_t value) override;
  std::int32_t ListIndex() const override { return listindex_; }
  void SetListIndex(std::int32_t index) override;

  const std::string& ItemText(std::int32_t index) const { return At(index).text; }
  void SetItemText(std::int32_t index, const std::string& text);
  /// The selection stays on its entry; that of the removed entry goes, without an event.
  void RemoveItem(std::int32_t index);

  void OnClick(Handler handler) { click_ = std::move(handler); }

  /// Whether picking an entry starts work as a button does; see `CForm::IsRunning`.
  bool IsCommand() const { return iscommand_; }
  void SetCommand(bool value) { iscommand_ = value; }

 protected:
  using CControl::CControl;

 private:
  struct Item {
    std::string text;
    std::int32_t data = 0;
  };

  const Item& At(std::int32_t index) const { return items_.at(static_cast<std::size_t>(index)); }
  Item& At(std::int32_t index) { return items_.at(static_cast<std::size_t>(index)); }

  std::vector<Item> items_;
  std::int32_t newindex_ = -1;
  std::int32_t listindex_ = -1;
  Handler click_;
  bool iscommand_ = false;
};

/// Shows the selected entry; the user picks another and can type none.
class CDropDown : public CItemList {
 public:
  explicit CDropDown(Socket socket) : CItemList(std::move(socket), EKind::DROP_DOWN) {}
};

class CListBox : public CItemList {
 public:
  explicit CListBox(Socket socket) : CItemList(std::move(socket), EKind::LIST_BOX) {}

  void OnDoubleClick(Handler handler) { doubleclick_ = std::move(handler); }

 private:
  friend class CUser;

  Handler doubleclick_;
};

class CCheckBox : public CControl {
 public:
  explicit CCheckBox(Socket socket) : CControl(std::move(socket), EKind::CHECK_BOX) {}

  bool Checked() const { return checked_; }
  /// Runs no event.
  void SetChecked(bool value) { Change(checked_, value, EAspect::CHECKED); }

  void OnClick(Handler handler) { click_ = std::move(handler); }

 private:
  friend class CUser;

  bool checked_ = false;
  Handler click_;
};

/// Choices of which one is selected; none at the start.
class COptionGroup : public CControl {
 public:
  COptionGroup(Socket socket, std::int32_t count)
      : CControl(std::move(socket), EKind::OPTION_GROUP),
        captions_(static_cast<std::size_t>(count)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(captions_.size()); }
  const std::string& OptionCaption(std::int32_t index) const {
    return captions_.at(static_cast<std::size_t>(index));
  }
  void SetOptionCaption(std::int32_t index, const std::string& text) {
    Change(captions_.at(static_cast<std::size_t>(index)), text, EAspect::ITEMS);
  }

  /// -1 is none.
  std::int32_t Selected() const { return selected_; }
  /// Runs the click event when it changes the selection.
  void Select(std::int32_t index);

  void OnClick(Handler handler) { click_ = std::move(handler); }

 private:
  std::vector<std::string> captions_;
  std::int32_t selected_ = -1;
  Handler click_;
};

/// The keys that stand for a button besides its own: Return, Escape, F1.
enum class EButtonRole : std::int32_t { PLAIN, DEFAULT, CANCEL, HELP };

class CButton : public CControl {
 public:
  explicit CButton(Socket socket, EButtonRole role = EButtonRole::PLAIN)
      : CControl(std::move(socket), EKind::BUTTON), role_(role) {}

  EButtonRole Role() const { return role_; }

  void OnClick(Handler handler) { click_ = std::move(handler); }

 private:
  friend class CUser;

  const EButtonRole role_;
  Handler click_;
};

/// Tabs of which one is selected, the first at the start. A tag says what a tab stands for.
class CTabStrip : public CControl {
 public:
  explicit CTabStrip(Socket socket) : CControl(std::move(socket), EKind::TAB_STRIP) {}

  void AddTab(std::int32_t tag);
  std::int32_t Count() const { return static_cast<std::int32_t>(tabs_.size()); }
  const std::string& TabText(std::int32_t index) const { return At(index).text; }
  void SetTabText(std::int32_t index, const std::string& text);
  std::int32_t TabTag(std::int32_t index) const { return At(index).tag; }

  std::int32_t Selected() const { return selected_; }
  /// Runs the click event when it changes the selection.
  void Select(std::int32_t index);

  void OnClick(Handler handler) { click_ = std::move(handler); }

 private:
  struct Tab {
    std::string text;
    std::int32_t tag = 0;
  };

  const Tab& At(std::int32_t index) const { return tabs_.at(static_cast<std::size_t>(index)); }

  std::vector<Tab> tabs_;
  std::int32_t selected_ = 0;
  Handler click_;
};

/// The characters of `text`, each as its bytes.
std::vector<std::string> Characters(const std::string& text);

/// `caption` without the mark of its access key; "&&" is one "&".
std::string PlainCaption(const std::string& caption);

/// The access key that `caption` marks, in lower case; 0 is none. Only letters and digits of ASCII
/// are keys.
char AccessKey(const std::string& caption);

}  // namespace vane::ui
