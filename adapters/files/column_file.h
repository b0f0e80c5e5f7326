// The output file of a download as a text file of columns, in UTF-8.
//
// A row is its fields one behind the other, each filled up with blanks to the width of its column,
// the last one too; a text longer than its column is kept whole, with one blank behind it. Widths
// count characters. Rows and the lines of the head end with LF.
//
// Failures are raised, with a text that names the file and the reason; `success` is then false.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/files/replacing_file.h"
#include "vane/components/output_file.h"

namespace vane {

/// Asks the user for one of `printers`, of which there are two or more; nothing when the user
/// doesn't want to print after all.
using PrinterChoice =
    std::function<std::optional<std::string>(const std::vector<std::string>& printers)>;

class CColumnTextFile : public CVaneOutputFile {
 public:
  /// `opener` is the program that `Show` hands the path to. Without a `printerchoice` the default
  /// printer is taken. `patience` is for a pipe or a device in the place of the file.
  explicit CColumnTextFile(PrinterChoice printerchoice = {}, std::string opener = "xdg-open",
                           Patience patience = {});

  void SetHelpFile(const std::string&) override {}  // its errors have no topic
  void SetLayoutOptionA(bool) override {}           // there is one layout
  void SetLayoutOptionB(bool) override {}

  void SetRegistry(std::shared_ptr<CVaneRegistry> registry) override;
  const std::shared_ptr<CVaneRegistry>& Registry() const override { return registry_; }

  const std::string& Folder() const override { return folder_; }
  void SetFolder(const std::string& folder) override { folder_ = folder; }

  // A column outside the number of columns raises `std::out_of_range`.

  const std::string& Field(std::int16_t column) const override;
  void SetField(std::int16_t column, const std::string& text) override;
  void SetColumnWidth(std::int16_t column, std::int16_t width) override;
  void SetNumColumns(std::int16_t count) override;

  const std::string& Header() const override { return header_; }
  /// Its line ends may be CR LF, CR or LF.
  void SetHeader(const std::string& text) override { header_ = text; }

  const std::string& FileName() const override { return filename_; }
  void SetFileName(const std::string& name) override { filename_ = name; }

  // What is written is kept out of sight, and an older file stays whole until `Close`. A failure,
  // and the end of the object before `Close`, leave nothing of the new file. What is no regular
  // file, such as a pipe or a device, gets the rows themselves.

  /// An older file keeps its permissions, and is an error when it is write-protected or `replace`
  /// is false. The folder must exist. A symbolic link is followed.
  void Create(bool replace, bool& success) override;
  /// The titles are the fields at hand.
  void WriteHeader(std::int32_t kind, bool& success) override;
  void WriteRow(bool& success) override;
  void Close(bool& success) override;

  // For the file that this object has written and closed; raised otherwise, also for a pipe or a
  // device.

  /// Waits for the opener, which usually ends when another program has taken the file over.
  void Show(bool flag) override;
  /// Prints with `lp`. Asks when `lpstat` knows two printers or more. `success` is false without an
  /// error when the user chose none.
  void Print(bool selectprinter, bool& success) override;

 private:
  struct Column {
    std::string text;
    std::size_t width = 0;
  };

  template <class Action>
  void WithFile(bool& success, Action action);
  void AppendRow();
  void Flush();
  void RequireComplete() const;

  PrinterChoice printerchoice_;
  std::string opener_;
  Patience patience_;
  std::shared_ptr<CVaneRegistry> registry_;
  std::string folder_;
  std::string filename_;
  std::string header_;
  std::vector<Column> columns_;
  std::filesystem::path path_;            // absolute, since `Create`
  std::unique_ptr<CReplacingFile> file_;  // from `Create` to `Close`
  std::string buffer_;
  bool complete_ = false;
};

}  // namespace vane
