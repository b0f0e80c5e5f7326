// What the download of a log costs beside the bare calls that fetch and store the same lines; what
// its parsing costs beside `mawk` doing the same; and what it adds to the time of a slow line. With
// the argument "faults": what becomes of downloads over a line with faults.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "adapters/files/field_reader.h"
#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "bench/measuring.h"
#include "bench/responder.h"
#include "protocol/framing.h"
#include "simulator/line_server.h"
#include "vane/instrument/t312b.h"

namespace vane::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 5;
constexpr std::int16_t kMany = 32000;
constexpr std::int16_t kFew = 8000;
constexpr std::int16_t kDigits = 2;

constexpr char kParsingBegins[] = "Preparing to parse downloaded data...";
constexpr char kParsingEnds[] = "Download finished...";

// The same columns. It counts bytes, of which "°" has two.
constexpr char kAwkProgram[] = R"(
BEGIN {
  printf "\nThermometer Readout Model: T312B\n"
  printf "%-12s%-12s%-20s%-10s%-10s\n", "Date", "Time", "Reading", "Label", "Channel"
}
{
  unit = $2
  width = 20
  if (index(unit, "C")) { unit = "°C"; width = 21 }
  else if (index(unit, "F")) { unit = "°F"; width = 21 }
  printf "<no date>   <no time>   %-*s<no label><no channel> \n", width, \
         sprintf("%.2f %s", $1, unit)
}
)";

class CFolder {
 public:
  CFolder() {
    std::string pattern = (fs::temp_directory_path() / "vane_bench.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("No folder can be made.");
    path_ = pattern;
  }
  ~CFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  CFolder(const CFolder&) = delete;
  CFolder& operator=(const CFolder&) = delete;

  std::string Path(const char* name = "") const { return path_ / name; }

 private:
  fs::path path_;
};

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Keeps its files in the folder of the measurement.
class CFolderPlatform : public CHeadlessPlatform {
 public:
  explicit CFolderPlatform(std::string folder) : folder_(std::move(folder)) {}
  std::string TemporaryFolder() override { return folder_; }

 private:
  std::string folder_;
};

// When the trace came to the parsing, and how long that took.
struct StageTime {
  steady_clock::time_point start;
  double seconds = 0;
};

// Notes the time of the stage; writes on to `file`, if there is one.
class CTimedTrace : public CVaneTextFile {
 public:
  CTimedTrace(std::unique_ptr<CVaneTextFile> file, StageTime& stage)
      : file_(std::move(file)), stage_(stage) {}

  void WriteLine(const std::string& text) override {
    if (text == kParsingBegins) stage_.start = steady_clock::now();
    if (text == kParsingEnds) stage_.seconds = SecondsSince(stage_.start);
    if (file_) file_->WriteLine(text);
  }
  void Write(const std::string& text) override {
    if (file_) file_->Write(text);
  }
  void Close() override {
    if (file_) file_->Close();
  }

 private:
  std::unique_ptr<CVaneTextFile> file_;
  StageTime& stage_;
};

class CDownloadFactory : public CHeadlessFactory {
 public:
  using CHeadlessFactory::CHeadlessFactory;

  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override {
    const bool istrace = path.ends_with("DNLDT312B.LOG");
    auto file = istrace && !traced ? nullptr : CHeadlessFactory::CreateTextFile(path);
    if (!istrace) return file;
    return std::make_unique<CTimedTrace>(std::move(file), stage);
  }

  bool traced = true;
  StageTime stage;
};

// A host that downloads from one line into a folder of its own.
class CDownloader {
 public:
  explicit CDownloader(const std::string& device)
      : platform_(folder_.Path()),
        line_(std::make_shared<LineSettings>()),
        factory_(line_),
        components_{platform_, factory_},
        installed_(components_),
        readout_(components_) {
    line_->devices[EVanePortNumber::PORT_1] = device;
    readout_.SetRegistry(std::make_shared<CEmptyRegistry>());
    readout_.SetFilePath(folder_.Path());
    readout_.InitializeCommunications();
  }

