// The one table of all words that the user sees.
#pragma once

#include <cstdint>
#include <string>

namespace vane {

/// Title of every message box.
inline constexpr char kCompanyName[] = "Corvane";
/// The model that the instrument must report.
inline constexpr char kReadoutModel[] = "T312B";
inline constexpr char kScannerModel[] = "M420";

/// The texts by what they say. Words of one kind that a code picks from, such as the channel modes,
/// follow each other in the order of the code.
enum class EText : std::int16_t {
  NO_TEXT = 0,
#define VANE_TEXT(id, name, text) name = id,
#include "vane/support/text_list.h"
#undef VANE_TEXT
};

/// The text of `id`, as it stands: with its places for values and its access key. Raises an error
/// for an id that the table does not have.
std::string ResourceText(EText id);
inline std::string ResourceText(std::int16_t id) { return ResourceText(EText{id}); }

}  // namespace vane
