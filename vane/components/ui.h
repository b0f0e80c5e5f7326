// The toolkit seam: what the library sees of windows and their controls.
//
// Implemented by a back end (in memory, terminal, a desktop toolkit) or by a host that draws its
// own forms. Everything here lives on the user-interface thread.
#pragma once

#include <cstdint>
#include <string>

namespace vane::ui {

/// A window of the host or of this library. An operation that takes one only passes it on as the
/// owner of a display; null stands for "no window", and the display then stays hidden.
class CWindow {
 public:
  virtual ~CWindow() = default;
};

/// A line of text that the user edits. Lengths and places count characters, from 0.
class CTextField {
 public:
  virtual ~CTextField() = default;

  virtual std::int32_t TextLength() const = 0;
  virtual void SetSelection(std::int32_t start, std::int32_t length) = 0;
};

/// A list of choices: each entry shows a text and carries a whole number, its code. Indexes count
/// from 0; an index outside the list raises `std::out_of_range`.
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
  /// The selected entry; -1 is none. Setting it runs the list's click event.
  virtual std::int32_t ListIndex() const = 0;
  virtual void SetListIndex(std::int32_t index) = 0;
};

}  // namespace vane::ui
