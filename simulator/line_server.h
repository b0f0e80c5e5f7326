// The simulated readout on its line: a thread that serves a pseudo-terminal.
//
//   CSimulatedLine line(ParseOptions("--no-scanner --seed 3"));
//   line.Start();
//   ... connect to line.Path() ...
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "protocol/command_table.h"
#include "protocol/line_buffer.h"
#include "simulator/answer_queue.h"
#include "simulator/fault_plan.h"
#include "simulator/options.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/readout.h"

namespace vane::simulator {

class CSimulatedLine {
 public:
  /// Hears of each device that is opened: the first in `Start`, one after each planned hangup on
  /// the line's own thread.
  using Announce = std::function<void(const std::string& devicepath)>;

  explicit CSimulatedLine(Options options, Announce announce = {},
                          Clock clock = std::chrono::steady_clock::now);
  CSimulatedLine(const CSimulatedLine&) = delete;
  CSimulatedLine& operator=(const CSimulatedLine&) = delete;
  ~CSimulatedLine();

  /// Opens the device and serves it from a thread until `Stop`. Called once. Raises
  /// `std::runtime_error` (also as `std::system_error`) when the device or the link can't be made.
  void Start();

  /// Ends the thread. The device and the link last until then.
  void Stop();

  /// A path that outlives a hangup: the user's own link, or a name that is good within this process
  /// alone.
  const std::string& Path() const { return link_.Path(); }

  /// Asks the readout past the line, which counts as no exchange and meets no fault. From any
  /// thread; nothing for silence.
  std::optional<std::string> Ask(std::string_view command);

  /// Commands heard so far, and lines that were none: a wrong check value or too long.
  std::uint64_t Exchanges() const { return exchanges_; }
  std::uint64_t IgnoredLines() const { return ignoredlines_; }

 private:
  void OpenDevice();
  void HangUp(double seconds);
  void LogReading(const protocol::ParsedCommand& command, std::string_view body,
                  const FaultRule* rule);
  void Reopen();
  void Serve();
  void ReadCommands();
  void TakeLine(const protocol::ReceivedLine& received);

  const Options options_;
  const CFaultPlan faults_;
  const Announce announce_;
  std::mutex readoutmutex_;
  CReadout readout_;
  CAnswerQueue answers_;
  CDeviceLink link_;
  CPseudoTerminal terminal_;
  CFile stopread_;
  CFile stopwrite_;
  std::optional<Moment> reopenat_;
  bool isoff_ = false;
  CFile readingslog_;
  protocol::CLineBuffer lines_;
  std::uint64_t writes_ = 0;  // among the exchanges
  std::atomic<std::uint64_t> exchanges_ = 0;
  std::atomic<std::uint64_t> ignoredlines_ = 0;
  std::thread thread_;
};

}  // namespace vane::simulator
