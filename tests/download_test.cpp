// Downloads of a log, over scripted communications and with real files: what the user sees, what
// the trace says, and what lies on the disk afterwards.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "adapters/files/column_file.h"
#include "adapters/files/field_reader.h"
#include "adapters/files/private_text_file.h"
#include "tests/support/form_text.h"
#include "tests/support/transcript.h"
#include "vane/components/memory_forms.h"

namespace vane {
namespace {

namespace fs = std::filesystem;
using test::CTestHost;

constexpr char kRows[] =
    "<no date>   <no time>   25.00 °C            <no label><no channel> \n"
    "<no date>   <no time>   77.00 °F            <no label><no channel> \n"
    "<no date>   <no time>   100.50 OHM          <no label><no channel> \n";
constexpr char kHead[] =
    "\nThermometer Readout Model: T312B\n"
    "Date        Time        Reading             Label     Channel   \n";

// Logs what an operation asks of an output file.
class CRecordingFile : public CVaneOutputFile {
 public:
  explicit CRecordingFile(test::CTranscript& log) : log_(log) {}

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

  test::CTranscript& log_;
  std::shared_ptr<CVaneRegistry> registry_;
  std::string folder_, name_, field_, header_;
};

class CRecordingDialog : public CVaneFileDialog {
 public:
  CRecordingDialog(test::CTranscript& log, std::string chosen)
      : log_(log), chosen_(std::move(chosen)) {}

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
  test::CTranscript& log_;
  std::string chosen_;
};

class CRecordingTrace : public CVaneTextFile {
 public:
  explicit CRecordingTrace(test::CTranscript& log) : log_(log) {}
  void WriteLine(const std::string& text) override { log_.Add("trace " + text); }
  void Write(const std::string&) override {}
  void Close() override {}

