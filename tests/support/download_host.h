// What the tests of a download have in common: a host whose files and save dialog write into the
// log, and a download over scripted communications with real files.
#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "adapters/files/column_file.h"
#include "adapters/files/field_reader.h"
#include "adapters/files/private_text_file.h"
#include "tests/support/transcript.h"
#include "vane/components/memory_forms.h"

namespace vane::test {

namespace fs = std::filesystem;

// Logs what an operation asks of an output file.
class CRecordingFile : public CVaneOutputFile {
 public:
  explicit CRecordingFile(CTranscript& log) : log_(log) {}

  void SetHelpFile(const std::string& file) override { Add("help " + file); }
  void SetLayoutOptionA(bool value) override { Add(value ? "A true" : "A false"); }
  void SetLayoutOptionB(bool value) override { Add(value ? "B true" : "B false"); }
  void SetRegistry(std::shared_ptr<CVaneRegistry> registry) override { registry_ = registry; }
  const std::shared_ptr<CVaneRegistry>& Registry() const override { return registry_; }
  const std::string& Folder() const override { return folder_; }
  void SetFolder(const std::string& folder) override { Add("folder " + (folder_ = folder)); }
  const std::string& Field(std::int16_t) const override { return field_; }
  void SetField(std::int16_t column, const std::string& text) override {
    if (column == 2) field_ = text;
    Add(std::to_string(column) + "=" + text);
  }
  void SetColumnWidth(std::int16_t column, std::int16_t width) override {
    Add("width " + std::to_string(column) + " " + std::to_string(width));
  }
  void SetNumColumns(std::int16_t count) override { Add("columns " + std::to_string(count)); }
  const std::string& Header() const override { return header_; }
  void SetHeader(const std::string& text) override { header_ = text; }
  const std::string& FileName() const override { return name_; }
  void SetFileName(const std::string& name) override { Add("name " + (name_ = name)); }
  void Create(bool replace, bool& success) override {
    Add(replace ? "create" : "");
    success = creates;
  }
  void WriteHeader(std::int32_t kind, bool& success) override {
    Add("head " + std::to_string(kind));
    success = true;
  }
  void WriteRow(bool& success) override {
    Add("row");
    success = false;
  }
  void Close(bool&) override { Add("close"); }
  void Show(bool flag) override { Add(flag ? "show" : ""); }
  void Print(bool select, bool&) override { Add(select ? "print, asking" : "print"); }

  bool creates = true;

 private:
  void Add(const std::string& line) { log_.Add("file " + line); }

  CTranscript& log_;
  std::shared_ptr<CVaneRegistry> registry_;
  std::string folder_, name_, field_, header_;
};

class CRecordingDialog : public CVaneFileDialog {
 public:
  CRecordingDialog(CTranscript& log, std::string chosen) : log_(log), chosen_(std::move(chosen)) {}

  void SetOptionA(bool) override { log_.Add("dialog A"); }
  void SetDefaultExt(const std::string& text) override { log_.Add("dialog ext " + text); }
  void SetDialogTitle(const std::string& text) override { log_.Add("dialog title " + text); }
  void SetFlags(std::int32_t flags) override { log_.Add("dialog flags " + std::to_string(flags)); }
  void SetFileName(const std::string& name) override { log_.Add("dialog name " + name); }
  void SetFilter(const std::string& text) override { log_.Add("dialog filter " + text); }
  void SetOptionB(bool) override { log_.Add("dialog B"); }
  void SetInitDir(const std::string& folder) override { log_.Add("dialog folder " + folder); }
  void ShowSave() override {
    log_.Add("dialog asks");
    if (chosen_.empty()) throw LibraryError(ERR_PLATFORM_CALL, {}, "Cancelled");
  }
  const std::string& FileName() const override { return chosen_; }

 private:
  CTranscript& log_;
  std::string chosen_;
};

class CRecordingTrace : public CVaneTextFile {
 public:
  explicit CRecordingTrace(CTranscript& log) : log_(log) {}
  void WriteLine(const std::string& text) override { log_.Add("trace " + text); }
  void Write(const std::string&) override {}
  void Close() override {}

 private:
  CTranscript& log_;
};

class CDownloadHost : public CTestHost {
 public:
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override {
    if (!recordsfile) return std::make_unique<CColumnTextFile>();
    auto file = std::make_unique<CRecordingFile>(log);
    file->creates = creates;
    return file;
  }
  std::unique_ptr<CVaneFileDialog> MakeFileDialog() override {
    return std::make_unique<CRecordingDialog>(log, chosen);
  }
  std::unique_ptr<AwkOne> MakeFieldParser() override { return std::make_unique<CFieldReader>(); }
  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override {
    if (recordstrace) return std::make_unique<CRecordingTrace>(log);
    return std::make_unique<CPrivateTextFile>(path);
  }

  bool recordsfile = false;
  bool recordstrace = false;
  bool creates = true;
  std::string chosen;  // by the user in the save dialog; empty: he cancels
};

class Download : public testing::Test {
 protected:
  Download() {
    fs::create_directories(out_);
    fs::create_directories(temp_);
    host_.platform.temporaryfolder = temp_;
    host_.registry->texts["DownloadFolder"] = out_;
    host_.ConnectWith(false);
    SetLog({"25.0012 C 1", "77 F 2", "100.5 OHM 3"});
  }
  ~Download() override { fs::remove_all(folder_); }

  void SetLog(const std::vector<std::string>& readings) {
    auto& replies = host_.script.replies;
    std::erase_if(replies, [](const auto& reply) { return reply.first.starts_with("read 275"); });
    replies["read 275"] = "";
    for (std::size_t i = 0; i < readings.size(); ++i) {
      replies["read 275 Index=" + std::to_string(i + 1)] = readings[i];
    }
  }

  // The user looks at the list and goes on.
  void ExpectList() {
    host_.forms.Expect("frmShowFiles", [this](ui::CUser& user) {
      const auto& list = user.Find<ui::CListBox>("lstFiles");
      for (std::int32_t i = 0; i < list.ListCount(); ++i) {
        host_.log.Add("list " + list.ItemText(i) + " #" + std::to_string(list.ItemData(i)));
      }
      EXPECT_TRUE(user.Return());
    });
  }

  bool Run(std::int16_t readings = 0, std::int16_t resol = 2, bool prompt = false) {
    host_.log.Clear();
    host_.steps = 0;
    return it_.DownloadLog(parser_, ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                           ET312BDownloadOption::DOWNLOAD_SINGLE_FILE, readings, resol, prompt);
  }

  static std::string Content(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  std::string Trace() const { return Content(temp_ / "DNLDT312B.LOG"); }
  std::string Raw() const { return Content(temp_ / "TMPDWNLD.LOG"); }
  std::string File() const { return Content(out_ / "download.txt"); }
  std::string Boxes() const { return host_.log.Only({"box", "list"}); }
  std::string ListOfFile() const { return "list " + (out_ / "download.txt").string() + " #0\n"; }
  std::size_t FilesIn(const fs::path& folder) const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
  }

  CDownloadHost host_;
  CVaneT312B& it_ = *host_.instrument;
  CFieldReader parser_;
  const fs::path folder_ =
      fs::temp_directory_path() / ("vane-download-" + std::to_string(getpid()));
  const fs::path out_ = folder_ / "out";
  const fs::path temp_ = folder_ / "temp";
};

}  // namespace vane::test
