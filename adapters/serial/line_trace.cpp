#include "adapters/serial/line_trace.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "adapters/serial/line_errors.h"

namespace vane {
namespace {

std::string TimeStamp() {
  using std::chrono::system_clock;
  const auto now = std::chrono::floor<std::chrono::milliseconds>(system_clock::now());
  const std::time_t seconds = system_clock::to_time_t(now);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, 24> day{};
  std::strftime(day.data(), day.size(), "%Y-%m-%d %H:%M:%S", &parts);
  std::array<char, 32> stamp{};
  std::snprintf(stamp.data(), stamp.size(), "%s.%03dZ", day.data(),
                static_cast<int>(now.time_since_epoch().count() % 1000));
  return stamp.data();
}

}  // namespace

std::string EscapedText(std::string_view text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\') {
      escaped += "\\\\";
    } else if (byte >= ' ' && byte <= '~') {
      escaped += c;
    } else {
      escaped += "\\x";
      escaped += kDigits[byte >> 4];
      escaped += kDigits[byte & 0xF];
    }
  }
  return escaped;
}

CFileTrace::CFileTrace(const std::string& path) : file_(path, std::ios::app) {
  if (!file_) {
    throw LibraryError(ERR_LINE_TRACE_FILE, "CFileTrace - Open",
                       "The trace file " + path + " can't be opened for writing.");
  }
}

void CFileTrace::Record(ETraceMark mark, std::string_view text) {
  constexpr char kMarks[] = {'>', '<', '-'};
  file_.clear();
  file_ << TimeStamp() << ' ' << kMarks[static_cast<int>(mark)] << ' ' << EscapedText(text)
        << std::endl;
}

}  // namespace vane
