// What a user does in a window: the one way in, for a desktop as for a test. See `ui.h`.
//
// The rules stand here once. Nothing happens in a window that is disabled, not shown or under
// another one, nor on a control that is disabled or hidden, by itself or with its frame. What takes
// the focus does so first, which runs the events of the control that loses it. While the event of a
// button runs, buttons, command lists and the close box do nothing. What an event raises ends at
// the form.
#pragma once

#include <cstdint>
#include <string>

#include "vane/components/form.h"

namespace vane::ui {

class CUser {
 public:
  /// Of one window, which outlives it.
  explicit CUser(CForm& form) : form_(form) {}

  CForm& Form() const { return form_; }

  /// The control `name` of the window.
  template <class Control>
  Control& Find(const std::string& name) const {
    return form_.Find<Control>(name);
  }

  // Each of these is true when it could be done, and its events have raised nothing.

  bool Focus(CControl& control);
  /// To the next control, or the one before.
  bool Tab(bool forward = true);

  // Into the text field that has the focus, at its selection.

  /// One character by its code, or 8 for backspace, 13 for Return. False when the field doesn't
  /// take it.
  bool Key(std::int16_t code);
  /// Key by key. True when every key was taken.
  bool Type(const std::string& text);
  /// Past the filter of keys; up to the first line end, and as far as the field's length allows.
  bool Paste(const std::string& text);
  /// The selection, or the character behind the caret.
  bool Delete();
  /// Moves the caret, or selects.
  bool Select(std::int32_t start, std::int32_t length = 0);
  bool SelectAll();

  /// Moves the number of the field by one increment, up or down: within the limits, and into them
  /// from outside. A text that is no number counts as 0.
  bool Step(CUpDown& updown, bool up);

  /// Selects an entry. One that is selected already runs no event.
  bool Pick(CItemList& list, std::int32_t index);
  bool DoubleClick(CListBox& list, std::int32_t index);
  bool Choose(COptionGroup& group, std::int32_t index);
  bool SelectTab(CTabStrip& tabs, std::int32_t index);
  /// Turns the box over.
  bool Click(CCheckBox& box);
  bool Click(CButton& button);

  /// Presses the button with the focus, or the default button; the focus stays, but the event of
  /// losing it runs before, so that a field is in order when its text is used.
  bool Return();
  /// Presses the cancel button.
  bool Escape();
  /// Presses the help button; the focus stays.
  bool Help();
  /// As the cancel button, or the default button where there is none.
  bool CloseBox();
  /// What bears the key is clicked; a label hands it on to the control behind it.
  bool PressAccessKey(char key);

  /// The user has moved or sized the window.
  void Move(const Placement& place) { form_.place_ = place; }

 private:
  // Whether the user reaches the window at all.
  bool Reaches() const;
  bool CanUse(const CControl& control) const { return Reaches() && control.IsOpen(); }
  CTextField* FieldToEdit() const;

  // Does what the user asks for, if `control` is usable then and, for a command, nothing runs.
  bool Do(CControl& control, bool iscommand, const Handler& body);
  // Presses a button by a key that stands for it; null is none. With `leaves`, what has the focus
  // is put in order before.
  bool Press(CButton* button, bool leaves);
  // False when not all of `inserted` had room.
  static bool Edit(CTextField& field, const std::string& inserted);

  CForm& form_;
};

}  // namespace vane::ui
