#include "vane/dialogs/scan_sequence.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "vane/components/library_error.h"
#include "vane/dialogs/editing.h"
#include "vane/support/field_editing.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

constexpr std::int32_t kUnassigned = -1;
constexpr std::int32_t kNoChannel = 0;

std::string StepText(std::int32_t index, const std::string& channel) {
  return std::to_string(index + 1) + ") " + channel;
}

// Of what may have been pasted. None for a number that is beyond all.
std::optional<double> LeadingNumber(const std::string& text) {
  try {
    return std::nearbyint(NumberFromText(text));
  } catch (const LibraryError&) {
    return std::nullopt;
  }
}

}  // namespace

CScanSequence::CScanSequence(ui::CListBox& list, ui::CTextField& steps, ui::CDropDown& channel)
    : list_(list), steps_(steps), channel_(channel) {
  steps_.OnChange([this] { Resize(); });
  list_.OnClick([this] { ShowStep(); });
  channel_.OnClick([this] { SetChannel(); });
}

void CScanSequence::Resize() {
  const std::optional<double> number = LeadingNumber(steps_.Text());
  // Only pasting brings what no setting of the instrument can be; leaving the field mends it.
  if (!number || *number > std::numeric_limits<std::int16_t>::max()) return;
  const std::int32_t count = ToLong(std::max(*number, 0.0));
  const bool hadselection = list_.ListIndex() >= 0;
  while (list_.ListCount() > count) list_.RemoveItem(list_.ListCount() - 1);
  while (list_.ListCount() < count) {
    list_.AddItem(StepText(list_.ListCount(), ResourceText(EText::NOT_ASSIGNED)));
    list_.SetItemData(list_.NewIndex(), kUnassigned);
  }
  // Its step has gone without an event of the list.
  if (hadselection && list_.ListIndex() < 0) ShowStep();
}

void CScanSequence::ShowStep() {
  if (selected_) selected_();
  const std::int32_t step = list_.ListIndex();
  if (step < 0) return;
  {
    const CStanding selecting(selecting_);
    channel_.SetListIndex(-1);
  }
  SelectItemByData(channel_, list_.ItemData(step));
}

void CScanSequence::SetChannel() {
  const std::int32_t step = list_.ListIndex();
  if (selecting_ || step < 0) return;
  const std::int32_t choice = channel_.ListIndex();
  list_.SetItemText(step, StepText(step, choice < 0 ? ResourceText(EText::NOT_ASSIGNED)
                                                    : channel_.ItemText(choice)));
  list_.SetItemData(step, choice < 0 ? kUnassigned : channel_.ItemData(choice));
}

std::string CScanSequence::ScanChannels() const {
  std::string channels;
  for (std::int32_t step = 0; step < list_.ListCount(); ++step) {
    channels += std::to_string(list_.ItemData(step)) + ",";
  }
  if (channels.size() > 1) channels.pop_back();
  return channels;
}

bool CScanSequence::LacksChannel() const {
  for (std::int32_t step = 0; step < list_.ListCount(); ++step) {
    if (list_.ItemData(step) == kNoChannel) return true;
  }
  return false;
}

}  // namespace vane
