// The components for a host in a terminal: probes, the user's files, messages and progress.

#include <errno.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>
#include <vector>

#include "adapters/conversions/probe.h"
#include "adapters/files/atomic_file.h"
#include "adapters/files/config_registry.h"
#include "adapters/posix/clock_text.h"
#include "adapters/terminal/terminal_form.h"
#include "adapters/terminal/terminal_passcode.h"
#include "adapters/terminal/terminal_platform.h"
#include "adapters/terminal/terminal_progress.h"
#include "tests/support/host_machine.h"
#include "vane/components/library_error.h"
#include "vane/components/memory_forms.h"

namespace vane {
namespace {

using namespace std::chrono_literals;
using enum EVaneConversionType;
using test::FileText;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
namespace fs = std::filesystem;

// Probes.

template <class T>
T& SettingsOf(CThermometerProbe& probe, EVaneConversionType ct) {
  probe.SetConversionType(ct);
  probe.SetChanged(false);
  return dynamic_cast<T&>(*probe.Conversion().Settings());
}

TEST(Probe, ITS90SubrangesHaveTheirNumberOfCoefficients) {
  CThermometerProbe probe;
  auto& settings = SettingsOf<CITS90Settings>(probe, CONV_ITS90);
  std::vector<std::int16_t> low, high;
  for (std::int32_t range = -1; range <= 12; ++range) {
    settings.LowRange().SetRange(range);
    settings.HighRange().SetRange(range);
    low.push_back(settings.LowRange().NumCoefficients());
    high.push_back(settings.HighRange().NumCoefficients());
  }
  EXPECT_THAT(low, ElementsAre(0, 0, 7, 5, 3, 2, 2, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(high, ElementsAre(0, 0, 0, 0, 0, 0, 0, 4, 3, 2, 2, 1, 1, 0));
  settings.LowRange().SetCoefficients(6, 1.0);
  EXPECT_THROW(settings.LowRange().SetCoefficients(7, 1.0), std::out_of_range);
  EXPECT_THROW(settings.HighRange().SetCoefficients(4, 1.0), std::out_of_range);
  EXPECT_THROW(settings.HighRange().Coefficients(-1), std::out_of_range);
}

TEST(Probe, OtherTypesHaveTheirStorage) {
  CThermometerProbe probe;
  auto& cvd = SettingsOf<CCVDSettings>(probe, CONV_CVD);
  EXPECT_NO_THROW(cvd.Coefficients(3));
  EXPECT_THROW(cvd.SetValueFormat(4, "0"), std::out_of_range);
  EXPECT_NO_THROW(SettingsOf<CIPTS68Settings>(probe, CONV_IPTS68).SetValueFormat(4, "0"));
  EXPECT_EQ(SettingsOf<CThermistorSettings>(probe, CONV_THERMISTOR_RT).NumCoefficients(), 4);
  EXPECT_EQ(SettingsOf<CPolynomialSettings>(probe, CONV_POLYNOMIAL).NumCoefficients(), 11);
}

TEST(Probe, OnlyADifferentValueMarksIt) {
  CThermometerProbe probe;
  auto& settings = SettingsOf<CITS90Settings>(probe, CONV_ITS90);
  const auto marks = [&probe](auto change) {
    probe.SetChanged(false);
    change();
    const bool first = probe.Changed();
    probe.SetChanged(false);
    change();
    return first && !probe.Changed();
  };
  EXPECT_TRUE(marks([&] { probe.SetSerialNumber("A-17"); }));
  EXPECT_TRUE(marks([&] { settings.SetRTPW(25.5); }));
  EXPECT_TRUE(marks([&] { settings.LowRange().SetRange(4); }));
  EXPECT_TRUE(marks([&] { settings.HighRange().SetCoefficients(3, -1e-7); }));
  auto& scale = SettingsOf<CIPTS68Settings>(probe, CONV_IPTS68);
  EXPECT_TRUE(marks([&] { scale.SetIPTS68Scale(1); }));
  probe.SetChanged(false);
  scale.SetValueFormat(0, "0.0");
  EXPECT_FALSE(probe.Changed());
  probe.SetConversionType(CONV_CVD);
  EXPECT_TRUE(probe.Changed());
}

TEST(Probe, TypeReplacesTheValuesAndUnknownTypesHaveNone) {
  EXPECT_FALSE(CThermometerProbe().ConversionHasSettings(CONV_WT90));
  CThermometerProbe probe(true);
  SettingsOf<CCVDSettings>(probe, CONV_CVD).SetCoefficients(0, 100.0);
  EXPECT_EQ(SettingsOf<CCVDSettings>(probe, CONV_CVD).Coefficients(0), 0.0);
  EXPECT_TRUE(probe.ConversionHasSettings(CONV_WT90));
  for (const int code : {-1, 3, 7, 10, 15, 99}) {
    const auto ct = static_cast<EVaneConversionType>(code);
    probe.SetConversionType(ct);
    EXPECT_EQ(probe.Conversion().Settings(), nullptr) << code;
    EXPECT_FALSE(probe.ConversionHasSettings(ct)) << code;
    EXPECT_THROW(probe.Conversion().EditSettings(), LibraryError);
  }
}

// Files.

class UserFiles : public testing::Test {
 protected:
  void Put(const std::string& text) {
    fs::create_directories(path_.parent_path());
    std::ofstream(path_) << text;
  }
  static std::vector<std::string> Names(const fs::path& in) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(in)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  test::CTemporaryFolder folder_;
  fs::path path_ = folder_ / "VaneT312B/registry.toml";
  std::vector<std::string> reports_;
  std::function<void(const std::string&)> report_ = [this](const std::string& text) {
    reports_.push_back(text);
  };
};

TEST_F(UserFiles, RegistryGivesTheValueOrTheFallback) {
  CConfigRegistry registry(report_, path_);
  EXPECT_EQ(registry.ReadBoolean("COMAutoClose", true, kCurrentUserRoot, ""), 1);
  EXPECT_FALSE(fs::exists(path_));
  Put("[values]\nCOMAutoClose = true\nDownloadFolder = 7\n[values.a.b]\nx = \"deep\"\n");
  EXPECT_EQ(registry.ReadBoolean("COMAutoClose", false, kCurrentUserRoot, ""), 1);
  EXPECT_EQ(registry.ReadBoolean("COMAutoClose", false, kCurrentUserRoot + 1, ""), 0);
  EXPECT_EQ(registry.ReadText("DownloadFolder", "/f", kCurrentUserRoot, ""), "/f");
  EXPECT_EQ(registry.ReadText("x", "", kCurrentUserRoot, "a\\b"), "deep");
  EXPECT_EQ(registry.ReadText("x", "none", kCurrentUserRoot, "a"), "none");
  EXPECT_THAT(reports_, ElementsAre());
}

TEST_F(UserFiles, RegistryKeepsThePlacesOfWindows) {
  CConfigRegistry registry(report_, path_);
  const auto restored = [&](const char* name) {
    ui::CForm window(name, std::make_unique<CUnseenView>());
    registry.RestoreFormPlacement(window, 0, true);
    return window.Place();
  };
  ui::CForm window("frmT312BSettings", std::make_unique<CUnseenView>());
  registry.SaveFormPlacement(window, 0, true);
  EXPECT_FALSE(fs::exists(path_));
  ui::CUser(window).Move({-5, 20, 300, 200});
  registry.SaveFormPlacement(window, 0, true);
  EXPECT_EQ(restored("frmT312BSettings"), (ui::Placement{-5, 20, 300, 200}));
  EXPECT_EQ(restored("frmOther"), std::nullopt);
  for (const char* text : {"", "1,2,3", "1,2,3,4,", "1,2,3,0", "1,2,3,-4", "1;2;3;4", "a,2,3,4",
                           "1,2,3,99999999999"}) {
    registry.WriteText("frmOther", text, "Windows");
    EXPECT_EQ(restored("frmOther"), std::nullopt) << text;
  }
}

TEST(TerminalView, RefusesAWindowThatItCannotDraw) {
  CInterrupts interrupts;
  ui::CForm form("frmFields", std::make_unique<CTerminalView>(interrupts));
  form.Add<ui::CLabel>("lblName");
  form.Add<ui::CTextField>("txtName");
  bool loaded = false;
  form.OnLoad([&] { loaded = true; });
  try {
    form.ShowModal(nullptr);
    ADD_FAILURE();
  } catch (const LibraryError& error) {
    EXPECT_EQ(
        error.Description(),
        "A terminal can't show the window frmFields: it has txtName, which is no label, list, "
        "check box or button.");
  }
  EXPECT_FALSE(loaded || form.Shown());
}

TEST_F(UserFiles, RegistryKeepsWhatItDoesNotKnow) {
  Put("version = 3\n[window]\nsize = [4, 5.5]\n[values]\nother = 2020-01-02\n");
  CConfigRegistry registry(report_, path_);
  registry.WriteText("DownloadFolder", "/home/\"Zoë\"\n", "a");
  registry.WriteBoolean("COMAutoClose", true);
  EXPECT_EQ(registry.ReadText("DownloadFolder", "", kCurrentUserRoot, "a"), "/home/\"Zoë\"\n");
  for (const char* kept : {"version = 3", "size = [ 4, 5.5 ]", "other = 2020-01-02"}) {
    EXPECT_THAT(FileText(path_), HasSubstr(kept));
  }
  const std::string before = FileText(path_);
  EXPECT_THROW(registry.WriteBoolean("a", true), LibraryError);
  EXPECT_THROW(registry.WriteBoolean("x", true, "COMAutoClose"), LibraryError);
  EXPECT_THROW(registry.WriteText("DownloadFolder", "\xE9"), LibraryError);
  EXPECT_EQ(FileText(path_), before);
}

TEST_F(UserFiles, RegistryTellsAHostWhyThereIsNoText) {
  CConfigRegistry registry(report_, path_);
  registry.Remove("baud", "a");
  EXPECT_EQ(registry.FindText("baud", "a"), std::nullopt);
  EXPECT_FALSE(fs::exists(path_));
  Put("[values.a]\nport = ' x'\nbaud = 19_200\nlimit = 2.50\nflag = true\n[values.b]\nbaud = 1\n");
  for (const auto& [name, text] : {std::pair{"port", " x"}, {"baud", "19200"}, {"limit", "2.5"}}) {
    EXPECT_EQ(registry.FindText(name, "a"), text);
  }
  EXPECT_THROW(registry.FindText("flag", "a"), std::invalid_argument);
  for (const char* name : {"baud", "nothing"}) registry.Remove(name, "a");
  EXPECT_EQ(registry.FindText("baud", "a"), std::nullopt);
  EXPECT_EQ(registry.FindText("baud", "b"), "1");
  EXPECT_EQ(registry.FindText("port", "a"), " x");
  Put("[values");
  EXPECT_THROW(registry.FindText("port", "a"), std::runtime_error);
  EXPECT_THROW(registry.Remove("port", "a"), std::runtime_error);
  EXPECT_EQ(FileText(path_), "[values");
}

TEST_F(UserFiles, RegistryPutsADamagedFileAsideAtTheFirstWrite) {
  Put("[values\nCOMAutoClose = true\n");
  CConfigRegistry registry(report_, path_);
  EXPECT_EQ(registry.ReadBoolean("COMAutoClose", false, kCurrentUserRoot, ""), 0);
  registry.ReadBoolean("SelectPrinter", true, kCurrentUserRoot, "");
  EXPECT_THAT(reports_, ElementsAre(HasSubstr("is damaged, line 1")));
  std::ofstream(path_.string() + ".damaged-1") << "older";
  registry.WriteBoolean("SelectPrinter", false);
  EXPECT_EQ(FileText(path_.string() + ".damaged-1"), "older");
  EXPECT_EQ(FileText(path_.string() + ".damaged-2"), "[values\nCOMAutoClose = true\n");
}

TEST_F(UserFiles, RegistryThatCannotBeReadIsReportedOnceAndNotReplaced) {
  fs::create_directories(path_.parent_path());
  const fs::path fifo = folder_ / "fifo", huge = folder_ / "huge";
  EXPECT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::ofstream(huge).close();
  fs::resize_file(huge, 1 << 30);
  const std::pair<fs::path, const char*> rows[] = {{folder_.Path(), "no regular file"},
                                                   {fifo, "no regular file"},
                                                   {"/dev/zero", "no regular file"},
                                                   {huge, "too large"}};
  for (const auto& [target, reason] : rows) {
    fs::create_symlink(target, path_);
    CConfigRegistry registry(report_, path_);
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(registry.ReadText("DownloadFolder", "/f", kCurrentUserRoot, ""), "/f");
    }
    EXPECT_THAT(reports_,
                ElementsAre(testing::AllOf(HasSubstr(path_.string()), HasSubstr(reason))));
    reports_.clear();
    if (target != "/dev/zero") {
      EXPECT_THROW(registry.WriteBoolean("SelectPrinter", false), std::runtime_error);
    }
    fs::remove(path_);
  }
  EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(UserFiles, TwoProcessesLoseNothingOfEachOther) {
  constexpr int kWrites = 40;
  const auto write = [this](const std::string& name) {
    CConfigRegistry registry({}, path_);
    for (int i = 0; i < kWrites; ++i) registry.WriteBoolean(name + std::to_string(i), true);
  };
  const pid_t other = fork();
  if (other == 0) {
    write("other");
    _exit(0);
  }
  write("this");
  int status = -1;
  waitpid(other, &status, 0);
  EXPECT_EQ(status, 0);
  CConfigRegistry registry(report_, path_);
  for (int i = 0; i < kWrites; ++i) {
    for (const std::string name : {"other", "this"}) {
      EXPECT_EQ(registry.ReadBoolean(name + std::to_string(i), false, kCurrentUserRoot, ""), 1);
    }
  }
  EXPECT_THAT(Names(path_.parent_path()), ElementsAre("registry.toml", "registry.toml.lock"));
}

TEST_F(UserFiles, DefaultPathIsTheUsersConfigurationFolder) {
  setenv("HOME", "/h", 1);
  for (const auto& [xdg, expected] : {std::pair{"/x", "/x/VaneT312B/registry.toml"},
                                      {"", "/h/.config/VaneT312B/registry.toml"},
                                      {"relative", "/h/.config/VaneT312B/registry.toml"}}) {
    setenv("XDG_CONFIG_HOME", xdg, 1);
    EXPECT_EQ(CConfigRegistry::DefaultPath(), expected);
  }
}

TEST_F(UserFiles, AtomicWriteReplacesTheFileBehindALink) {
  const auto mode = [](const fs::path& file) {
    return static_cast<unsigned>(fs::status(file).permissions());
  };
  const fs::path real = folder_ / "new" / "real", link = folder_ / "link";
  fs::create_symlink("new/real", link);
  EXPECT_THROW(WriteFileAtomically(link, "one", 0640), std::system_error);
  EXPECT_FALSE(fs::exists(folder_ / "new")) << "nobody has asked for a folder";
  MakePrivateFolders(folder_ / "new");
  WriteFileAtomically(link, "one", 0640);
  EXPECT_EQ(mode(folder_ / "new"), 0700u);
  EXPECT_EQ(mode(real), 0640u);
  WriteFileAtomically(link, "two", 0600);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(FileText(real), "two");
  EXPECT_EQ(mode(real), 0640u);
  EXPECT_THAT(Names(folder_ / "new"), ElementsAre("real"));
  EXPECT_THROW(WriteFileAtomically(real / "below", "", 0600), std::system_error);
}

// The terminal.

class Terminal : public test::CUserTerminal, public testing::Test {
 protected:
  Terminal() { EXPECT_EQ(pipe(line_), 0); }
  ~Terminal() override {
    for (const int fd : line_) close(fd);
  }

  std::string Piped() const { return test::Printed(line_[0], line_[1]); }

  int line_[2] = {-1, -1};  // a pipe, which is no terminal
  CInterrupts interrupts_;
  CTerminalPlatform platform_{interrupts_, host, host};
};

TEST_F(Terminal, BoxIsItsText) {
  platform_.MessageBox("An error occurred.\r\rError: 5 - \x1B[2J Öl", "Corvane",
                       kBoxStop + kBoxHelpButton, "VaneT312B.hlp", 40);
  platform_.OpenHelp("VaneT312B.hlp", 1, 7);
  CTerminalProgress progress(interrupts_, host);
  progress.Start("Reading", 50);
  for (int i = 0; i < 2; ++i) platform_.MessageBox("Done.", "Corvane", kBoxInformation, "", 0);
  const std::string screen = Screen();
  EXPECT_THAT(screen, testing::StartsWith("Corvane: Error\nAn error occurred.\n\n"
                                          "Error: 5 - ?[2J Öl\nHelp: VaneT312B.hlp, topic 40\n"
                                          "Help: VaneT312B.hlp, topic 7\n"));
  EXPECT_THAT(screen, EndsWith("0%\r\x1B[KCorvane: Information\nDone.\n"
                               "Corvane: Information\nDone.\n"));
}

TEST_F(Terminal, QuestionAsksUntilItIsAnswered) {
  const auto ask = [](CTerminalPlatform& at) {
    return at.MessageBox("Write?", "Corvane", kBoxQuestion + kBoxYesNo, "", 0);
  };
  const std::string head = "Corvane: Question\nWrite?\n";
  const std::string again = "Please answer yes or no: ";
  Type("\nmaybe\n Yes \nn\n");
  EXPECT_EQ(ask(platform_), EBoxButton::YES);
  EXPECT_EQ(ask(platform_), EBoxButton::NO);
  EXPECT_EQ(Screen(), head + "Yes or no? " + again + again + head + "Yes or no? ");
  Type("\x04");
  EXPECT_EQ(ask(platform_), EBoxButton::NO);
  EXPECT_THAT(Screen(), EndsWith("\nNo: the input has ended.\n"));
  std::jthread later([] {
    std::this_thread::sleep_for(30ms);
    kill(getpid(), SIGINT);
  });
  EXPECT_EQ(ask(platform_), EBoxButton::NO);
  EXPECT_THAT(Screen(), EndsWith("\nNo: interrupted.\n"));
  CTerminalPlatform piped(interrupts_, line_[0], line_[1]);
  EXPECT_EQ(ask(piped), EBoxButton::NO);
  EXPECT_EQ(Piped(), head + "No: there is no terminal to ask on.\n");
}

TEST_F(Terminal, InterruptWakesTheMessageQueueOnceAndStaysPending) {
  int handled = 0;
  platform_.SetInterruptHandler([&handled] { ++handled; });
  std::jthread later([] {
    std::this_thread::sleep_for(30ms);
    kill(getpid(), SIGTERM);
  });
  const auto start = std::chrono::steady_clock::now();
  platform_.RunMessageQueue(20000);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
  EXPECT_EQ(handled, 1);
  const std::uint32_t ticks = platform_.TickCount();
  platform_.RunMessageQueue(40);
  EXPECT_GE(platform_.TickCount() - ticks, 39u);
  EXPECT_EQ(handled, 1);
  EXPECT_TRUE(interrupts_.Pending());
}

TEST_F(Terminal, ThirdInterruptGivesTheKeyBackToTheSystem) {
  const auto handler = [](int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
  };
  EXPECT_THROW(CInterrupts second, std::logic_error);
  raise(SIGINT);
  raise(SIGHUP);
  EXPECT_NE(handler(SIGINT), SIG_DFL);
  signal(SIGHUP, SIG_IGN);  // as under nohup
  raise(SIGTERM);
  EXPECT_EQ(handler(SIGINT), SIG_DFL);
  EXPECT_EQ(handler(SIGTERM), SIG_DFL);
  EXPECT_EQ(handler(SIGHUP), SIG_IGN);
}

TEST_F(Terminal, InterruptEndsACallThatWaits) {
  std::jthread later([] {
    std::this_thread::sleep_for(30ms);
    kill(getpid(), SIGHUP);
  });
  char c = 0;
  EXPECT_EQ(read(line_[0], &c, 1), -1);
  EXPECT_EQ(errno, EINTR);
  EXPECT_TRUE(interrupts_.Pending());
}

TEST_F(Terminal, PasscodeSourceIsOneLineAndNotWaitedForWithoutEnd) {
  test::CTemporaryFolder folder;
  const std::string fifo = folder / "fifo";
  EXPECT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  Patience patience;
  patience.meeting = patience.silence = 60ms;
  const auto take = [&](const std::string& source) -> std::string {
    CTerminalPasscodeDialog dialog(interrupts_, source, host, host, patience);
    std::string entered;
    try {
      return dialog.ShowDialog(entered, nullptr) ? entered : Screen();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  };
  EXPECT_EQ(write(line_[1], "K9 zQ\r\nnext\n", 13), 13);
  EXPECT_EQ(take(std::to_string(line_[0])), "K9 zQ");
  EXPECT_EQ(take("/dev/fd/" + std::to_string(line_[0])), "next");
  EXPECT_THAT(take(std::to_string(line_[0])), HasSubstr("nothing has come for"));
  EXPECT_THAT(take("/dev/zero"), HasSubstr("is too long"));
  EXPECT_THAT(take(fifo), HasSubstr("fifo': nobody has opened the pipe"));
  EXPECT_THAT(take(folder.Path()), EndsWith("Is a directory"));
  EXPECT_THAT(take("/dev/null"), HasSubstr("is empty"));
  patience = {};
  {
    std::jthread writer([&] { std::ofstream(fifo) << "piped"; });
    EXPECT_EQ(take(fifo), "piped");
  }
  raise(SIGINT);
  EXPECT_EQ(take(fifo), "No passcode: interrupted.\n");
  EXPECT_EQ(DescriptorNumber("-"), 0);
}

TEST_F(Terminal, ProgressDrawsOneLineAndTakesItAway) {
  CTerminalProgress bar(interrupts_, host);
  CVaneProgress& progress = bar;
  progress.Start("Reading settings...", 30.0);
  EXPECT_EQ(Screen(), "\rReading settings... [--------------------------------]   0%");
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(progress.Step());
  const auto elapsed = std::chrono::steady_clock::now() - start;
  const std::string redraws = Screen();
  EXPECT_LE(std::count(redraws.begin(), redraws.end(), '\r'), 1 + elapsed / 50ms);
  progress.Hide(false);
  EXPECT_EQ(Screen(), "\r" + std::string(59, ' ') + "\r");
  progress.Hide(true);
  EXPECT_EQ(Screen(), "\rReading settings... [################################] 100%");
  progress.Finish();
  EXPECT_EQ(Screen(), "\r" + std::string(59, ' ') + "\r");

  progress.Start("Ünlängst " + std::string(60, 'x'), 0.0);
  std::this_thread::sleep_for(60ms);
  progress.Step(8, 2);
  EXPECT_THAT(Screen(), EndsWith("\rÜnlängst " + std::string(32, 'x') + " [##--------]  25%"));
  progress.Start("x", 0.0);
  std::this_thread::sleep_for(510ms);
  progress.Step(1000, 1000);
  EXPECT_THAT(Screen(), testing::ContainsRegex("\rx \\[#+\\] 100%  [0-9]+/s  0:00 left *$"));
  progress.Start("x", 0.0);
  progress.SetVisible(false);
  Screen();
  progress.Step(8, 7);
  progress.Finish();
  EXPECT_EQ(Screen(), "");
}

TEST_F(Terminal, ProgressStopsAtAnInterruptForGood) {
  CTerminalProgress bar(interrupts_, line_[1]);
  CVaneProgress& progress = bar;
  progress.Start("Reading...", 20.0);
  EXPECT_TRUE(progress.Step());
  raise(SIGINT);
  EXPECT_FALSE(progress.Step());
  EXPECT_FALSE(progress.Step());
  progress.Finish();
  EXPECT_TRUE(interrupts_.Pending());
  CTerminalProgress next(interrupts_, line_[1]);
  next.Start("Writing...", 20.0);
  EXPECT_FALSE(static_cast<CVaneProgress&>(next).Step()) << "the program would go on after Ctrl-C";
  EXPECT_EQ(Piped(), "");
}

TEST_F(Terminal, ClockFollowsTheRegionalFormat) {
  static constexpr std::chrono::local_seconds kMidnight{-24h};
  const auto text = [](std::chrono::seconds time, const char* format) {
    return ClockText(kMidnight + time, format);
  };
  EXPECT_EQ(text(15h + 7min + 9s, "%r"), "3:07:09 PM");
  EXPECT_EQ(text(0s, "%p %-I:%M"), "12:00:00 AM");
  EXPECT_EQ(text(12h, "%OI:%M"), "12:00:00 PM");
  EXPECT_EQ(text(15h + 7min + 9s, "%H:%M:%S"), "15:07:09");
  EXPECT_EQ(text(3h, "100%%I %T"), "03:00:00");
}

TEST_F(Terminal, MachineIsTold) {
  EXPECT_EQ(platform_.DecimalSeparator(), ".");
  EXPECT_TRUE(fs::exists(fs::path(platform_.FolderOfLibrary()) / program_invocation_short_name));
  setenv("TMPDIR", "/var/tmp/", 1);
  EXPECT_EQ(platform_.TemporaryFolder(), "/var/tmp");
  setenv("TZ", "UTC-5:30", 1);
  tzset();
  const auto offset = platform_.LocalTime().time_since_epoch() -
                      std::chrono::system_clock::now().time_since_epoch();
  EXPECT_LT(std::chrono::abs(offset - 330min), 2s);
}

}  // namespace
}  // namespace vane
