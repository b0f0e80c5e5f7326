// What an exchange costs through the whole library, alone and within a read of all settings, beside
// the bare calls of the operating system on the same line; and what a pause costs.
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "bench/measuring.h"
#include "bench/responder.h"
#include "protocol/framing.h"
#include "vane/instrument/t312b.h"
#include "vane/support/timing.h"

namespace vane::bench {
namespace {

constexpr std::int32_t kRounds = 50;
constexpr std::int32_t kExchanges = 600;  // a round
constexpr std::int16_t kInput = 2;

// Counts what is sent.
class CCountingTrace : public CLineTrace {
 public:
  void Record(ETraceMark mark, std::string_view) override { count_ += mark == ETraceMark::SENT; }
  std::int32_t Count() const { return count_; }

 private:
  std::int32_t count_ = 0;
};

// Knows how long the library has paused: every pause is passes of the message queue.
class CTimedPlatform : public CHeadlessPlatform {
 public:
  void RunMessageQueue(std::uint32_t longestwait) override {
    const steady_clock::time_point start = steady_clock::now();
    CHeadlessPlatform::RunMessageQueue(longestwait);
    paused_ += steady_clock::now() - start;
  }
  double PausedSeconds() const { return std::chrono::duration<double>(paused_).count(); }

 private:
  steady_clock::duration paused_{};
};

// Of `body`, which does `exchanges` at a time.
double RatePerSecond(std::int32_t exchanges, const std::function<void()>& body) {
  const std::int32_t times = kExchanges / exchanges;
  const steady_clock::time_point start = steady_clock::now();
  for (std::int32_t i = 0; i < times; ++i) body();
  return times * exchanges / SecondsSince(start);
}

enum class EWait { ENDLESS, BOUNDED };

// The same bytes on the same line, by calls that wait, until the line end is there. A wait that is
// to end some time needs a call of its own.
void BareExchange(int line, std::string_view command, EWait wait) {
  std::array<char, protocol::kMaxLineLength> answer;
  if (write(line, command.data(), command.size()) != static_cast<ssize_t>(command.size())) {
    throw std::runtime_error("The line takes no bytes.");
  }
  for (char last = 0; last != '\n';) {
    pollfd wanted{line, POLLIN, 0};
    if (wait == EWait::BOUNDED) poll(&wanted, 1, 1000);
    const ssize_t count = read(line, answer.data(), answer.size());
    if (count <= 0) throw std::runtime_error("The line is lost.");
    last = answer[static_cast<std::size_t>(count) - 1];
  }
}

struct Rates {
  std::vector<double> rounds;

  void Print(const char* name) const {
    const auto [least, most] = std::ranges::minmax(rounds);
    std::printf("%-28s %9.0f exchanges/s  (%.0f to %.0f)\n", name, MedianOf(rounds), least, most);
  }
};

// How many times the time of `bare` an exchange of `whole` takes.
double Ratio(const Rates& bare, const Rates& whole) {
  return MedianRatio(bare.rounds, whole.rounds);
}

void ReadSettings(CVaneT312B& readout) {
  if (!readout.QueryInfo()) throw std::runtime_error("The settings could not be read.");
}

std::int32_t ExchangesOfQueryInfo(CVaneT312B& readout, LineSettings& line) {
  const auto trace = std::make_shared<CCountingTrace>();
  line.trace = trace;
  ReadSettings(readout);
  line.trace.reset();
  return trace->Count();
}

void MeasureExchanges(CVaneT312B& readout, LineSettings& settings, const CTimedPlatform& platform,
                      int line) {
  const std::string command =
      protocol::FrameLine(0x1A2B, "MEASURE " + std::to_string(kInput) + "?") +
      std::string(protocol::kLineEnd);
  const std::int32_t exchanges = ExchangesOfQueryInfo(readout, settings);
  Rates bare;
  Rates bounded;
  Rates single;
  Rates all;
  const double pausedbefore = platform.PausedSeconds();
  // In turns, so that a machine that slows down or speeds up meanwhile does it to all.
  for (std::int32_t round = 0; round < kRounds; ++round) {
    const auto exchange = [&](EWait wait) {
      return RatePerSecond(1, [&, wait] { BareExchange(line, command, wait); });
    };
    bare.rounds.push_back(exchange(EWait::ENDLESS));
    bounded.rounds.push_back(exchange(EWait::BOUNDED));
    single.rounds.push_back(RatePerSecond(1, [&] { readout.QueryMeasurement(kInput); }));
    all.rounds.push_back(RatePerSecond(exchanges, [&] { ReadSettings(readout); }));
  }
  std::printf("%d rounds of %d exchanges each, in turns; medians:\n", kRounds, kExchanges);
  bare.Print("bare write and read");
  bounded.Print("bare write, poll and read");
  single.Print("CVaneT312B::QueryMeasurement");
  all.Print("CVaneT312B::QueryInfo");
  std::printf("QueryMeasurement: ratio %.2f, aim: at most 1.3; a wait that ends alone: %.2f\n",
              Ratio(bare, single), Ratio(bare, bounded));
  std::printf("QueryInfo with a scanner: ratio of each of its %d exchanges %.2f; %.2f ms the run\n",
              exchanges, Ratio(bare, all), exchanges * 1e3 / MedianOf(all.rounds));
  std::printf("Pauses within the runs of QueryInfo: %.3f s\n",
              platform.PausedSeconds() - pausedbefore);
}

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void MeasurePause() {
  const double before = ProcessorSeconds();
  const steady_clock::time_point start = steady_clock::now();
  PauseMs(1000);
  const double wall = SecondsSince(start);
  std::printf(
      "PauseMs(1000): %.2f ms, aim: never early; %.3f ms of processor time, aim: below 10\n",
      wall * 1e3, (ProcessorSeconds() - before) * 1e3);
}

void Run() {
  CResponder responder;
  CTimedPlatform platform;
  const auto line = std::make_shared<LineSettings>();
  line->devices[EVanePortNumber::PORT_1] = responder.DevicePath();
  CHeadlessFactory factory(line);
  const Components components{platform, factory};
  const CInstalledComponents installed(components);

  CVaneT312B readout(components);
  readout.SetRegistry(std::make_shared<CEmptyRegistry>());
  readout.InitializeCommunications();
  if (!readout.QueryChannelInfo()) throw std::runtime_error("The responder was not understood.");

  MeasureExchanges(readout, *line, platform, responder.Descriptor());
  MeasurePause();
}

}  // namespace
}  // namespace vane::bench

int main() try {
  vane::bench::Run();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "exchange_bench: %s\n", error.what());
  return 1;
}