 private:
  test::CTranscript& log_;
};

class CFailingParser : public CFieldReader {
  std::string f(std::int32_t i) override {
    if (i == 5) throw std::out_of_range("field");
    return CFieldReader::f(i);
  }
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

TEST_F(Download, AGoodRunLeavesTheFileTheTraceAndTheRawText) {
  ExpectList();
  EXPECT_TRUE(Run());
  EXPECT_EQ(File(), std::string(kHead) + kRows);
  EXPECT_EQ(Raw(), "25.0012 C 1\r\n77 F 2\r\n100.5 OHM 3\r\n");
  EXPECT_EQ(Boxes(), ListOfFile());
  std::string trace =
      "Preparing to download data from T312B...\nInitializing communications...\n"
      "Querying firmware version...\nFirmware version 5.03\nCount: 100\nDownloading data...\n";
  const std::string replies[] = {"25.0012 C 1", "77 F 2", "100.5 OHM 3", ""};
  for (int i = 0; i < 4; ++i) {
    trace += "Querying value " + std::to_string(i + 1) + " of 100...\nResult: " + replies[i] + "\n";
  }
  trace +=
      "Writing downloaded data to temp file...\nPreparing to parse downloaded data...\n"
      "Fields to parse: 9\nCreating file...\nPreparing file...\n"
      "Field 1 of 9: 25.0012\nField 2 of 9: C\nField 3 of 9: 1\nUpdating file...\n"
      "Field 4 of 9: 77\nField 5 of 9: F\nField 6 of 9: 2\nUpdating file...\n"
      "Field 7 of 9: 100.5\nField 8 of 9: OHM\nField 9 of 9: 3\nUpdating file...\n"
      "Closing file...\nDownload finished...\n";
  EXPECT_EQ(Trace(), trace);
  EXPECT_EQ(
      host_.log.Only({"progress", "start", "step", "hide", "show", "finish", "release", "busy",
                      "queue", "list"}),
      "busy on\nprogress\nstart Downloading data... 0\nstep 1 of 100\nstep 2 of 100\n"
      "step 3 of 100\nstep 4 of 100\nfinish\nrelease\nprogress\nstart Parsing data... 0\n"
      "hide\nqueue 0\nshow\nqueue 0\nstep 3 of 9\nstep 6 of 9\nstep 9 of 9\nhide\nbusy off\n" +
          ListOfFile() + "finish\nrelease\nbusy off\n");
  EXPECT_EQ(FilesIn(out_), 1u);
}

TEST_F(Download, TemporaryFilesAreTheUsersAloneAndFollowNoLink) {
  const fs::path victim = folder_ / "victim";
  std::ofstream(victim) << "mine";
  fs::create_symlink(victim, temp_ / "DNLDT312B.LOG");
  fs::create_symlink(victim, temp_ / "TMPDWNLD.LOG");
  ExpectList();
  EXPECT_TRUE(Run());
  EXPECT_EQ(Content(victim), "mine");
  for (const char* name : {"DNLDT312B.LOG", "TMPDWNLD.LOG"}) {
    struct stat state {};
    ASSERT_EQ(lstat((temp_ / name).c_str(), &state), 0);
    EXPECT_EQ(state.st_mode, mode_t{S_IFREG | 0600}) << name;
  }
}

TEST_F(Download, ReadingsAndUnitsAreFormatted) {
  const struct {
    std::int16_t resol;
    std::vector<std::string> readings;
    const char* column;
  } rows[] = {{-1, {"25.0012 C 1"}, "25.0012 °C"},
              {0, {"25.5 K 1"}, "26 K"},
              {1, {"100.52 OHM 1"}, "100.5 OHM"},
              {3, {"x FC 1", "2 K"}, "0.000 °C"},
              {2, {"1.005 W 1 7"}, "1.01 W"}};
  for (const auto& row : rows) {
    SetLog(row.readings);
    ExpectList();
    EXPECT_TRUE(Run(0, row.resol));
    const std::string rest = File().substr(std::string(kHead).size());
    EXPECT_EQ(rest.find(row.column), 24u) << row.column;
    // Fields that make no whole reading make no row.
    EXPECT_EQ(std::ranges::count(rest, '\n'), 1);
  }
}

TEST_F(Download, TheNumberOfReadingsAndTheLogAreTheCallers) {
  SetLog(std::vector<std::string>(150, "1 C 1"));
  for (const auto& [asked, fetched] :
       {std::pair(0, 100u), std::pair(120, 120u), std::pair(-3, 0u), std::pair(200, 151u)}) {
    ExpectList();
    EXPECT_TRUE(Run(static_cast<std::int16_t>(asked)));
    const std::string reads = host_.log.Only({"read 275"});
    EXPECT_EQ(std::ranges::count(reads, '\n'), fetched);
  }
  host_.script.replies["read 276"] = "";
  ExpectList();
  host_.log.Clear();
  EXPECT_TRUE(it_.DownloadLog(parser_, static_cast<ET312BDownloadLogOption>(7)));
  EXPECT_EQ(host_.log.Only({"read 27"}), "read 276 Index=1\n");
  EXPECT_EQ(File(), kHead);
  EXPECT_EQ(Raw(), "");
}

TEST_F(Download, AStopWhileReadingKeepsTheRawTextAndMakesNoFile) {
  SetLog(std::vector<std::string>(9, "1 C 1"));
  host_.abortat = 5;
  EXPECT_FALSE(Run());
  EXPECT_EQ(Boxes(), "box 64 Corvane: The download has been aborted.\n");
  EXPECT_EQ(Raw(), "1 C 1\r\n1 C 1\r\n1 C 1\r\n1 C 1\r\n");
  EXPECT_EQ(FilesIn(out_), 0u);
  EXPECT_TRUE(
      Trace().ends_with("Writing downloaded data to temp file...\nDownload aborted...\n"
                        "Download finished...\n"));
  EXPECT_EQ(host_.log.Lines().back(), "busy off");
}

TEST_F(Download, AStopWhileParsingPutsTheRowsSoFarInPlace) {
  std::ofstream(out_ / "download.txt") << "old";
  host_.abortat = 4 + 2;
  EXPECT_FALSE(Run());
  EXPECT_EQ(Boxes(), "");
  const std::string rows = kRows;
  const std::size_t row = rows.find('\n') + 1;
  EXPECT_EQ(File(), kHead + rows.substr(0, rows.find('\n', row) + 1));
  EXPECT_TRUE(Trace().ends_with("Updating file...\nClosing file...\nDownload finished...\n"));
}

TEST_F(Download, ABadReplyIsFetchedAgainButNotForEver) {
  int bad = 1;
  host_.script.beforeexchange = [&] {
    auto& reply = host_.script.replies["read 275 Index=2"];
    reply = host_.log.Lines().back() == "read 275 Index=2" && bad-- > 0 ? "T312B, 5.03" : "77 F 2";
  };
  for (const int bads : {1, 10}) {
    bad = bads;
    ExpectList();
    EXPECT_TRUE(Run());
    EXPECT_EQ(File(), std::string(kHead) + kRows);
  }
  EXPECT_NE(Trace().find("Result: T312B, 5.03\nBad result - retry...\nQuerying value 2 of 100..."),
            std::string::npos);
  bad = 11;
  std::ofstream(temp_ / "TMPDWNLD.LOG") << "of an earlier run";
  EXPECT_FALSE(Run());
  const std::string why =
      "Reading 2 of the log could not be fetched: the instrument answers with its identification.";
  EXPECT_EQ(Boxes(),
            "box 16 Corvane: An error occurred while attempting to download log data.//Error: " +
                std::to_string(ERR_BAD_READING) + " - " + why + "/(CVaneT312B - DownloadLog)\n");
  EXPECT_TRUE(
      Trace().ends_with("Result: T312B, 5.03\nWriting downloaded data to temp file...\nError: " +
                        std::to_string(ERR_BAD_READING) + " - " + why +
                        "[Source: CVaneT312B - DownloadLog]\nDownload finished...\n"));
  EXPECT_EQ(Raw(), "25.0012 C 1\r\n");
  EXPECT_TRUE(host_.log.Text().ends_with("finish\nrelease\nbusy off\n"));
}

TEST_F(Download, OldFirmwareAndASilentInstrumentEndItBeforeAnyReading) {
  host_.script.replies["read 18"] = "T312B, 5.02";
  EXPECT_FALSE(Run());
  EXPECT_EQ(Boxes(),
            "box 64 Corvane: This feature is not supported by the thermometer readout's current "
            "firmware version. To enable this feature, please contact Corvane Technical Support to "
            "obtain a firmware update.\n");
  EXPECT_TRUE(Trace().ends_with("Firmware version 5.02\nDownload finished...\n"));
  host_.script.replies["read 18"] = "";
  EXPECT_FALSE(Run());
  EXPECT_EQ(Boxes(), "");
  EXPECT_TRUE(Trace().ends_with("Querying firmware version...\n"));
  // Whoever asked the instrument's name has the cursor in his hands.
  EXPECT_EQ(host_.log.Only({"busy"}), "busy on\n");
  EXPECT_EQ(FilesIn(out_), 0u);
}

TEST_F(Download, FailuresEndInOneBoxAndLeaveNoHalfFile) {
  for (const auto& [at, kept] : {std::pair(3, "25.0012 C 1\r\n77 F 2\r\n"), std::pair(1, "")}) {
    host_.script.silent = {"read 275 Index=" + std::to_string(at)};
    EXPECT_FALSE(Run());
    EXPECT_EQ(
        host_.log.Only({"hide", "box"}),
        "hide\nbox 16 Corvane: An error occurred while attempting to download log data.//Error: "
        "4711 - No answer/(line)\n");
    EXPECT_TRUE(Trace().ends_with(
        "Writing downloaded data to temp file...\nError: 4711 - No answer[Source: line]\n"
        "Download finished...\n"));
    EXPECT_EQ(Raw(), kept);
  }
  host_.script.silent.clear();

  CFailingParser parser;
  EXPECT_FALSE(it_.DownloadLog(parser));
  EXPECT_TRUE(
      Trace().ends_with("Updating file...\nField 4 of 9: 77\nError: 9 - Subscript out of "
                        "range[Source: ]\nDownload finished...\n"));
  EXPECT_EQ(FilesIn(out_), 0u);

  // The file that can't be made is told of; the run then still reaches its list.
  host_.registry->texts["DownloadFolder"] = out_ / "missing";
  host_.forms.Expect("frmShowFiles", [](ui::CUser& user) { user.CloseBox(); });
  EXPECT_TRUE(Run());
  EXPECT_NE(
      Boxes().find("attempting to create download file.//Error: 5 - Cannot write to the folder"),
      std::string::npos);

  fs::remove(temp_ / "TMPDWNLD.LOG");
  fs::create_directories(temp_ / "TMPDWNLD.LOG" / "x");
  host_.registry->texts["DownloadFolder"] = out_;
  ExpectList();
  EXPECT_TRUE(Run());
  EXPECT_EQ(Boxes().find("box 16 Download Logged Data: An error occurred while attempting to write "
                         "the downloaded data to a temporary file (" +
                         (temp_ / "TMPDWNLD.LOG").string() + ")."),
            0u);
  EXPECT_EQ(File(), std::string(kHead) + kRows);
}

TEST_F(Download, AFullDiskIsAnErrorAndLeavesTheOlderFile) {
  struct CLimit {
    explicit CLimit(rlim_t size) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
      getrlimit(RLIMIT_FSIZE, &old);
      const rlimit limit{size, old.rlim_max};
      setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CLimit() {
      setrlimit(RLIMIT_FSIZE, &old);
      std::signal(SIGXFSZ, handler);
    }
    void (*handler)(int);
    rlimit old{};
  };
  SetLog(std::vector<std::string>(400, "1 C 1"));
  std::ofstream(out_ / "download.txt") << "old";
  std::ofstream(temp_ / "TMPDWNLD.LOG") << "of an earlier run";
  for (const bool recordstrace : {true, false}) {
    host_.recordstrace = recordstrace;
    bool done = true;
    {
      const CLimit limit(16384);
      done = Run(400);
    }
    EXPECT_FALSE(done);
    EXPECT_NE(Boxes().find(recordstrace ? "download.txt': File too large"
                                        : "DNLDT312B.LOG': File too large"),
              std::string::npos)
        << Boxes();
    EXPECT_EQ(File(), "old");
    EXPECT_EQ(FilesIn(out_), 1u);
  }
  EXPECT_TRUE(Raw().starts_with("1 C 1\r\n")) << "of a run whose trace was full before its end";
}

TEST_F(Download, TheFileIsPreparedInItsOrder) {
  host_.recordsfile = true;
  host_.chosen = "/data/run7.txt";
  SetLog({"1 C 1"});
  ExpectList();
  EXPECT_TRUE(Run(0, 1, true));
  EXPECT_EQ(host_.log.Only({"dialog", "file", "list", "busy"}),
            "busy on\ndialog A\ndialog ext txt\ndialog title Save Download File As\n"
            "dialog flags 2623494\ndialog name download.txt\n"
            "dialog filter Download Files (*.txt)|*.txt\ndialog B\ndialog folder " +
                out_.string() +
                "\nbusy off\ndialog asks\nfile help VaneT312B.hlp\nfile name run7.txt\n"
                "file folder /data/\nfile columns 5\nfile A true\nfile width 0 12\n"
                "file width 1 12\nfile width 2 20\nfile width 3 10\nfile width 4 10\nfile B false\n"
                "file 0=Date\nfile 1=Time\nfile 2=Reading\nfile 3=Label\nfile 4=Channel\n"
                "file create\nfile head 8\nfile 2=1.0\nfile 2=1.0 °C\nfile 3=<no label>\n"
                "file 4=<no channel>\nfile 1=<no time>\nfile 0=<no date>\nfile row\nfile close\n"
                "busy off\nlist /data/run7.txt #0\nbusy off\n");

  host_.chosen.clear();
  ExpectList();
  EXPECT_TRUE(Run(0, 1, true));
  EXPECT_EQ(Boxes(), "list  #0\n");
  EXPECT_EQ(host_.log.Only({"file"}), "");

  host_.creates = false;
  ExpectList();
  EXPECT_TRUE(Run());
  EXPECT_EQ(host_.log.Only({"file head", "file row", "file close", "box"}), "file head 8\n");
}

TEST_F(Download, TheListOpensOrPrintsAndItsFailureLeavesTheResult) {
  host_.recordsfile = true;
  const auto opened = [&](bool print) {
    host_.forms.Expect("frmShowFiles", [&, print](ui::CUser& user) {
      EXPECT_EQ(user.Form().Caption(), "Downloaded files");
      auto& box = user.Find<ui::CCheckBox>("chkPrint");
      EXPECT_FALSE(box.Checked());
      if (print) user.Click(box);
      user.DoubleClick(user.Find<ui::CListBox>("lstFiles"), 0);
      user.CloseBox();
    });
    EXPECT_TRUE(Run());
    return host_.log.Lines()[host_.log.Lines().size() - 4];
  };
  EXPECT_EQ(opened(false), "file show");
  EXPECT_EQ(opened(true), "file print, asking");
  host_.registry->values["SelectPrinter"] = 0;
  EXPECT_EQ(opened(true), "file print");
  EXPECT_EQ(host_.forms.LastOwner(), nullptr);
  test::CTestWindow options;
  ExpectList();
  EXPECT_TRUE(it_.DownloadLogAbove(&options, parser_, ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                                   ET312BDownloadOption::DOWNLOAD_SINGLE_FILE, 0, 2, false));
  EXPECT_EQ(host_.forms.LastOwner(), &options);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Boxes(),
            "box 16 Corvane: An error occurred while attempting to show download files.//Error: 5 "
            "- Nobody expected the window frmShowFiles./(CMemoryForms)\n");
  EXPECT_EQ(host_.log.Lines().back(), "busy off");
}

class DownloadOptions : public Download {
 protected:
  DownloadOptions() { host_.platform.asksforms = true; }
  ~DownloadOptions() override { EXPECT_EQ(host_.forms.Faults(), ""); }

