// What the live view's store and plot cost: a week of twelve channels at one reading a second.
#include <sys/resource.h>

#include <QApplication>
#include <QImage>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "apps/thermoscribe-desktop/plot/plot_view.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "bench/measuring.h"

namespace vane::bench {
namespace {

using desktop::CPlotView;
using desktop::CReadingStore;
using desktop::SeriesId;
using desktop::TimePoint;

constexpr std::int16_t kChannels = 12;
constexpr int kWeek = 7 * 24 * 3600;
constexpr int kRounds = 9;

double MegabytesInUse() {
  std::ifstream file("/proc/self/statm");
  long all = 0;
  long resident = 0;
  file >> all >> resident;
  return static_cast<double>(resident) * 4096 / 1048576;
}

// A bath that is cycled, with the noise of a reading.
double Reading(std::int16_t channel, int second, unsigned& chance) {
  chance = chance * 1664525U + 1013904223U;
  return 10.0 * channel + 2 * std::sin(second / 4000.0 + channel) + chance / 4294967296.0 * 0.002;
}

// The median of a repaint of the whole widget, into a picture, in ms.
double Repaint(CPlotView& plot, const std::function<void()>& before) {
  std::vector<double> times;
  for (int round = 0; round < kRounds; ++round) {
    before();
    QImage picture(plot.size(), QImage::Format_ARGB32_Premultiplied);
    const auto start = steady_clock::now();
    plot.Refresh();
    plot.render(&picture);
    times.push_back(1000 * SecondsSince(start));
  }
  return MedianOf(times);
}

void Run() {
  const double empty = MegabytesInUse();
  const TimePoint begin = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1);
  CReadingStore store;
  unsigned chance = 1;
  const auto start = steady_clock::now();
  for (int second = 0; second < kWeek; ++second) {
    for (std::int16_t channel = 1; channel <= kChannels; ++channel) {
      store.Add(SeriesId{channel, 0}, begin + std::chrono::seconds(second),
                Reading(channel, second, chance));
    }
  }
  const double took = SecondsSince(start);
  std::printf("A week of %d channels, %d readings\n", kChannels, kChannels * kWeek);
  std::printf("  to store a reading          %8.3f us\n", took * 1e6 / kChannels / kWeek);

  CPlotView plot(store);
  plot.resize(1100, 420);
  for (std::int16_t channel = 1; channel <= kChannels; ++channel) {
    plot.SetSeries({SeriesId{channel, 0}, QString::number(channel), "\u00B0C",
                    desktop::ChannelColour(channel, false), true});
  }
  plot.show();
  plot.ShowAll();
  QCoreApplication::processEvents();
  std::printf("  to repaint the week         %8.1f ms\n", Repaint(plot, [&] { plot.ShowAll(); }));
  plot.SetFollowing(true);
  plot.SetSpan(600);
  int second = kWeek;
  std::printf("  to repaint ten minutes      %8.1f ms, with twelve new readings\n",
              Repaint(plot, [&] {
                for (std::int16_t channel = 1; channel <= kChannels; ++channel) {
                  store.Add(SeriesId{channel, 0}, begin + std::chrono::seconds(second),
                            Reading(channel, second, chance));
                }
                ++second;
              }));
  plot.SetSpan(86400);
  std::printf("  to repaint a day            %8.1f ms\n", Repaint(plot, [] {}));
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf(
      "  memory for it               %8.1f MiB, the store's own count %.1f MiB, peak %.1f MiB\n",
      MegabytesInUse() - empty, static_cast<double>(store.Bytes()) / 1048576,
      static_cast<double>(usage.ru_maxrss) / 1024);
  for (int more = 0; more < 3 * kWeek; ++more, ++second) {
    for (std::int16_t channel = 1; channel <= kChannels; ++channel) {
      store.Add(SeriesId{channel, 0}, begin + std::chrono::seconds(second),
                Reading(channel, second, chance));
    }
  }
  getrusage(RUSAGE_SELF, &usage);
  std::printf("Three weeks more\n  memory                      %8.1f MiB, peak %.1f MiB\n",
              MegabytesInUse() - empty, static_cast<double>(usage.ru_maxrss) / 1024);
  std::printf("  to repaint all of them      %8.1f ms\n", Repaint(plot, [&] { plot.ShowAll(); }));
}

}  // namespace
}  // namespace vane::bench

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  vane::bench::Run();
}
