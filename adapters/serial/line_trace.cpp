#include "adapters/serial/line_trace.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>
#include <optional>
#include <system_error>

#include "adapters/posix/links.h"
#include "adapters/serial/file_handle.h"
#include "adapters/serial/line_errors.h"

namespace vane {
namespace {

constexpr const char* kStandard = "-";
constexpr int kLongestWait = 1000;  // ms, for the reader of a pipe

// While it lives, a write into a pipe without a reader fails and doesn't end the process, whatever
// the host makes of that signal.
class CHeldPipeSignal {
 public:
  CHeldPipeSignal() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    waspending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
  }
  ~CHeldPipeSignal() {
    constexpr timespec kNoTime{};
    if (!waspending_) sigtimedwait(&signals_, nullptr, &kNoTime);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  CHeldPipeSignal(const CHeldPipeSignal&) = delete;
  CHeldPipeSignal& operator=(const CHeldPipeSignal&) = delete;

 private:
  sigset_t signals_;
  sigset_t before_;
  bool waspending_;
};

bool IsRegular(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// A regular file that this process has open, under a name such as "/dev/stdout": opened anew, it
// would be written at a place of its own, over what others write to it. -1 for any other.
int SharedFile(const std::string& path) {
  try {
    const auto number = OwnDescriptor(FollowLinks(path));
    if (!number || !IsRegular(*number)) return -1;
    return fcntl(*number, F_DUPFD_CLOEXEC, 0);
  } catch (const std::system_error&) {
    return -1;  // opening it tells why
  }
}

// In UTC, such as "2026-03-01 09:30:00.125Z".
void AppendTime(std::string& line) {
  using namespace std::chrono;
  const auto now = floor<milliseconds>(system_clock::now());
  const auto today = floor<days>(now);
  const year_month_day date(today);
  const hh_mm_ss time(now - today);
  struct Part {
    std::int64_t value;
    int digits;
    char behind;
  };
  for (const Part& part : {Part{static_cast<int>(date.year()), 4, '-'},
                           {static_cast<unsigned>(date.month()), 2, '-'},
                           {static_cast<unsigned>(date.day()), 2, ' '},
                           {time.hours().count(), 2, ':'},
                           {time.minutes().count(), 2, ':'},
                           {time.seconds().count(), 2, '.'},
                           {time.subseconds().count(), 3, 'Z'}}) {
    line.resize(line.size() + static_cast<std::size_t>(part.digits));
    std::int64_t left = part.value;
    for (auto digit = line.rbegin(); digit != line.rbegin() + part.digits; ++digit, left /= 10) {
      *digit = static_cast<char>('0' + left % 10);
    }
    line += part.behind;
  }
}

void AppendEscaped(std::string& line, std::string_view text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\') {
      line += "\\\\";
    } else if (byte >= ' ' && byte <= '~') {
      line += c;
    } else {
      line += "\\x";
      line += kDigits[byte >> 4];
      line += kDigits[byte & 0xF];
    }
  }
}

}  // namespace

std::string EscapedText(std::string_view text) {
  std::string escaped;
  AppendEscaped(escaped, text);
  return escaped;
}

CFileTrace::CFileTrace(const std::string& path)
    : path_(path == kStandard ? "/dev/stdout" : path), file_(SharedFile(path_)) {
  // Without O_NONBLOCK the opening of a pipe would wait for a reader.
  while (file_ < 0) {
    file_ = open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY | O_NONBLOCK | O_CLOEXEC,
                 0666);
    if (file_ >= 0 || errno != EINTR) break;
  }
  file_ = AboveStandard(file_);
  if (file_ < 0) {
    const std::string reason = errno == ENXIO ? "it is a pipe that nobody reads, or a socket"
                                              : std::generic_category().message(errno);
    throw LibraryError(ERR_LINE_TRACE_FILE, "CFileTrace - Open",
                       "The trace file " + path + " can't be opened for writing (" + reason + ").");
  }
  isregular_ = IsRegular(file_);
}

CFileTrace::~CFileTrace() { close(file_); }

void CFileTrace::Record(ETraceMark mark, std::string_view text) {
  constexpr char kMarks[] = {'>', '<', '-'};
  record_ = isbroken_ ? "\n" : "";
  AppendTime(record_);
  record_ += {' ', kMarks[static_cast<int>(mark)], ' '};
  AppendEscaped(record_, text);
  record_ += '\n';
  std::optional<CHeldPipeSignal> held;
  if (!isregular_) held.emplace();
  for (std::string_view left = record_; !left.empty();) {
    const ssize_t written = write(file_, left.data(), left.size());
    if (written >= 0) {
      left.remove_prefix(static_cast<std::size_t>(written));
      isbroken_ = !left.empty();
    } else if (const int error = errno; !IsReady(error)) {
      if (trouble_.empty()) {
        trouble_ = "The trace file " + path_ + " could not be written (" +
                   std::generic_category().message(error) + "); lines are missing in it.";
      }
      return;
    }
  }
}

// After a write that failed with `error`: may it be tried again?
bool CFileTrace::IsReady(int error) const {
  if (error == EINTR) return true;
  if (error != EAGAIN || !trouble_.empty()) return false;
  pollfd wanted{file_, POLLOUT, 0};
  return poll(&wanted, 1, kLongestWait) == 1;
}

}  // namespace vane
