// What a log download needs from the host: the field reader, the column file, and the questions
// for a file and a printer.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "adapters/files/column_file.h"
#include "adapters/files/field_reader.h"
#include "adapters/terminal/terminal_file_dialog.h"
#include "adapters/terminal/terminal_printer_choice.h"
#include "tests/support/host_machine.h"
#include "vane/components/library_error.h"

namespace vane {
namespace {

using test::FileText;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

TEST(FieldReader, RunsOfSeparatorsSeparateOnce) {
  struct Row {
    std::string separators, text;
    Texts fields;
  };
  CFieldReader reader;
  for (const Row& row :
       {Row{" \r\n", "", {}},
        {" \r\n", " \r\n ", {}},
        {" \r\n", "\r\n\r\n1  OHM\tz 7\r\n \r\n2 °C", {"1", "OHM\tz", "7", "2", "°C"}},
        {",", "a b,°,", {"a b", "°"}},
        {"", "a b", {"a b"}}}) {
    reader.SetL("other");
    EXPECT_EQ(reader.NF(), 1);
    reader.SetFS(row.separators);
    reader.SetL(row.text);
    Texts fields;
    for (std::int32_t i = 1; i <= reader.NF(); ++i) fields.push_back(reader.f(i));
    EXPECT_EQ(fields, row.fields);
    EXPECT_THROW(reader.f(0), std::out_of_range);
    EXPECT_THROW(reader.f(reader.NF() + 1), std::out_of_range);
  }
}

TEST(FieldReader, TakesTheLargestLog) {
  std::string text;
  for (int i = 1; i <= 32767; ++i) text += std::to_string(i) + " C " + std::to_string(-i) + "\r\n";
  CFieldReader reader;
  reader.SetFS(" \r\n");
  reader.SetL(text);
  EXPECT_EQ(reader.NF(), 98301);
  EXPECT_EQ(reader.f(98301), "-32767");
}

// A folder for the files and, as the only one on PATH, one for programs; and a terminal.
class SavedFile : public test::CUserTerminal, public testing::Test {
 protected:
  SavedFile() {
    for (const char* each : {"bin", "out", "out/sub"}) fs::create_directory(folder_ / each);
    setenv("PATH", (folder_ / "bin").c_str(), 1);
    file_.SetFolder((folder_ / "out" / "").string());
    file_.SetFileName("-a b;$(x).txt");
    path_ = folder_ / "out" / file_.FileName();
    file_.SetNumColumns(3);
    for (std::int16_t column = 0; column < 3; ++column) file_.SetColumnWidth(column, 8);
  }
  ~SavedFile() override { setenv("PATH", formerpath_.c_str(), 1); }

  // A program that notes its name and arguments.
  void PutProgram(const std::string& name, const std::string& body) const {
    const std::string note = "printf '<%s>' " + name + " \"$@\" >>";
    std::ofstream(folder_ / "bin" / name) << "#!/bin/sh\n" + note << folder_ / "calls"
                                          << ";" + body;
    fs::permissions(folder_ / "bin" / name, fs::perms::owner_all);
  }
  std::string Calls() const {
    std::string calls = FileText(folder_ / "calls");
    fs::remove(folder_ / "calls");
    return calls;
  }
  bool PathIsAlone() const {  // nothing lies beside the file
    return std::distance(fs::directory_iterator(folder_ / "out"), {}) == 2 && fs::exists(path_);
  }
  void SetFields(const Texts& texts) {
    std::int16_t column = 0;
    for (const std::string& text : texts) file_.SetField(column++, text);
  }
  // Empty when `action` has succeeded.
  template <class Action>
  std::string Error(Action action) {
    success_ = true;
    try {
      action();
    } catch (const std::exception& error) {
      EXPECT_FALSE(success_);
      return error.what();
    }
    EXPECT_TRUE(success_);
    return {};
  }

