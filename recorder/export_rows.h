// Readings as rows of text, made for files of any length.
#pragma once

#include <string>

#include "recorder/record_types.h"

namespace vane::recorder {

enum class ERowForm : std::int32_t { TEXT, CSV, JSON };

/// The names of the columns of `ERowForm::CSV`, as a line.
std::string ExportColumns();

/// Adds `reading` as a line to `rows`; `name` is that of its channel. With `islocal`, times are the
/// user's.
void AddExportRow(std::string& rows, ERowForm form, const Reading& reading, const std::string& name,
                  bool islocal);

}  // namespace vane::recorder