  /// Whether it was done; else the last message says why not.
  bool Try(std::int16_t readings, std::int16_t digits = kDigits) {
    CFieldReader fields;
    return readout_.DownloadLog(fields, ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                                ET312BDownloadOption::DOWNLOAD_SINGLE_FILE, readings, digits);
  }

  double SecondsOf(std::int16_t readings) {
    const steady_clock::time_point start = steady_clock::now();
    if (!Try(readings)) {
      const auto said = platform_.TakeMessages();
      throw std::runtime_error("A download failed: " + (said.empty() ? "" : said.back().text));
    }
    return SecondsSince(start);
  }

  double StageSeconds(bool traced) {
    factory_.traced = traced;
    SecondsOf(kMany);
    factory_.traced = true;
    return factory_.stage.seconds;
  }

  LineSettings& Line() { return *line_; }
  std::string Path(const char* name) const { return folder_.Path(name); }
  std::string File() const { return Content(Path("download.txt")); }

 private:
  CFolder folder_;
  CFolderPlatform platform_;
  std::shared_ptr<LineSettings> line_;
  CDownloadFactory factory_;
  const Components components_;
  const CInstalledComponents installed_;
  CVaneT312B readout_;
};

// The same lines by calls that wait, each appended to a file.
double BareSeconds(int line, const std::string& path) {
  const steady_clock::time_point start = steady_clock::now();
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::array<char, protocol::kMaxLineLength> answer;
  for (int i = 1; i <= kMany; ++i) {
    const std::string command = protocol::FrameLine(static_cast<std::uint16_t>(i),
                                                    "LOG:HISTORY " + std::to_string(i) + "?") +
                                std::string(protocol::kLineEnd);
    if (write(line, command.data(), command.size()) != static_cast<ssize_t>(command.size())) {
      throw std::runtime_error("The line takes no bytes.");
    }
    for (char last = 0; last != '\n';) {
      const ssize_t count = read(line, answer.data(), answer.size());
      if (count <= 0) throw std::runtime_error("The line is lost.");
      last = answer[static_cast<std::size_t>(count) - 1];
      if (write(file, answer.data(), static_cast<std::size_t>(count)) != count) {
        throw std::runtime_error("The file takes no bytes.");
      }
    }
  }
  close(file);
  return SecondsSince(start);
}

// Gives the status that the program ended with. No shell stands between.
int RunToFile(const std::vector<const char*>& words, const std::string& out) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::vector<char*> arguments;
  for (const char* word : words) arguments.push_back(const_cast<char*>(word));
  arguments.push_back(nullptr);
  pid_t process = -1;
  const int error =
      posix_spawnp(&process, words.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), words.front());
  int status = -1;
  waitpid(process, &status, 0);
  return status;
}

double AwkSeconds(const CDownloader& downloader) {
  const std::string raw = downloader.Path("TMPDWNLD.LOG");
  const std::string out = downloader.Path("awk.txt");
  const steady_clock::time_point start = steady_clock::now();
  const int status = RunToFile({"mawk", kAwkProgram, raw.c_str()}, out);
  const double seconds = SecondsSince(start);
  if (status != 0) throw std::runtime_error("mawk failed.");
  if (Content(out) != downloader.File()) {
    throw std::runtime_error("mawk has written another file than the library.");
  }
  return seconds;
}

