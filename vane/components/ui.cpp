#include "vane/components/ui.h"

#include <algorithm>

#include "vane/components/form.h"

namespace vane::ui {
namespace {

bool IsLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

void CControl::Tell(EAspect aspect) {
  if (form_.loaded_) form_.view_->Changed(*this, aspect);
}

bool CControl::IsOpen() const {
  if (!enabled_ || !visible_) return false;
  return frame_ == nullptr || frame_->IsOpen();
}

bool CControl::TakesFocus() const {
  switch (kind_) {
    case EKind::FORM:
    case EKind::FRAME:
    case EKind::LABEL:
    case EKind::UP_DOWN:  // its field takes it
      return false;
    default:
      return true;
  }
}

void CTextField::SetText(const std::string& text) {
  if (text_ == text) return;
  selection_ = {0, 0};
  Change(text_, text, EAspect::TEXT);
  Run(change_);
}

std::int32_t CTextField::TextLength() const {
  return static_cast<std::int32_t>(Characters(text_).size());
}

void CTextField::SetSelection(std::int32_t start, std::int32_t length) {
  const std::int32_t end = TextLength();
  start = std::clamp(start, 0, end);
  Change(selection_, {start, std::clamp(length, 0, end - start)}, EAspect::SELECTION);
}

void CUpDown::SetRange(std::int32_t min, std::int32_t max, std::int32_t increment) {
  min_ = min;
  max_ = max;
  increment_ = increment;
  Tell(EAspect::RANGE);
}

void CItemList::Clear() {
  const bool hadselection = std::exchange(listindex_, -1) != -1;
  items_.clear();
  newindex_ = -1;
  Tell(EAspect::ITEMS);
  if (hadselection) Tell(EAspect::SELECTION);
}

void CItemList::AddItem(const std::string& text) {
  items_.push_back({text});
  newindex_ = ListCount() - 1;
  Tell(EAspect::ITEMS);
}

void CItemList::SetItemData(std::int32_t index, std::int32_t value) {
  Change(At(index).data, value, EAspect::ITEMS);
}

void CItemList::SetItemText(std::int32_t index, const std::string& text) {
  Change(At(index).text, text, EAspect::ITEMS);
}

void CItemList::SetListIndex(std::int32_t index) {
  if (index != -1) At(index);
  if (Change(listindex_, index, EAspect::SELECTION)) Run(click_);
}

void CItemList::RemoveItem(std::int32_t index) {
  At(index);
  items_.erase(items_.begin() + index);
  newindex_ = -1;
  const bool moves = listindex_ >= index;
  if (moves) listindex_ = listindex_ == index ? -1 : listindex_ - 1;
  // A back end that looks at both sees an index that is there.
  Tell(EAspect::ITEMS);
  if (moves) Tell(EAspect::SELECTION);
}

void COptionGroup::Select(std::int32_t index) {
  if (index != -1) OptionCaption(index);
  if (Change(selected_, index, EAspect::SELECTION)) Run(click_);
}

void CTabStrip::AddTab(std::int32_t tag) {
  tabs_.push_back({{}, tag});
  Tell(EAspect::ITEMS);
}

void CTabStrip::SetTabText(std::int32_t index, const std::string& text) {
  Change(tabs_.at(static_cast<std::size_t>(index)).text, text, EAspect::ITEMS);
}

void CTabStrip::Select(std::int32_t index) {
  At(index);
  if (Change(selected_, index, EAspect::TAB)) Run(click_);
}

std::vector<std::string> Characters(const std::string& text) {
  std::vector<std::string> characters;
  for (const char byte : text) {
    const bool continues = (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
    if (!continues || characters.empty()) characters.emplace_back();
    characters.back() += byte;
  }
  return characters;
}

std::string PlainCaption(const std::string& caption) {
  std::string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && ++i == caption.size()) break;
    plain += caption[i];
  }
  return plain;
}

char AccessKey(const std::string& caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    const char key = caption[++i];
    if (!IsLetterOrDigit(key)) continue;
    return key >= 'A' && key <= 'Z' ? static_cast<char>(key - 'A' + 'a') : key;
  }
  return 0;
}

}  // namespace vane::ui
