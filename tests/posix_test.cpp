// Files that are none: pipes, devices, descriptors that nobody has opened; and disks that are full.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "adapters/files/replacing_file.h"
#include "adapters/files/whole_file.h"
#include "adapters/posix/process_start.h"
#include "tests/support/host_machine.h"

namespace vane {
namespace {

using namespace std::chrono_literals;
using test::FileText;
using testing::EndsWith;
using testing::HasSubstr;
namespace fs = std::filesystem;

// The wait status of a child process that does `action` and ends with its result.
template <class Action>
int InChild(Action action) {
  const pid_t child = fork();
  if (child == 0) _exit(action());
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

class OddFiles : public testing::Test {
 protected:
  OddFiles() {
    EXPECT_EQ(mkfifo(fifo_.c_str(), 0600), 0);
    EXPECT_EQ(pipe(line_), 0);
    patience_.meeting = patience_.silence = 100ms;
  }
  ~OddFiles() override {
    for (const int fd : line_) close(fd);
  }

  std::string Read(const fs::path& path) const {
    try {
      return ReadWholeFile(path, 100'000, patience_);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }
  std::string Write(const fs::path& path, const std::string& text) const {
    try {
      WriteWholeFile(path, text, 0600, patience_);
      return "";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }
  static std::string NameOf(int fd) { return "/proc/self/fd/" + std::to_string(fd); }

  test::CTemporaryFolder folder_;
  const fs::path fifo_ = folder_ / "fifo";
  int line_[2] = {-1, -1};
  Patience patience_;
};

TEST_F(OddFiles, ReadingEndsWithATextOrAReason) {
  std::ofstream(folder_ / "full") << std::string(100'000, 'x');
  std::ofstream(folder_ / "over") << std::string(100'001, 'x');
  EXPECT_EQ(Read(folder_ / "full").size(), 100'000u);
  const std::pair<fs::path, const char*> rows[] = {
      {folder_ / "over", "over': it holds more than 100000 bytes"},
      {"/dev/zero", "it holds more than 100000 bytes"},
      {folder_.Path(), "Is a directory"},
      {folder_ / "none", "none': No such file or directory"},
      {fifo_, "fifo': nobody has opened the pipe to write to it for 1 second"},
      {NameOf(line_[0]), "nothing has come for 1 second"}};
  for (const auto& [path, reason] : rows) EXPECT_THAT(Read(path), EndsWith(reason));

  patience_.meeting = patience_.silence = 20s;
  const std::string piped(70'000, 'p');  // more than a pipe holds
  std::jthread writer([&] {
    std::this_thread::sleep_for(20ms);
    std::ofstream(fifo_) << piped;
  });
  EXPECT_EQ(Read(fifo_), piped);
  close(std::exchange(line_[1], -1));
  EXPECT_EQ(Read(NameOf(line_[0])), "") << "its writer is done";
}

TEST_F(OddFiles, WhatIsNoRegularFileIsWrittenAndStaysWhatItIs) {
  const fs::path link = folder_ / "link";
  fs::create_symlink("/dev/null", link);
  EXPECT_EQ(Write(link, "lost"), "");
  EXPECT_TRUE(fs::is_symlink(link) && fs::is_character_file("/dev/null"));
  EXPECT_THAT(Write("/dev/full", "text"), EndsWith("No space left on device"));
  EXPECT_THAT(Write(folder_.Path(), "text"), EndsWith("Is a directory"));
  EXPECT_THAT(Write(folder_ / "none/file", "text"),
              HasSubstr("the folder '" + (folder_ / "none").string()));
  EXPECT_THAT(Write(fifo_, "text"), HasSubstr("nobody has opened the pipe to read it"));

  const std::string text(200'000, 't');
  std::string got;
  std::jthread reader([&] { got = FileText(fifo_); });
  EXPECT_EQ(Write(fifo_, text), "");
  reader.join();
  EXPECT_EQ(got, text);

  // What the process has written to its open file before isn't lost with a new one.
  const int opened = open((folder_ / "out").c_str(), O_WRONLY | O_CREAT, 0600);
  EXPECT_EQ(write(opened, "one,", 4), 4);
  fs::remove(link);
  fs::create_symlink(NameOf(opened), link);
  EXPECT_EQ(Write(link, "two,"), "");
  EXPECT_EQ(write(opened, "three", 5), 5);
  close(opened);
  EXPECT_EQ(FileText(folder_ / "out"), "one,two,three");
}

TEST_F(OddFiles, InterruptEndsEachWait) {
  patience_ = {};
  int asked = 0;
  patience_.interrupted = [&asked] { return ++asked % 3 == 0; };
  EXPECT_THAT(Read(fifo_), EndsWith("interrupted"));
  EXPECT_THAT(Write(fifo_, "text"), EndsWith("interrupted"));
  EXPECT_THAT(Write(NameOf(line_[1]), std::string(200'000, 'x')), EndsWith("interrupted"))
      << "a pipe in blocking mode that nobody empties";
}

TEST_F(OddFiles, NothingIsLeftOfAFileThatDidNotBecomeWhole) {
  const fs::path target = folder_ / "target";
  std::ofstream(target) << "old";
  const auto begin = [&](std::size_t size) {
    CReplacingFile file(target);
    file.Write(std::string(size, 'x'));
    raise(SIGKILL);
    return 0;
  };
  EXPECT_TRUE(WIFSIGNALED(InChild([&] { return begin(10); })));
  const int status = InChild([&] {
    PrepareProcess();
    const rlimit small{1000, 1000};
    setrlimit(RLIMIT_FSIZE, &small);
    return Write(target, std::string(5000, 'x')).ends_with("target': File too large") ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(FileText(target), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 2);
}

TEST_F(OddFiles, ClosedStandardDescriptorsAreFilledBeforeAnythingElseIsOpened) {
  const int status = InChild([this] {
    for (const int fd : {0, 1, 2}) close(fd);
    PrepareProcess();
    char c = 0;
    if (open("/dev/null", O_RDWR) <= 2) return 1;
    if (read(0, &c, 1) != 0 || !Read("-").empty()) return 2;
    if (write(1, "x", 1) != -1 || write(2, "x", 1) != -1) return 3;
    if (!Write("-", "x").ends_with("'standard output': Bad file descriptor")) return 4;
    int alone[2];
    if (pipe(alone) != 0 || close(alone[0]) != 0) return 5;
    return Write(NameOf(alone[1]), "x").ends_with("Broken pipe") ? 0 : 6;
  });
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_TRUE(WIFEXITED(status));
}

}  // namespace
}  // namespace vane
