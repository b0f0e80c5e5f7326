// The tables of a recording, see docs/recording.md.
#pragma once

#include <cstdint>

#include "recorder/database.h"

namespace vane::recorder {

/// The schema that this library writes.
inline constexpr std::int64_t kSchemaVersion = 1;

/// Whether there is nothing in the file: it was just made, or its maker got no further.
bool IsEmpty(CDatabase& database);

/// Within a transaction: makes the tables in an empty file, or brings those of an older schema up
/// to this one. Raises `CStoreError` for a file that is no recording, and for a newer schema.
void BringUpToDate(CDatabase& database);

/// Raises `CStoreError` for a file that is no recording, and for a newer schema.
void RequireRecording(CDatabase& database);

/// Raises `CStoreError` for what can't be read: no recording, or a newer schema.
void RequireReadable(CDatabase& database);

}  // namespace vane::recorder
