#include "apps/thermoscribe-desktop/unattended_run.h"

#include <sys/resource.h>

#include <QPixmap>
#include <iostream>

#include "adapters/qt/qt_text.h"

namespace vane::desktop {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds kLookPause{100};
constexpr Seconds kLongestWait{30};   // for the first readings
constexpr Seconds kTimeOfPicture{8};  // so that there is a plot and a deviation

double ProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace

CUnattendedRun::CUnattendedRun(CMainWindow& window, const Request& request, Clock::time_point start)
    : window_(window), request_(request), start_(start) {
  QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
  timer_.start(kLookPause);
}

std::int64_t CUnattendedRun::NumReadings() const {
  std::int64_t count = 0;
  for (const SeriesId series : window_.Readings().All()) {
    count += window_.Readings().StatisticsOf(series).count;
  }
  return count;
}

void CUnattendedRun::Look() {
  const auto now = Clock::now();
  if (!first_ && window_.FirstReading()) {
    first_ = *window_.FirstReading();
    processorbefore_ = ProcessorSeconds();
  }
  if (!first_) {
    if (now - start_ > kLongestWait) End("No reading came.");
    return;
  }
  if (now - *first_ < request_.figures.value_or(kTimeOfPicture)) return;
  if (request_.figures) PrintFigures(now);
  if (!request_.picture.isEmpty() && !window_.grab().save(request_.picture)) {
    return End(FromQt(request_.picture) + " can't be written.");
  }
  End({});
}

void CUnattendedRun::PrintFigures(Clock::time_point now) const {
  const double spent = ProcessorSeconds() - processorbefore_;
  const double passed = Seconds(now - *first_).count();
  std::cout << "first reading after " << Seconds(*first_ - start_).count() << " s\n"
            << NumReadings() << " readings of " << window_.Readings().All().size()
            << " channels in " << passed << " s: " << 100 * spent / passed << " % of a processor"
            << std::endl;
}

void CUnattendedRun::End(const std::string& trouble) {
  timer_.stop();
  if (!trouble.empty()) std::cerr << "thermoscribe-desktop: " << trouble << std::endl;
  exitcode_ = trouble.empty() ? 0 : 1;
  window_.close();
}

}  // namespace vane::desktop
