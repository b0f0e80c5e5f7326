#include "adapters/terminal/terminal_progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "adapters/terminal/terminal_output.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

constexpr double kWhole = 100;
constexpr std::chrono::milliseconds kRedrawInterval{50};
constexpr std::chrono::milliseconds kMeasureTime{500};
constexpr double kSlowRate = 10;  // per second; below it the tenths tell something
constexpr std::size_t kUsualColumns = 80;
constexpr std::size_t kMinBar = 10;
constexpr std::size_t kMaxBar = 40;

bool StartsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

std::size_t Columns(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

// The first `columns` characters.
std::string Cut(const std::string& text, std::size_t columns) {
  std::size_t end = 0;
  while (end < text.size() && (!StartsCharacter(text[end]) || columns-- > 0)) ++end;
  return text.substr(0, end);
}

// The last column stays free: a character there may move the cursor to the next line.
std::size_t UsableColumns(int fd) {
  winsize size{};
  const bool known = ::ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return (known ? size.ws_col : kUsualColumns) - 1;
}

}  // namespace

CTerminalProgress::CTerminalProgress(CInterrupts& interrupts, int output)
    : interrupts_(interrupts), output_(output), terminal_(::isatty(output) != 0) {}

CTerminalProgress::~CTerminalProgress() { Finish(); }

void CTerminalProgress::SetVisible(bool flag) {
  visible_ = flag;
  Refresh(true);
}

void CTerminalProgress::Hide(bool flag) {
  hidden_ = !flag;
  Refresh(true);
}

void CTerminalProgress::Start(const std::string& text, double share) {
  caption_ = PrintableText(text);
  std::replace_if(
      caption_.begin(), caption_.end(), [](char c) { return c == '\n' || c == '\t'; }, ' ');
  share_ = share;
  percent_ = 0;
  total_ = 0;
  starttime_ = std::chrono::steady_clock::now();
  hidden_ = false;
  running_ = true;
  Refresh(true);
}

bool CTerminalProgress::Step(std::int32_t total, std::int32_t position, std::int32_t) {
  if (position == kNoPosition) {
    percent_ += share_;
  } else if (total > 0) {
    percent_ = kWhole * position / total;
    total_ = total;
    position_ = position;
  }
  percent_ = std::clamp(percent_, 0.0, kWhole);
  Refresh(false);
  return !interrupts_.Pending();
}

void CTerminalProgress::Finish() {
  running_ = false;
  Refresh(true);
}

void CTerminalProgress::Refresh(bool now) {
  const bool shown = terminal_ && visible_ && running_ && !hidden_;
  if (!shown) {
    if (!drawncolumns_) return;
    const std::string blanks(drawncolumns_, ' ');
    WriteToTerminal(output_, '\r' + blanks + '\r');
    MarkOpenLine(false);
    drawncolumns_ = 0;
    return;
  }
  const auto time = std::chrono::steady_clock::now();
  if (!now && drawncolumns_ && time - drawntime_ < kRedrawInterval) return;
  std::string line = Line();
  const std::size_t columns = Columns(line);
  if (columns < drawncolumns_) line.append(drawncolumns_ - columns, ' ');
  WriteToTerminal(output_, '\r' + line);
  MarkOpenLine(true);
  drawncolumns_ = columns;
  drawntime_ = time;
}

// "  37/s  0:05 left", once there has been time to measure.
std::string CTerminalProgress::RateText() const {
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - starttime_;
  if (total_ == 0 || position_ <= 0 || passed < kMeasureTime) return {};
  const double rate = position_ / passed.count();
  const long left = std::lround(std::ceil((total_ - position_) / rate));
  char text[48];
  std::snprintf(text, sizeof text, "  %.*f/s  %ld:%02ld left", rate < kSlowRate ? 1 : 0, rate,
                left / 60, left % 60);
  return text;
}

// "Reading settings [#####-----]  50%", or as much of it as there is room for.
std::string CTerminalProgress::Line() const {
  char number[16];
  std::snprintf(number, sizeof number, "%3ld%%", std::lround(percent_));
  const std::string rate = RateText();

  const std::size_t frame = std::string_view(" [] 100%").size() + rate.size();
  const std::size_t room = UsableColumns(output_);
  if (room < frame + kMinBar) return number;
  const std::string caption = Cut(caption_, room - frame - kMinBar);
  const std::size_t bar = std::min(room - frame - Columns(caption), kMaxBar);
  const auto done = static_cast<std::size_t>(static_cast<double>(bar) * percent_ / kWhole);
  return caption + " [" + std::string(done, '#') + std::string(bar - done, '-') + "] " + number +
         rate;
}

}  // namespace vane
