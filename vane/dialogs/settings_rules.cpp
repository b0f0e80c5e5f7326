#include "vane/dialogs/settings_rules.h"

#include <initializer_list>

#include "vane/dialogs/editing.h"
#include "vane/support/enums.h"

namespace vane {
namespace {

using enum ESettingsField;

enum class EMatch : std::int32_t { ANY, IS, IS_NOT };

template <class Code>
constexpr std::int32_t Of(Code code) {
  return static_cast<std::int32_t>(code);
}

// Nothing selected matches nothing.
struct FollowRow {
  ESettingsField trigger;
  EMatch match;
  std::int32_t code;
  std::array<ESettingsField, 3> fields;
  bool whenenabled = false;           // the trigger must be in use itself
  ESettingsField whenselected = END;  // so must an entry of this list
  ESettingsField next = END;          // whose own rows are run behind
};

constexpr std::int32_t kUserDefined = Of(ET312BScannerScanMode::SSM_USER_DEFINED);

constexpr FollowRow kFollowRows[] = {
    {FILTER_TYPE, EMatch::IS_NOT, Of(ET312BFilterType::FT_NONE), {RESPONSE_TIME, THRESHOLD, END}},
    {SAMPLE_ACTION, EMatch::IS, Of(ET312BSampleAction::SA_SAMPLE_N), {SAMPLE_N, END, END}},
    {CHANNEL_MODE, EMatch::IS, Of(ET312BChannelMode::CM_SCANNER_CHANNEL), {SCAN_CHANNEL, END, END}},
    {.trigger = CHANNEL_MODE,
     .match = EMatch::IS,
     .code = Of(ET312BChannelMode::CM_SCANNER_SEQUENCE),
     .fields = {SCAN_MODE, END, END},
     .next = SCAN_MODE},
    {SCAN_MODE, EMatch::IS_NOT, kUserDefined, {SEQ_CHANNELS, END, END}, true},
    {SCAN_MODE, EMatch::IS, kUserDefined, {USER_DEFINED_SEQ, STEPS, SEQUENCE}, true},
    {SCAN_MODE, EMatch::IS, kUserDefined, {SELECTED_CHANNEL, END, END}, true, SEQUENCE},
    {SEQUENCE, EMatch::ANY, 0, {SELECTED_CHANNEL, END, END}},
    {CHANNELS, EMatch::ANY, 0, {CHANNEL_SETTINGS, END, END}},
};

bool Holds(const CSettingsFields& fields, const FollowRow& row) {
  if (!fields.HasSelection(row.trigger)) return false;
  if (row.whenenabled && !fields.IsEnabled(row.trigger)) return false;
  if (row.whenselected != END && !fields.HasSelection(row.whenselected)) return false;
  if (row.match == EMatch::ANY) return true;
  return (SelectedCode(fields.List(row.trigger)) == row.code) == (row.match == EMatch::IS);
}

}  // namespace

void FollowChoice(CSettingsFields& fields, ESettingsField trigger) {
  for (const FollowRow& row : kFollowRows) {
    if (row.trigger != trigger) continue;
    const bool holds = Holds(fields, row);
    for (const ESettingsField field : row.fields) {
      if (field != END) fields.Enable(field, holds);
    }
    if (row.next != END) FollowChoice(fields, row.next);
  }
}

}  // namespace vane
