#include "adapters/terminal/terminal_form.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"

namespace vane {
namespace {

// Without the mark of an access key, which a terminal has none of.
std::string CaptionText(const ui::CControl& control) {
  std::string text;
  for (const char c : control.Caption()) {
    if (c != '&') text += c;
  }
  return text;
}

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

}  // namespace

std::string CTerminalForm::Text() const {
  std::string text = Caption() + "\n";
  for (const ui::CLabel* label : VisibleOf<ui::CLabel>(*this)) text += CaptionText(*label) + "\n";
  std::int32_t number = 0;
  for (const ui::CListBox* list : VisibleOf<ui::CListBox>(*this)) {
    for (std::int32_t i = 0; i < list->ListCount(); ++i) {
      text += "  " + std::to_string(++number) + "  " + list->ItemText(i) + "\n";
    }
  }
  const auto boxes = VisibleOf<ui::CCheckBox>(*this);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    text += std::string("  ") + LetterOf(i) + "  [" + (boxes[i]->Checked() ? 'x' : ' ') + "] " +
            CaptionText(*boxes[i]) + "\n";
  }
  return text;
}

std::string CTerminalForm::Question() const {
  const auto boxes = VisibleOf<ui::CCheckBox>(*this);
  std::string question = "A number opens that entry";
  if (!boxes.empty()) question += ", a letter turns its box over";
  return question + ", Enter goes on: ";
}

bool CTerminalForm::Obey(const std::string& line) {
  if (line.empty()) {
    ClickDefault();
    return true;
  }
  const auto boxes = VisibleOf<ui::CCheckBox>(*this);
  const std::string word = AnswerWord(line);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (word != std::string(1, LetterOf(i))) continue;
    boxes[i]->Click();
    WriteToTerminal(output_, PrintableText(Text()));
    return true;
  }
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc() || end != line.data() + line.size() || number < 1) return false;
  for (ui::CListBox* list : VisibleOf<ui::CListBox>(*this)) {
    if (number <= list->ListCount()) {
      list->DoubleClick(number - 1);
      return true;
    }
    number -= list->ListCount();
  }
  return false;
}

void CTerminalForm::ClickDefault() {
  for (ui::CButton* button : VisibleOf<ui::CButton>(*this)) {
    if (button->IsDefault()) button->Click();
  }
  Hide();
}

void CTerminalForm::RunModal(ui::CWindow*) {
  Paint();
  ClearOpenLine(output_);
  WriteToTerminal(output_, PrintableText(Text()));
  while (Shown()) {
    if (!CanAsk(input_, output_)) return ClickDefault();
    WriteToTerminal(output_, Question());
    std::string line;
    if (ReadLine(interrupts_, input_, line) != ELineEnd::LINE) {
      WriteToTerminal(output_, "\n");
      return ClickDefault();
    }
    if (!Obey(Trimmed(line))) WriteToTerminal(output_, "There is no such choice.\n");
  }
}

}  // namespace vane