  // Opens the dialog for `acts`, which have to close it.
  void Open(const std::function<void(ui::CUser& user)>& acts) {
    host_.forms.Expect("frmT312BDownloadOptions", acts);
    host_.log.Clear();
    EXPECT_TRUE(it_.DownloadLoggedData());
    EXPECT_EQ(ui::CForm::Active(), nullptr);
  }

  static ui::CButton& Button(ui::CUser& user, int index) {
    return user.Find<ui::CButton>("cmdOKCancelHelp(" + std::to_string(index) + ")");
  }
  static bool Enter(ui::CUser& user, const char* name, const std::string& text) {
    return user.Focus(user.Find<ui::CTextField>(name)) && user.SelectAll() && user.Paste(text) &&
           user.Tab();
  }
  std::string Counted() const {
    const std::size_t place = Trace().find("Count: ");
    return Trace().substr(place, Trace().find('\n', place) - place);
  }
};

constexpr char kFreshOptions[] =
    "optLog=0\noptReadings=0\ntxtReadings=1 off\nudReadings off\nlblReadings off\n"
    "txtResolution=8\noptFiles=0\nchkPrompt=no\ncmdOKCancelHelp(0)\ncmdOKCancelHelp(1)\n"
    "cmdOKCancelHelp(2)\n";

TEST_F(DownloadOptions, StartAfreshAtEachOpening) {
  for (int opening = 0; opening < 2; ++opening) {
    Open([&](ui::CUser& user) {
      EXPECT_EQ(test::FormText(user.Form()), kFreshOptions);
      EXPECT_EQ(host_.log.Text(), "queue 0\nbusy off\n");
      EXPECT_EQ(user.Form().Caption(), "T312B 'Thermoscribe' Download Options");
      EXPECT_EQ(user.Find<ui::CFrame>("framReadings").Caption(), "Readings:");
      EXPECT_EQ(user.Find<ui::CLabel>("lblReadings").Caption(), "readings");
      EXPECT_TRUE(user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1));
      EXPECT_EQ(test::FormText(user.Form(), {"Readings"}), "optReadings=1\ntxtReadings=1\n");
      EXPECT_TRUE(user.Step(user.Find<ui::CUpDown>("udReadings"), true));
      EXPECT_TRUE(user.Step(user.Find<ui::CUpDown>("udResolution"), false));
      EXPECT_EQ(test::FormText(user.Form(), {"txt"}), "txtReadings=11\ntxtResolution=7\n");
      EXPECT_TRUE(user.Click(user.Find<ui::CCheckBox>("chkPrompt")));
      EXPECT_TRUE(user.Click(Button(user, 2)));
      EXPECT_EQ(host_.log.Only({"help"}), "help VaneT312B.hlp 1 10852\n");
      EXPECT_TRUE(opening == 0 ? user.Escape() : user.Click(Button(user, 1)));
    });
  }
}

TEST_F(DownloadOptions, FieldsAreLimitedWhenTheyAreLeft) {
  const struct {
    const char* field;
    const char* text;
    const char* shown;
  } rows[] = {{"txtReadings", "500", "100"}, {"txtReadings", "", "1"},
              {"txtReadings", "-3", "1"},    {"txtReadings", "12.5 x", "13"},
              {"txtReadings", "7,9", "7"},   {"txtReadings", "1e999", "7"},
              {"txtResolution", "9", "8"},   {"txtResolution", "x", "0"},
              {"txtResolution", "2.4", "2"}, {"txtResolution", "40000", "8"}};
  Open([&](ui::CUser& user) {
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1);
    for (const auto& row : rows) {
      EXPECT_TRUE(Enter(user, row.field, row.text));
      EXPECT_EQ(user.Find<ui::CTextField>(row.field).Text(), row.shown) << row.text;
    }
    // By the default button the field is limited and keeps the focus.
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtReadings")) && user.Type("40000"));
    ExpectList();
    EXPECT_TRUE(user.Return());
    EXPECT_EQ(Counted(), "Count: 100");
    EXPECT_TRUE(user.CloseBox());
  });
}

