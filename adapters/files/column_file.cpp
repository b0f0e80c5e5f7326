#include "adapters/files/column_file.h"

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "adapters/files/run_program.h"
#include "vane/components/library_error.h"
#include "vane/support/paths.h"

namespace vane {
namespace {

constexpr std::size_t kBufferSize = 65536;

std::size_t Characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

// The lines of `text`, each with LF at its end, also the last one.
std::string Lines(const std::string& text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      lines += text[i];
    } else if (text.compare(i + 1, 1, "\n") != 0) {
      lines += '\n';
    }
  }
  if (!lines.empty() && lines.back() != '\n') lines += '\n';
  return lines;
}

// What the program has said, or that it failed where it said nothing.
[[noreturn]] void RaiseProgramError(const std::string& what, const std::filesystem::path& path,
                                    const std::string& program, int code, std::string said) {
  while (!said.empty() && said.back() == '\n') said.pop_back();
  if (said.empty()) said = program + " ended with code " + std::to_string(code);
  throw LibraryError(ERR_PLATFORM_CALL, {}, what + " '" + path.string() + "': " + said);
}

// The printers that take work: the first words of lines such as "lab accepting requests since ...".
// None when there is no printing system.
std::vector<std::string> Printers() {
  std::string text;
  try {
    if (RunProgram({"lpstat", "-a"}, &text) != 0) return {};
  } catch (const std::system_error&) {
    return {};
  }
  std::vector<std::string> printers;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::string name = line.substr(0, line.find_first_of(" \t"));
    const bool refuses = line.compare(name.size(), 5, " not ") == 0;
    if (!name.empty() && !refuses) printers.push_back(name);
  }
  return printers;
}

}  // namespace

CColumnTextFile::CColumnTextFile(PrinterChoice printerchoice, std::string opener, Patience patience)
    : printerchoice_(std::move(printerchoice)),
      opener_(std::move(opener)),
      patience_(std::move(patience)) {}

void CColumnTextFile::SetRegistry(std::shared_ptr<CVaneRegistry> registry) {
  registry_ = std::move(registry);
}

const std::string& CColumnTextFile::Field(std::int16_t column) const {
  return columns_.at(static_cast<std::size_t>(column)).text;
}

void CColumnTextFile::SetField(std::int16_t column, const std::string& text) {
  columns_.at(static_cast<std::size_t>(column)).text = text;
}

void CColumnTextFile::SetColumnWidth(std::int16_t column, std::int16_t width) {
  columns_.at(static_cast<std::size_t>(column)).width =
      static_cast<std::size_t>(std::max<std::int16_t>(width, 0));
}

void CColumnTextFile::SetNumColumns(std::int16_t count) {
  columns_.resize(static_cast<std::size_t>(std::max<std::int16_t>(count, 0)));
}

void CColumnTextFile::Create(bool replace, bool& success) {
  success = false;
  complete_ = false;
  buffer_.clear();
  file_.reset();
  const std::filesystem::path path = BuildFullPath(folder_, filename_);
  std::error_code error;
  path_ = std::filesystem::absolute(path, error);
  if (error) RaiseFileError(error.value(), "Cannot make", path);
  if (!replace && std::filesystem::exists(path_, error)) {
    RaiseFileError(EEXIST, "Cannot replace", path_);
  }
  file_ = std::make_unique<CReplacingFile>(path_, std::nullopt, patience_);
  success = true;
}

void CColumnTextFile::WriteHeader(std::int32_t, bool& success) {
  WithFile(success, [this] {
    buffer_ += Lines(header_);
    AppendRow();
  });
}

void CColumnTextFile::WriteRow(bool& success) {
  WithFile(success, [this] { AppendRow(); });
}

void CColumnTextFile::Close(bool& success) {
  WithFile(success, [this] {
    Flush();
    file_->Commit();
    complete_ = file_->IsRegular();
    file_.reset();
  });
}

// A file that has failed once is given up: no later row or close may make a whole file of it.
template <class Action>
void CColumnTextFile::WithFile(bool& success, Action action) {
  success = false;
  if (!file_) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "'" + filename_ + "' is not open for writing.");
  }
  try {
    action();
  } catch (...) {
    file_.reset();
    throw;
  }
  success = true;
}

void CColumnTextFile::AppendRow() {
  for (const Column& column : columns_) {
    const std::size_t characters = Characters(column.text);
    buffer_ += column.text;
    buffer_.append(characters > column.width ? 1 : column.width - characters, ' ');
  }
  buffer_ += '\n';
  if (buffer_.size() >= kBufferSize) Flush();
}

void CColumnTextFile::Flush() {
  file_->Write(buffer_);
  buffer_.clear();
}

void CColumnTextFile::Show(bool) {
  RequireComplete();
  const int code = RunProgram({opener_, path_.string()});
  if (code != 0) RaiseProgramError("Cannot show", path_, opener_, code, {});
}

void CColumnTextFile::Print(bool selectprinter, bool& success) {
  success = false;
  RequireComplete();
  std::vector<std::string> command = {"lp"};
  if (selectprinter) {
    const std::vector<std::string> printers = Printers();
    std::optional<std::string> printer;
    if (printers.size() == 1) printer = printers.front();
    if (printers.size() > 1 && printerchoice_) {
      printer = printerchoice_(printers);
      if (!printer) return;
    }
    if (printer) command.insert(command.end(), {"-d", *printer});
  }
  command.push_back(path_.string());
  std::string said;
  const int code = RunProgram(command, &said);
  if (code != 0) RaiseProgramError("Cannot print", path_, command[0], code, said);
  success = true;
}

void CColumnTextFile::RequireComplete() const {
  if (!complete_) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "No file has been written.");
  }
}

}  // namespace vane
