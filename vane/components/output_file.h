// The column text file that a download writes, and the way to open or print it.
//
// The download makes one through `CComponentFactory` and owns it until the finished file has been
// offered to the user. Lives on the user-interface thread. Columns count from 0.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vane/components/registry.h"

namespace vane {

class CVaneOutputFile {
 public:
  virtual ~CVaneOutputFile() = default;

  virtual void SetHelpFile(const std::string& file) = 0;

  /// Options of the layout; the download sets A before the widths are given and B after.
  virtual void SetLayoutOptionA(bool value) = 0;
  virtual void SetLayoutOptionB(bool value) = 0;

  virtual void SetRegistry(std::shared_ptr<CVaneRegistry> registry) = 0;
  virtual const std::shared_ptr<CVaneRegistry>& Registry() const = 0;

  /// The folder, with its trailing separator.
  virtual const std::string& Folder() const = 0;
  virtual void SetFolder(const std::string& folder) = 0;

  /// Text of one column of the row at hand.
  virtual const std::string& Field(std::int16_t column) const = 0;
  virtual void SetField(std::int16_t column, const std::string& text) = 0;

  /// Width in characters, not bytes.
  virtual void SetColumnWidth(std::int16_t column, std::int16_t width) = 0;
  virtual void SetNumColumns(std::int16_t count) = 0;

  virtual const std::string& Header() const = 0;
  virtual void SetHeader(const std::string& text) = 0;

  /// File name without folder.
  virtual const std::string& FileName() const = 0;
  virtual void SetFileName(const std::string& name) = 0;

  /// Makes the file; `success` tells how it went. `replace` is always true: an older file of that
  /// name gives way when the new one is complete.
  virtual void Create(bool replace, bool& success) = 0;

  /// Writes the head and the row of titles. `kind` is always 8.
  virtual void WriteHeader(std::int32_t kind, bool& success) = 0;

  /// Writes the fields at hand as one row.
  virtual void WriteRow(bool& success) = 0;

  virtual void Close(bool& success) = 0;

  /// Opens the closed file for the user.
  virtual void Show(bool flag) = 0;

  /// Prints the closed file; `selectprinter` says whether the user is asked for the printer.
  virtual void Print(bool selectprinter, bool& success) = 0;
};

}  // namespace vane
