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
    for (const char* each : {"bin", "out", "out/sub"}) fs::create_directory(folder / each);
    setenv("PATH", (folder / "bin").c_str(), 1);
    file.SetFolder((folder / "out" / "").string());
    file.SetFileName("-a b;$(x).txt");
    path = folder / "out" / file.FileName();
    file.SetNumColumns(3);
    for (std::int16_t column = 0; column < 3; ++column) file.SetColumnWidth(column, 8);
  }
  ~SavedFile() override { setenv("PATH", formerpath.c_str(), 1); }

  // A program that notes its name and arguments.
  void PutProgram(const std::string& name, const std::string& body) const {
    const std::string note = "printf '<%s>' " + name + " \"$@\" >>";
    std::ofstream(folder / "bin" / name) << "#!/bin/sh\n" + note << folder / "calls"
                                         << ";" + body;
    fs::permissions(folder / "bin" / name, fs::perms::owner_all);
  }
  std::string Calls() const {
    const std::string calls = FileText(folder / "calls");
    fs::remove(folder / "calls");
    return calls;
  }
  bool PathIsAlone() const {  // nothing lies beside the file
    return std::distance(fs::directory_iterator(folder / "out"), {}) == 2 && fs::exists(path);
  }
  void SetFields(const Texts& texts) {
    std::int16_t column = 0;
    for (const std::string& text : texts) file.SetField(column++, text);
  }
  // Empty when `action` has succeeded.
  template <class Action>
  std::string Error(Action action) {
    success = true;
    try {
      action();
    } catch (const std::exception& error) {
      EXPECT_FALSE(success);
      return error.what();
    }
    EXPECT_TRUE(success);
    return {};
  }

  const std::string formerpath = getenv("PATH");
  test::CTemporaryFolder folder;
  fs::path path;
  Texts offered;
  std::optional<std::string> answer = "lab";
  CColumnTextFile file{[this](const Texts& printers) {
    offered = printers;
    return answer;
  }};
  bool success = false;
  CInterrupts interrupts;
};

TEST_F(SavedFile, RowsAreFilledUpByCharacters) {
  file.SetHeader("\r\nModel: T312B\r\nChannel: 3");
  file.Create(true, success);
  SetFields({"Date", "Reading", "Label"});
  file.WriteHeader(8, success);
  for (const Texts& row :
       {Texts{"", "25.00 °C", "Ω"}, {"a", "overlong °C", ""}, {"", "", "123456789"}}) {
    SetFields(row);
    EXPECT_EQ(Error([&] { file.WriteRow(success); }), "");
  }
  EXPECT_EQ(Error([&] { file.Close(success); }), "");
  EXPECT_EQ(FileText(path),
            "\nModel: T312B\nChannel: 3\n"
            "Date    Reading Label   \n"
            "        25.00 °CΩ       \n"
            "a       overlong °C         \n"
            "                123456789 \n");
}

TEST_F(SavedFile, OlderFileStaysUntilClose) {
  const auto mode = [&] { return static_cast<unsigned>(fs::status(path).permissions()); };
  const mode_t mask = umask(027);
  fs::create_symlink(folder / "linked", path);
  file.Create(true, success);
  file.Close(success);
  umask(mask);
  EXPECT_TRUE(fs::is_symlink(path) && fs::is_regular_file(folder / "linked"));
  EXPECT_EQ(mode(), 0640u);

  fs::permissions(path, fs::perms(0604));
  for (const bool close : {false, true}) {
    std::ofstream(path) << "old";
    CColumnTextFile next;
    next.SetFolder(file.Folder());
    next.SetFileName(file.FileName());
    next.Create(true, success);
    for (int i = 0; i < 100000; ++i) next.WriteRow(success);
    EXPECT_EQ(FileText(path), "old");
    if (close) next.Close(success);
  }
  EXPECT_EQ(FileText(path), std::string(100000, '\n'));
  EXPECT_EQ(mode(), 0604u);
  EXPECT_TRUE(PathIsAlone());
}

TEST_F(SavedFile, WhatCannotBeMadeIsAnErrorThatNamesIt) {
  std::ofstream(path) << "old";
  const std::string in = folder.Path().string() + "/";
  struct Row {
    std::string folder, name, reason;
    bool replace = true;
  };
  for (const Row& row :
       {Row{in + "none/", "a", "the folder '" + in + "none': No such file or directory"},
        {path.string() + "/", "a", "the folder '" + path.string() + "': Not a directory"},
        {in, "out", "'" + in + "out': Is a directory"},
        {file.Folder(), file.FileName(), "'" + path.string() + "': File exists", false}}) {
    file.SetFolder(row.folder);
    file.SetFileName(row.name);
    EXPECT_THAT(Error([&] { file.Create(row.replace, success); }), EndsWith(row.reason));
    EXPECT_THAT(Error([&] { file.WriteHeader(8, success); }), HasSubstr("not open"));
  }
  EXPECT_TRUE(PathIsAlone());
  EXPECT_EQ(FileText(path), "old");
}

