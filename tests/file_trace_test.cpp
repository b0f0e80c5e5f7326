// Traces in files: what stands in them, what is lost and told of, and what a killed process leaves.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include "adapters/files/private_text_file.h"
#include "adapters/serial/line_errors.h"
#include "adapters/serial/line_trace.h"
#include "tests/support/host_machine.h"

namespace vane {
namespace {

namespace fs = std::filesystem;

TEST(FileTrace, WritesToFilesAndPipesAndTellsOfWhatIsLost) {
  test::CTemporaryFolder folder;
  const auto mark = ETraceMark::NOTE;
  const std::string file = folder / "trace";
  for (const std::string& text : {std::string("a\tb"), std::string("c")}) {
    CFileTrace trace(file);
    trace.Record(mark, text);
    EXPECT_EQ(trace.Trouble(), "");
  }
  const std::string written = test::FileText(file);
  ASSERT_EQ(std::count(written.begin(), written.end(), '\n'), 2);
  std::tm parts{};
  const char* const rest = strptime(written.c_str(), "%Y-%m-%d %H:%M:%S.", &parts);
  EXPECT_TRUE(rest == written.c_str() + 20 &&
              std::string_view(rest).substr(3, 11) == "Z - a\\x09b\n")
      << written;
  EXPECT_NEAR(static_cast<double>(timegm(&parts)), static_cast<double>(std::time(nullptr)), 60);
  EXPECT_TRUE(written.ends_with("Z - c\n"));

  // What others have written to an open file of the process stays.
  const int shared = open(file.c_str(), O_RDWR | O_TRUNC);
  CFileTrace beside("/dev/fd/" + std::to_string(shared));
  ASSERT_EQ(write(shared, "one\n", 4), 4);
  beside.Record(mark, "two");
  ASSERT_EQ(write(shared, "three\n", 6), 6);
  close(shared);
  const std::string mixed = test::FileText(file);
  EXPECT_TRUE(mixed.starts_with("one\n") && mixed.ends_with("Z - two\nthree\n")) << mixed;

  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const auto& [path, why] : {std::pair(pipe, "(it is a pipe that nobody reads, or a socket)"),
                                  {folder / "none/trace", "(No such file or directory)"},
                                  {folder.Path(), "(Is a directory)"}}) {
    try {
      CFileTrace trace(path);
      ADD_FAILURE() << path;
    } catch (const LibraryError& error) {
      EXPECT_EQ(error.Number(), ERR_LINE_TRACE_FILE);
      EXPECT_EQ(error.Description(),
                "The trace file " + path + " can't be opened for writing " + why + ".");
    }
  }

  CFileTrace full("/dev/full");
  for (int i = 0; i < 2; ++i) full.Record(mark, "lost");
  EXPECT_EQ(full.Trouble(),
            "The trace file /dev/full could not be written (No space left on device); lines are "
            "missing in it.");

  int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  CFileTrace piped("/dev/fd/" + std::to_string(open(pipe.c_str(), O_WRONLY)));
  piped.Record(mark, "read");
  char bytes[64];
  EXPECT_GT(read(reader, bytes, sizeof bytes), 10);
  piped.Record(mark, std::string(200'000, 'x'));  // the reader doesn't read
  EXPECT_NE(piped.Trouble().find("Resource temporarily unavailable"), std::string::npos);
  while (read(reader, bytes, sizeof bytes) > 0) continue;
  piped.Record(mark, "behind half a line");
  EXPECT_GT(read(reader, bytes, sizeof bytes), 10);
  EXPECT_EQ(bytes[0], '\n');
  close(std::exchange(reader, -1));

  reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  CFileTrace left(pipe);
  close(reader);
  left.Record(mark, "lost");  // the signal would end this process
  EXPECT_NE(left.Trouble().find("Broken pipe"), std::string::npos);
}

// What is in the file may break off in the line that was being written, and nowhere before it.
TEST(FileTrace, AProcessThatIsKilledLeavesEveryLineThatItHasWritten) {
  test::CTemporaryFolder folder;
  const std::string file = folder / "trace";
  void* const shared = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  std::atomic<int>& count = *new (shared) std::atomic<int>;
  const std::function<void()> writers[] = {[&] {
                                             CFileTrace trace(file);
                                             for (;; ++count)
                                               trace.Record(ETraceMark::NOTE,
                                                            "- " + std::to_string(count));
                                           },
                                           [&] {
                                             CPrivateTextFile trace(file);
                                             for (;; ++count)
                                               trace.WriteLine("- " + std::to_string(count));
                                           }};
  for (int kill = 0; kill < 20; ++kill) {
    fs::remove(file);
    count = 0;
    const pid_t child = fork();
    if (child == 0) writers[kill % 2]();
    while (count == 0 && waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(kill * 197));
    ::kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    std::ifstream lines(file);
    int found = 0;
    for (std::string line; std::getline(lines, line) && !lines.eof(); ++found) {
      ASSERT_TRUE(line.ends_with("- " + std::to_string(found))) << line;
    }
    EXPECT_GE(found, count);
  }
}

}  // namespace
}  // namespace vane
