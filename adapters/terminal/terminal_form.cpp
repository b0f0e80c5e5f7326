#include "adapters/terminal/terminal_form.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"
#include "vane/components/library_error.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

// The visible controls of one kind.
template <class Control>
std::vector<Control*> VisibleOf(const ui::CForm& form) {
  std::vector<Control*> visible;
  for (const auto& control : form.Controls()) {
    auto* const wanted = dynamic_cast<Control*>(control.get());
    if (wanted != nullptr && wanted->Visible()) visible.push_back(wanted);
  }
  return visible;
}

// Check boxes are called by letters, since entries have the numbers.
char LetterOf(std::size_t place) { return static_cast<char>('a' + place); }

std::string TextOf(const ui::CForm& form) {
  std::string text = form.Caption() + "\n";
  for (const ui::CLabel* label : VisibleOf<ui::CLabel>(form))
    text += ui::PlainCaption(label->Caption()) + "\n";
  std::int32_t number = 0;
  for (const ui::CListBox* list : VisibleOf<ui::CListBox>(form)) {
    for (std::int32_t i = 0; i < list->ListCount(); ++i) {
      text += "  " + std::to_string(++number) + "  " + list->ItemText(i) + "\n";
    }
  }
  const auto boxes = VisibleOf<ui::CCheckBox>(form);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    text += std::string("  ") + LetterOf(i) + "  [" + (boxes[i]->Checked() ? 'x' : ' ') + "] " +
            ui::PlainCaption(boxes[i]->Caption()) + "\n";
  }
  return text;
}

std::string QuestionOf(const ui::CForm& form) {
  const auto boxes = VisibleOf<ui::CCheckBox>(form);
  std::string question = "A number opens that entry";
  if (!boxes.empty()) question += ", a letter turns its box over";
  return question + ", Enter goes on: ";
}

// As the Enter key does; a window without a default button closes too.
void PressDefault(ui::CUser& user) {
  for (ui::CButton* button : VisibleOf<ui::CButton>(user.Form())) {
    if (button->Role() == ui::EButtonRole::DEFAULT) user.Click(*button);
  }
  user.Form().Hide();
}

}  // namespace

void CTerminalView::Load(ui::CForm& form) {
  for (const auto& control : form.Controls()) {
    switch (control->Kind()) {
      case ui::EKind::LABEL:
      case ui::EKind::LIST_BOX:
      case ui::EKind::CHECK_BOX:
      case ui::EKind::BUTTON:
        break;
      default:
        throw LibraryError(ERR_PLATFORM_CALL, "CTerminalView - Load",
                           "A terminal can't show the window " + form.Name() + ": it has " +
                               control->Name() + ", which is no label, list, check box or button.");
    }
  }
}

bool CTerminalView::Obey(ui::CUser& user, const std::string& line) {
  ui::CForm& form = user.Form();
  if (line.empty()) {
    PressDefault(user);
    return true;
  }
  const auto boxes = VisibleOf<ui::CCheckBox>(form);
  const std::string word = AnswerWord(line);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (word != std::string(1, LetterOf(i))) continue;
    user.Click(*boxes[i]);
    WriteToTerminal(output_, PrintableText(TextOf(form)));
    return true;
  }
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc() || end != line.data() + line.size() || number < 1) return false;
  for (ui::CListBox* list : VisibleOf<ui::CListBox>(form)) {
    if (number <= list->ListCount()) {
      user.DoubleClick(*list, number - 1);
      return true;
    }
    number -= list->ListCount();
  }
  return false;
}

void CTerminalView::RunModal(ui::CForm& form, ui::CWindow*) {
  ui::CUser user(form);
  form.Paint();
  if (!form.Shown()) return;
  ClearOpenLine(output_);
  WriteToTerminal(output_, PrintableText(TextOf(form)));
  while (form.Shown()) {
    if (!CanAsk(input_, output_)) return PressDefault(user);
    WriteToTerminal(output_, QuestionOf(form));
    std::string line;
    if (ReadLine(interrupts_, input_, line) != ELineEnd::LINE) {
      WriteToTerminal(output_, "\n");
      return PressDefault(user);
    }
    if (!Obey(user, Trimmed(line))) WriteToTerminal(output_, "There is no such choice.\n");
  }
}

}  // namespace vane