TEST_F(SavedFile, FullDiskIsAnErrorAndLeavesTheOlderFile) {
  std::ofstream(path) << "old";
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  Texts errors;
  for (const int rows : {8000, 4500}) {  // found by a row, and by the last rest
    file.Create(true, success);
    errors.push_back(Error([&] {
      for (int i = 0; i < rows; ++i) file.WriteRow(success);
      if (rows < 5000) file.Close(success);
    }));
    errors.push_back(PathIsAlone() ? "" : "something is left");
    EXPECT_THAT(Error([&] { file.Close(success); }), HasSubstr("not open"));
  }
  setrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, SIG_DFL);
  const auto named = HasSubstr(path.string() + "': File too large");
  EXPECT_THAT(errors, ElementsAre(named, "", named, ""));
  EXPECT_EQ(FileText(path), "old");
}

TEST_F(SavedFile, DeviceInThePlaceOfTheFileGetsTheRows) {
  fs::create_symlink("/dev/full", path);
  file.SetField(0, "row");
  file.Create(true, success);
  file.WriteRow(success);
  EXPECT_THAT(Error([&] { file.Close(success); }), EndsWith("No space left on device"));
  fs::remove(path);
  fs::create_symlink("/proc/self/fd/" + std::to_string(host), path);
  file.Create(true, success);
  file.WriteRow(success);
  file.Close(success);
  EXPECT_EQ(Screen(), "row" + std::string(21, ' ') + "\n");
  EXPECT_TRUE(PathIsAlone() && fs::is_symlink(path));
  EXPECT_EQ(Error([&] { file.Print(false, success); }), "No file has been written.");
}

TEST_F(SavedFile, ShowAndPrintHandThePathToAProgram) {
  const auto print = [&](bool select) { return Error([&] { file.Print(select, success); }); };
  const auto show = [&] {
    return Error([&] { success = false, file.Show(true), success = true; });
  };
  EXPECT_EQ(print(true), "No file has been written.");
  EXPECT_EQ(show(), "No file has been written.");
  file.Create(true, success);
  file.Close(success);

  const std::string lpstat = "<lpstat><-a><lp>", named = "<" + path.string() + ">";
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
    EXPECT_EQ(offered, row.offered);
  }
  answer.reset();
  file.Print(true, success);
  EXPECT_FALSE(success);
  EXPECT_EQ(Calls(), "<lpstat><-a>");
  PutProgram("lp", "echo 'lp: no destination' >&2; exit 1");
  EXPECT_THAT(print(false), EndsWith(path.string() + "': lp: no destination"));

  Calls();
  PutProgram("xdg-open", "true");
  EXPECT_EQ(show(), "");
  EXPECT_EQ(Calls(), "<xdg-open>" + named);
  PutProgram("xdg-open", "exit 3");
  EXPECT_THAT(show(), EndsWith("xdg-open ended with code 3"));
  fs::remove_all(folder / "bin");
  EXPECT_THAT(show(), HasSubstr("Cannot start 'xdg-open'"));
  answer = "lab";
  EXPECT_THAT(print(true), HasSubstr("Cannot start 'lp'"));
}

TEST_F(SavedFile, FileDialogGivesThePathThatTheUserWants) {
  const std::string in = file.Folder(), old = in + "old.txt";
  std::ofstream(old) << "old";
  const std::string ask = "File [" + in + "download.txt]: ";
  const std::string exists = ask + "'" + old + "' exists. Replace it (y/n)? ";
  struct Row {
    std::string typed, path, screen;  // no path: cancelled
  };
  for (const Row& row :
       {Row{"\n", in + "download.txt", ask},
        {" my log \n", in + "my log.txt", ask},
        {folder.Path().string() + "/a.dat\n", folder.Path().string() + "/a.dat", ask},
        {"sub\n", in + "sub/download.txt", ask},
        {"no/a\nsub/a\n", in + "sub/a.txt", ask + "There is no folder '" + in + "no'.\n" + ask},
        {"old\nn\nold\n YES\n", old, exists + exists},
        {"old\n\x04", "", exists + "\nNo file: the input has ended.\n"},
        {"", "", ask + "\nNo file: interrupted.\n"}}) {
    CTerminalFileDialog dialog(interrupts, host, host);
    dialog.SetDefaultExt("txt");
    dialog.SetDialogTitle("Save As");
    dialog.SetFlags(0x280806);
    dialog.SetFileName("download.txt");
    dialog.SetInitDir(in);
    if (row.screen.ends_with("interrupted.\n")) raise(SIGINT);
    Type(row.typed);
    const std::string error = Error([&] { success = false, dialog.ShowSave(), success = true; });
    EXPECT_EQ(error.empty() ? dialog.FileName() : "", row.path);
    EXPECT_EQ(Screen(), "Save As\n" + row.screen);
  }
}

TEST_F(SavedFile, PrinterIsChosenByNumberOrName) {
  const auto choose = [&](const std::string& typed) {
    Type(typed);
    return ChoosePrinter(interrupts, {"office", "lab"}, host, host).value_or("none");
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
  EXPECT_THROW(CTerminalFileDialog(interrupts, none, host).ShowSave(), LibraryError);
  EXPECT_EQ(ChoosePrinter(interrupts, {"office", "lab"}, none, host), std::nullopt);
  EXPECT_THAT(Screen(), HasSubstr("No file: there is no terminal"));
  close(none);
}

}  // namespace
}  // namespace vane
