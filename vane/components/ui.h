// The toolkit seam: what the library sees of windows and their controls.
//
// A dialog is behaviour: it adds its controls to a form by kind and name, gives them captions and
// handlers, and shows the form. The state of a control lives here; a back end (a desktop toolkit, a
// terminal, or none at all) derives from the kinds that it draws, shows a control anew when its
// state has changed, and reports what the user does. A dialog never sees a back end's type.
//
// Everything here lives on the user-interface thread. What a handler raises goes to the back end,
// which lets it out of the modal show.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vane::ui {

/// Runs when the user has done something. May be empty.
using Handler = std::function<void()>;

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

/// What every control has. A caption may mark its access key with "&".
class CControl {
 public:
  explicit CControl(std::string name) : name_(std::move(name)) {}
  virtual ~CControl() = default;
  CControl(const CControl&) = delete;
  CControl& operator=(const CControl&) = delete;

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(const std::string& text) { Change(caption_, text); }
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool value) { Change(enabled_, value); }
  bool Visible() const { return visible_; }
  void SetVisible(bool value) { Change(visible_, value); }

 protected:
  /// For a back end that draws: the state has changed.
  virtual void Refresh() {}

  template <class T>
  void Change(T& member, const T& value) {
    member = value;
    Refresh();
  }

 private:
  std::string name_;
  std::string caption_;
  bool enabled_ = true;
  bool visible_ = true;
};

class CLabel : public CControl {
 public:
  using CControl::CControl;
};

class CButton : public CControl {
 public:
  using CControl::CControl;

  /// The one that the Enter key stands for.
  bool IsDefault() const { return isdefault_; }
  void SetDefault(bool value) { Change(isdefault_, value); }

  void OnClick(Handler handler) { click_ = std::move(handler); }

  /// What the user does; nothing when the button is disabled.
  void Click();

 private:
  bool isdefault_ = false;
  Handler click_;
};

class CCheckBox : public CControl {
 public:
  using CControl::CControl;

  bool Checked() const { return checked_; }
  /// Runs no event.
  void SetChecked(bool value) { Change(checked_, value); }

  void OnClick(Handler handler) { click_ = std::move(handler); }

  /// What the user does: the box turns over, then its event runs.
  void Click();

 private:
  bool checked_ = false;
  Handler click_;
};

/// Keeps its entries in the order in which they were added.
class CListBox : public CControl, public CListControl {
 public:
  using CControl::CControl;

  void Clear() override;
  void AddItem(const std::string& text) override;
  std::int32_t NewIndex() const override { return newindex_; }
  std::int32_t ListCount() const override { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t ItemData(std::int32_t index) const override { return At(index).data; }
  void SetItemData(std::int32_t index, std::int32_t value) override;
  std::int32_t ListIndex() const override { return listindex_; }
  void SetListIndex(std::int32_t index) override;
  const std::string& ItemText(std::int32_t index) const { return At(index).text; }

  void OnClick(Handler handler) { click_ = std::move(handler); }
  void OnDoubleClick(Handler handler) { doubleclick_ = std::move(handler); }

  /// What the user does: selects the entry and double-clicks it.
  void DoubleClick(std::int32_t index);

 private:
  struct Item {
    std::string text;
    std::int32_t data = 0;
  };

  const Item& At(std::int32_t index) const;

  std::vector<Item> items_;
  std::int32_t newindex_ = -1;
  std::int32_t listindex_ = -1;
  Handler click_;
  Handler doubleclick_;
};

/// A window with its controls, which it owns. Its caption is the window's title; disabling it
/// disables the whole window.
class CForm : public CWindow, public CControl {
 public:
  using CControl::CControl;

  // A back end that draws returns its own kinds. Names are unique within a form.
  virtual CLabel& AddLabel(const std::string& name);
  virtual CListBox& AddListBox(const std::string& name);
  virtual CCheckBox& AddCheckBox(const std::string& name);
  virtual CButton& AddButton(const std::string& name);

  /// In the order in which they were added.
  const std::vector<std::unique_ptr<CControl>>& Controls() const { return controls_; }

  /// The control of that name and kind; raises `std::invalid_argument` when there is none.
  template <class Control>
  Control& Find(const std::string& name) const {
    return dynamic_cast<Control&>(FindControl(name));
  }

  std::int32_t HelpContext() const { return helpcontext_; }
  void SetHelpContext(std::int32_t context) { Change(helpcontext_, context); }

  void OnLoad(Handler handler) { load_ = std::move(handler); }
  void OnFirstPaint(Handler handler) { firstpaint_ = std::move(handler); }
  void OnUnload(Handler handler) { unload_ = std::move(handler); }

  /// Loads the window if it isn't loaded, and shows it until it is hidden.
  void ShowModal(CWindow* owner);
  bool Shown() const { return shown_; }
  void Hide() { Change(shown_, false); }
  /// Undoes the loading; nothing when there was none.
  void Unload();

  /// Brings the screen in line with the state at once.
  virtual void DrawNow() {}

 protected:
  /// Shows the window, calls `Paint`, and returns when `Shown` has become false.
  virtual void RunModal(CWindow* owner) = 0;

  /// To be called after each painting; the first one after the loading runs the event.
  void Paint();

  template <class Control>
  Control& Keep(std::unique_ptr<Control> control) {
    Control& kept = *control;
    controls_.push_back(std::move(control));
    return kept;
  }

 private:
  CControl& FindControl(const std::string& name) const;

  std::vector<std::unique_ptr<CControl>> controls_;
  std::int32_t helpcontext_ = 0;
  bool loaded_ = false;
  bool painted_ = false;
  bool shown_ = false;
  Handler load_;
  Handler firstpaint_;
  Handler unload_;
};

}  // namespace vane::ui
