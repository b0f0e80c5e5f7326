// What an exchange costs through the whole library, beside the bare calls of the operating system
// on the same line; and what a pause costs.
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

#include "adapters/conversions/probe.h"
#include "adapters/files/registry.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/terminal_platform.h"
#include "adapters/terminal/terminal_progress.h"
#include "bench/responder.h"
#include "protocol/framing.h"
#include "vane/instrument/t312b.h"
#include "vane/support/timing.h"

namespace vane::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kRounds = 10;
constexpr std::int32_t kExchanges = 3000;  // a round
constexpr std::int16_t kInput = 2;

class CFactory : public CComponentFactory {
 public:
  CFactory(CInterrupts& interrupts, const std::string& device) : interrupts_(interrupts) {
    line_->devices[EVanePortNumber::PORT_1] = device;
  }
  std::unique_ptr<CVaneCommunications> MakeCommunications() override {
    return std::make_unique<CSerialCommunications>(line_);
  }
  std::unique_ptr<CVaneProbe> MakeProbe() override { return std::make_unique<CThermometerProbe>(); }
  std::unique_ptr<CVaneProgress> MakeProgress() override {
    return std::make_unique<CTerminalProgress>(interrupts_);
  }

 private:
  CInterrupts& interrupts_;
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
};

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double RatePerSecond(const std::function<void()>& exchange) {
  const Clock::time_point start = Clock::now();
  for (std::int32_t i = 0; i < kExchanges; ++i) exchange();
  return kExchanges / SecondsSince(start);
}

// The same bytes on the same line, by calls that wait, until the line end is there.
void BareExchange(int line, std::string_view command) {
  std::array<char, protocol::kMaxLineLength> answer;
  if (write(line, command.data(), command.size()) != static_cast<ssize_t>(command.size())) {
    throw std::runtime_error("The line takes no bytes.");
  }
  for (char last = 0; last != '\n';) {
    const ssize_t count = read(line, answer.data(), answer.size());
    if (count <= 0) throw std::runtime_error("The line is lost.");
    last = answer[static_cast<std::size_t>(count) - 1];
  }
}

struct Rates {
  std::vector<double> rounds;

  double Median() const {
    std::vector<double> sorted = rounds;
    std::ranges::sort(sorted);
    return (sorted[(sorted.size() - 1) / 2] + sorted[sorted.size() / 2]) / 2;
  }
  void Print(const char* name) const {
    const auto [least, most] = std::ranges::minmax(rounds);
    std::printf("%-28s %9.0f exchanges/s  (%.0f to %.0f)\n", name, Median(), least, most);
  }
};

void MeasureExchanges(CVaneT312B& readout, int line) {
  const std::string command =
      protocol::FrameLine(0x1A2B, "MEASURE " + std::to_string(kInput) + "?") +
      std::string(protocol::kLineEnd);
  Rates bare;
  Rates whole;
  // In turns, so that a machine that slows down or speeds up meanwhile does it to both.
  for (std::int32_t round = 0; round < kRounds; ++round) {
    bare.rounds.push_back(RatePerSecond([&] { BareExchange(line, command); }));
    whole.rounds.push_back(RatePerSecond([&] { readout.QueryMeasurement(kInput); }));
  }
  std::printf("%d rounds of %d exchanges each, in turns; medians:\n", kRounds, kExchanges);
  bare.Print("bare write and read");
  whole.Print("CVaneT312B::QueryMeasurement");
  std::printf("ratio %.2f, aim: at most 1.3\n", bare.Median() / whole.Median());
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
  const Clock::time_point start = Clock::now();
  PauseMs(1000);
  const double wall = SecondsSince(start);
  std::printf(
      "PauseMs(1000): %.2f ms, aim: never early; %.3f ms of processor time, aim: below 10\n",
      wall * 1e3, (ProcessorSeconds() - before) * 1e3);
}

void Run() {
  CResponder responder;
  CInterrupts interrupts;
  CTerminalPlatform platform(interrupts);
  CFactory factory(interrupts, responder.DevicePath());
  const Components components{platform, factory};
  const CInstalledComponents installed(components);

  CVaneT312B readout(components);
  // A file that is not there: no setting of the user's changes what is measured.
  readout.SetRegistry(std::make_shared<CConfigRegistry>([](const std::string&) {}, "/dev/null"));
  readout.InitializeCommunications();
  if (!readout.QueryChannelInfo()) throw std::runtime_error("The responder was not understood.");

  MeasureExchanges(readout, responder.Descriptor());
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