long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void MeasureDownloads() {
  CResponder responder;
  CDownloader downloader(responder.DevicePath());
  std::vector<double> bare, many, few, traced, untraced, awk;
  for (int round = 0; round < kRounds; ++round) {
    bare.push_back(BareSeconds(responder.Descriptor(), downloader.Path("bare")));
    many.push_back(downloader.SecondsOf(kMany));
    few.push_back(downloader.SecondsOf(kFew));
  }
  const long peak = PeakKilobytes();
  for (int round = 0; round < kRounds; ++round) {
    traced.push_back(downloader.StageSeconds(true));
    untraced.push_back(downloader.StageSeconds(false));
    awk.push_back(AwkSeconds(downloader));
  }
  std::printf("\n%d rounds in turns, medians:\n", kRounds);
  std::printf("bare loop, %d readings       %7.3f s\n", kMany, MedianOf(bare));
  std::printf("DownloadLog, %d readings     %7.3f s\n", kMany, MedianOf(many));
  std::printf("DownloadLog, %d readings      %7.3f s\n", kFew, MedianOf(few));
  std::printf("download over bare loop: ratio %.2f, aim: at most 1.5\n", MedianRatio(many, bare));
  std::printf("%d over %d readings: ratio %.2f, aim: at most 4.5\n", kMany, kFew,
              MedianRatio(many, few));
  std::printf("peak memory: %.1f MiB, aim: below 64\n", static_cast<double>(peak) / 1024);
  std::printf(
      "parsing and writing %d readings: %.4f s without the trace, %.4f s with it; mawk "
      "%.4f s\n",
      kMany, MedianOf(untraced), MedianOf(traced), MedianOf(awk));
  std::printf("without the trace over mawk: ratio %.2f, aim: below 1; with it: %.2f\n",
              MedianRatio(untraced, awk), MedianRatio(traced, awk));
}

// Counts the bytes of both ways.
class CByteCount : public CLineTrace {
 public:
  void Record(ETraceMark mark, std::string_view text) override {
    if (mark != ETraceMark::NOTE) bytes_ += text.size() + protocol::kLineEnd.size();
  }
  std::size_t Bytes() const { return bytes_; }

 private:
  std::size_t bytes_ = 0;
};

void MeasureSlowLine() {
  constexpr std::int32_t kBaud = 9600;
  constexpr std::int16_t kReadings = 100;
  constexpr double kBitsPerByte = 10;
  simulator::CSimulatedLine line(simulator::ParseOptions("--baud " + std::to_string(kBaud)));
  line.Start();
  CDownloader downloader(line.Path());
  const auto count = std::make_shared<CByteCount>();
  downloader.Line().trace = count;
  const double taken = downloader.SecondsOf(kReadings);
  const double needed = static_cast<double>(count->Bytes()) * kBitsPerByte / kBaud;
  std::printf(
      "\n%d readings at %d bit/s: %.3f s, of which the line needs %.3f s: ratio %.3f, aim: "
      "at most 1.1\n",
      kReadings, kBaud, taken, needed, taken / needed);
}

int CountFaults() {
  constexpr int kRuns = 50;
  constexpr std::int16_t kReadings = 100;
  constexpr std::int16_t kAllDigits = -1;  // a change in any of them shows in the file
  constexpr char kFaults[] =
      " --fault p=0.01:drop --fault p=0.01:garble --fault p=0.01:late=0.15"
      " --fault p=0.01:identify";
  int right = 0;
  int failed = 0;
  int wrong = 0;
  for (int seed = 1; seed <= kRuns; ++seed) {
    const auto download = [&](const std::string& faults, bool& done) {
      simulator::CSimulatedLine line(
          simulator::ParseOptions("--seed " + std::to_string(seed) + faults));
      line.Start();
      CDownloader downloader(line.Path());
      downloader.Line().timeout = std::chrono::milliseconds(100);
      done = downloader.Try(kReadings, kAllDigits);
      return downloader.File();
    };
    bool done = false;
    const std::string expected = download("", done);
    if (!done) throw std::runtime_error("A download without faults failed.");
    const std::string file = download(kFaults, done);
    if (done && file == expected) {
      ++right;
    } else if (!done && file.empty()) {
      ++failed;
    } else {
      ++wrong;
    }
  }
  std::printf(
      "%d downloads of %d readings, 1%% each of drop, garble, late and identify: %d right, "
      "%d ended with an error and no file, %d wrong\n",
      kRuns, kReadings, right, failed, wrong);
  return wrong == 0 ? 0 : 1;
}

}  // namespace
}  // namespace vane::bench

int main(int argc, char** argv) try {
  if (argc > 1 && std::string_view(argv[1]) == "faults") return vane::bench::CountFaults();
  vane::bench::MeasureDownloads();
  vane::bench::MeasureSlowLine();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "download_bench: %s\n", error.what());
  return 1;
}
