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

/// The text of `id`, as it stands: with its places for values and its access key. Raises an error
/// for an id that the table does not have.
std::string ResourceText(std::int16_t id);

}  // namespace vane
