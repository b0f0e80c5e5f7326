#include "vane/support/text_table.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "vane/components/library_error.h"

namespace vane {
namespace {

struct TextRow {
  EText id;
  std::string_view text;
};

constexpr TextRow kTexts[] = {
#define VANE_TEXT(id, name, text) {EText::name, text},
#include "vane/support/text_list.h"
#undef VANE_TEXT
};

constexpr bool IdsRise() {
  for (std::size_t i = 1; i < std::size(kTexts); ++i) {
    if (kTexts[i].id <= kTexts[i - 1].id) return false;
  }
  return true;
}
static_assert(IdsRise(), "the search below needs rising ids, each once");

}  // namespace

std::string ResourceText(EText id) {
  const auto row = std::ranges::lower_bound(kTexts, id, {}, &TextRow::id);
  if (row == std::end(kTexts) || row->id != id) {
    throw LibraryError(
        ERR_PLATFORM_CALL, "ResourceText",
        "There is no text with the number " + std::to_string(static_cast<std::int16_t>(id)) + ".");
  }
  return std::string(row->text);
}

}  // namespace vane