  const std::string formerpath_ = getenv("PATH");
  test::CTemporaryFolder folder_;
  fs::path path_;
  Texts offered_;
  std::optional<std::string> answer_ = "lab";
  CColumnTextFile file_{[this](const Texts& printers) {
    offered_ = printers;
    return answer_;
  }};
  bool success_ = false;
  CInterrupts interrupts_;
};

TEST_F(SavedFile, RowsAreFilledUpByCharacters) {
  file_.SetHeader("\r\nModel: T312B\r\nChannel: 3");
  file_.Create(true, success_);
  SetFields({"Date", "Reading", "Label"});
  file_.WriteHeader(8, success_);
  for (const Texts& row :
       {Texts{"", "25.00 °C", "Ω"}, {"a", "overlong °C", ""}, {"", "", "123456789"}}) {
    SetFields(row);
    EXPECT_EQ(Error([&] { file_.WriteRow(success_); }), "");
  }
  EXPECT_EQ(Error([&] { file_.Close(success_); }), "");
  EXPECT_EQ(FileText(path_),
            "\nModel: T312B\nChannel: 3\n"
            "Date    Reading Label   \n"
            "        25.00 °CΩ       \n"
            "a       overlong °C         \n"
            "                123456789 \n");
}

TEST_F(SavedFile, OlderFileStaysUntilClose) {
  const auto mode = [&] { return static_cast<unsigned>(fs::status(path_).permissions()); };
  const mode_t mask = umask(027);
  fs::create_symlink(folder_ / "linked", path_);
  file_.Create(true, success_);
  file_.Close(success_);
  umask(mask);
  EXPECT_TRUE(fs::is_symlink(path_) && fs::is_regular_file(folder_ / "linked"));
  EXPECT_EQ(mode(), 0640u);

  fs::permissions(path_, fs::perms(0604));
  for (const bool close : {false, true}) {
    std::ofstream(path_) << "old";
    CColumnTextFile next;
    next.SetFolder(file_.Folder());
    next.SetFileName(file_.FileName());
    next.Create(true, success_);
    for (int i = 0; i < 100000; ++i) next.WriteRow(success_);
    EXPECT_EQ(FileText(path_), "old");
    if (close) next.Close(success_);
  }
  EXPECT_EQ(FileText(path_), std::string(100000, '\n'));
  EXPECT_EQ(mode(), 0604u);
  EXPECT_TRUE(PathIsAlone());
}

TEST_F(SavedFile, WhatCannotBeMadeIsAnErrorThatNamesIt) {
  std::ofstream(path_) << "old";
  const std::string in = folder_.Path().string() + "/";
  struct Row {
    std::string folder, name, reason;
    bool replace = true;
  };
  for (const Row& row :
       {Row{in + "none/", "a", "the folder '" + in + "none': No such file or directory"},
        {path_.string() + "/", "a", "the folder '" + path_.string() + "': Not a directory"},
        {in, "out", "'" + in + "out': Is a directory"},
        {file_.Folder(), file_.FileName(), "'" + path_.string() + "': File exists", false}}) {
    file_.SetFolder(row.folder);
    file_.SetFileName(row.name);
    EXPECT_THAT(Error([&] { file_.Create(row.replace, success_); }), EndsWith(row.reason));
    EXPECT_THAT(Error([&] { file_.WriteHeader(8, success_); }), HasSubstr("not open"));
  }
  EXPECT_TRUE(PathIsAlone());
  EXPECT_EQ(FileText(path_), "old");
}

TEST_F(SavedFile, FullDiskIsAnErrorAndLeavesTheOlderFile) {
  std::ofstream(path_) << "old";
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  Texts errors;
  for (const int rows : {8000, 4500}) {  // found by a row, and by the last rest
    file_.Create(true, success_);
    errors.push_back(Error([&] {
      for (int i = 0; i < rows; ++i) file_.WriteRow(success_);
      if (rows < 5000) file_.Close(success_);
    }));
    errors.push_back(PathIsAlone() ? "" : "something is left");
    EXPECT_THAT(Error([&] { file_.Close(success_); }), HasSubstr("not open"));
  }
  setrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, SIG_DFL);
  const auto named = HasSubstr(path_.string() + "': File too large");
  EXPECT_THAT(errors, ElementsAre(named, "", named, ""));
  EXPECT_EQ(FileText(path_), "old");
}

TEST_F(SavedFile, DeviceInThePlaceOfTheFileGetsTheRows) {
  fs::create_symlink("/dev/full", path_);
  file_.SetField(0, "row");
  file_.Create(true, success_);
  file_.WriteRow(success_);
  EXPECT_THAT(Error([&] { file_.Close(success_); }), EndsWith("No space left on device"));
  fs::remove(path_);
  fs::create_symlink("/proc/self/fd/" + std::to_string(host), path_);
  file_.Create(true, success_);
  file_.WriteRow(success_);
  file_.Close(success_);
  EXPECT_EQ(Screen(), "row" + std::string(21, ' ') + "\n");
  EXPECT_TRUE(PathIsAlone() && fs::is_symlink(path_));
  EXPECT_EQ(Error([&] { file_.Print(false, success_); }), "No file has been written.");
}

TEST_F(SavedFile, ShowAndPrintHandThePathToAProgram) {
  const auto print = [&](bool select) { return Error([&] { file_.Print(select, success_); }); };
  const auto show = [&] {
    return Error([&] { success_ = false, file_.Show(true), success_ = true; });
  };
  EXPECT_EQ(print(true), "No file has been written.");
  EXPECT_EQ(show(), "No file has been written.");
  file_.Create(true, success_);
  file_.Close(success_);

  const std::string lpstat = "<lpstat><-a><lp>", named = "<" + path_.string() + ">";
  const std::string two =
      "printf 'office accepting\\n\\tidle\\nlab accepting\\nold not accepting\\n'";
  struct Row {
    bool select;
    std::string printers, calls;
    Texts offered;
  };
  PutProgram("lp", "echo 'request id is lab-1'");
  for (const Row& row : {Row{false, two, "<lp>" + named, {}},
                         {true, "echo 'none' >&2; exit 1", lpstat + named, {}},
                         {true, "echo 'lab accepting'", lpstat + "<-d><lab>" + named, {}},
                         {true, two, lpstat + "<-d><lab>" + named, {"office", "lab"}}}) {
    PutProgram("lpstat", row.printers);
    EXPECT_EQ(print(row.select), "");
    EXPECT_EQ(Calls(), row.calls);
    EXPECT_EQ(offered_, row.offered);
  }
  answer_.reset();
  file_.Print(true, success_);
  EXPECT_FALSE(success_);
  EXPECT_EQ(Calls(), "<lpstat><-a>");
  PutProgram("lp", "echo 'lp: no destination' >&2; exit 1");
  EXPECT_THAT(print(false), EndsWith(path_.string() + "': lp: no destination"));

  Calls();
  PutProgram("xdg-open", "true");
  EXPECT_EQ(show(), "");
  EXPECT_EQ(Calls(), "<xdg-open>" + named);
  PutProgram("xdg-open", "exit 3");
  EXPECT_THAT(show(), EndsWith("xdg-open ended with code 3"));
  fs::remove_all(folder_ / "bin");
  EXPECT_THAT(show(), HasSubstr("Cannot start 'xdg-open'"));
  answer_ = "lab";
  EXPECT_THAT(print(true), HasSubstr("Cannot start 'lp'"));
}

TEST_F(SavedFile, FileDialogGivesThePathThatTheUserWants) {
  const std::string in = file_.Folder(), old = in + "old.txt";
  std::ofstream(old) << "old";
  const std::string ask = "File [" + in + "download.txt]: ";
  const std::string exists = ask + "'" + old + "' exists. Replace it (y/n)? ";
  struct Row {
    std::string typed, path, screen;  // no path: cancelled
  };
  for (const Row& row :
       {Row{"\n", in + "download.txt", ask},
        {" my log \n", in + "my log.txt", ask},
        {folder_.Path().string() + "/a.dat\n", folder_.Path().string() + "/a.dat", ask},
        {"sub\n", in + "sub/download.txt", ask},
        {"no/a\nsub/a\n", in + "sub/a.txt", ask + "There is no folder '" + in + "no'.\n" + ask},
        {"old\nn\nold\n YES\n", old, exists + exists},
        {"old\n\x04", "", exists + "\nNo file: the input has ended.\n"},
        {"", "", ask + "\nNo file: interrupted.\n"}}) {
    CTerminalFileDialog dialog(interrupts_, host, host);
    dialog.SetDefaultExt("txt");
    dialog.SetDialogTitle("Save As");
    dialog.SetFlags(0x280806);
    dialog.SetFileName("download.txt");
    dialog.SetInitDir(in);
    if (row.screen.ends_with("interrupted.\n")) raise(SIGINT);
    Type(row.typed);
    const std::string error = Error([&] { success_ = false, dialog.ShowSave(), success_ = true; });
    EXPECT_EQ(error.empty() ? dialog.FileName() : "", row.path);
    EXPECT_EQ(Screen(), "Save As\n" + row.screen);
  }
}

TEST_F(SavedFile, PrinterIsChosenByNumberOrName) {
  const auto choose = [&](const std::string& typed) {
    Type(typed);
    return ChoosePrinter(interrupts_, {"office", "lab"}, host, host).value_or("none");
  };
  EXPECT_EQ(choose("2\n"), "lab");
  EXPECT_EQ(Screen(), "Printers\n  1  office\n  2  lab\nPrinter (none: don't print): ");
  EXPECT_EQ(choose("0\n3\n Office \n"), "office");
  EXPECT_THAT(Screen(), HasSubstr("There is no such printer.\nPrinter (none"));
  EXPECT_EQ(choose("NONE\n"), "none");
  EXPECT_EQ(choose("\n"), "none");
  EXPECT_EQ(choose("\x04"), "none");
}

TEST_F(SavedFile, WithoutATerminalNothingIsAsked) {
  const int none = open("/dev/zero", O_RDONLY);
  EXPECT_THROW(CTerminalFileDialog(interrupts_, none, host).ShowSave(), LibraryError);
  EXPECT_EQ(ChoosePrinter(interrupts_, {"office", "lab"}, none, host), std::nullopt);
  EXPECT_THAT(Screen(), HasSubstr("No file: there is no terminal"));
  close(none);
}

}  // namespace
}  // namespace vane
