// Downloads of a log, over scripted communications and with real files: what the user sees, what
// the trace says, and what lies on the disk afterwards.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/support/download_host.h"

namespace vane {
namespace {

namespace fs = std::filesystem;
using test::CTestHost;
using test::Download;

constexpr char kRows[] =
    "<no date>   <no time>   25.00 °C            <no label><no channel> \n"
    "<no date>   <no time>   77.00 °F            <no label><no channel> \n"
    "<no date>   <no time>   100.50 OHM          <no label><no channel> \n";
constexpr char kHead[] =
    "\nThermometer Readout Model: T312B\n"
    "Date        Time        Reading             Label     Channel   \n";

class CFailingParser : public CFieldReader {
  std::string f(std::int32_t i) override {
    if (i == 5) throw std::out_of_range("field");
    return CFieldReader::f(i);
  }
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

}  // namespace
}  // namespace vane