TEST_F(DownloadOptions, DownloadsAsOftenAsTheUserLikes) {
  Open([&](ui::CUser& user) {
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1);
    EXPECT_TRUE(Enter(user, "txtReadings", "2") && Enter(user, "txtResolution", "1"));
    ExpectList();
    // A second one while the first runs does nothing, and neither does the close box.
    host_.forms.AtPass(2, [&] {
      EXPECT_FALSE(user.Click(Button(user, 0)) || user.CloseBox());
      EXPECT_FALSE(user.Click(Button(user, 1)));
    });
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_EQ(host_.forms.LastOwner(), &user.Form());
    EXPECT_EQ(Counted(), "Count: 2");
    EXPECT_THAT(File(), testing::HasSubstr(" 25.0 "));

    // All readings, whatever the field holds; both logs, and both kinds of file.
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 0);
    user.Choose(user.Find<ui::COptionGroup>("optLog"), 1);
    user.Choose(user.Find<ui::COptionGroup>("optFiles"), 1);
    user.Click(user.Find<ui::CCheckBox>("chkPrompt"));
    host_.chosen = (out_ / "mine.txt").string();
    ExpectList();
    host_.log.Clear();
    host_.script.replies["read 276"] = "";
    host_.script.replies["read 276 Index=1"] = "5 C 1";
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_EQ(Counted(), "Count: 100");
    EXPECT_EQ(host_.log.Only({"dialog asks", "read 27"}),
              "read 276 Index=1\nread 276 Index=2\ndialog asks\n");

    // One that fails has told so itself, and the dialog stays.
    host_.script.silent.insert("read 276");
    host_.forms.ExpectBox("attempting to download log data");
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_TRUE(user.CloseBox());
  });
}

TEST_F(DownloadOptions, FailuresOfTheDialog) {
  host_.platform.onqueue = [] { throw LibraryError(7, "queue", "stuck"); };
  host_.forms.ExpectBox("An error occurred while attempting to setup dialog.");
  Open([&](ui::CUser& user) {
    host_.platform.onqueue = nullptr;
    EXPECT_EQ(user.Find<ui::CTextField>("txtResolution").Text(), "");
    EXPECT_TRUE(user.CloseBox());
  });
  it_.SetRegistry(nullptr);
  const LibraryError error = CTestHost::ErrorOf([&] { it_.DownloadLoggedData(); });
  EXPECT_EQ(error.Source(), "CVaneT312B - DownloadLoggedData");
  EXPECT_EQ(error.Description(), "There is no registry component.");
}

}  // namespace
}  // namespace vane
