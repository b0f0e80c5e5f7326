// The host program's side of the library: the terminal as the platform, the serial line or a
// simulated readout at its end, and the instrument object on top.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/posix/patience.h"
#include "adapters/terminal/interrupts.h"
#include "adapters/terminal/terminal_platform.h"
#include "apps/snapshots/audience.h"
#include "apps/snapshots/instrument_properties.h"
#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/host_factory.h"
#include "apps/thermoscribe/host_options.h"
#include "apps/thermoscribe/notices.h"
#include "apps/thermoscribe/output.h"
#include "vane/components/components.h"
#include "vane/components/ui.h"
#include "vane/instrument/t312b.h"

namespace vane {
class CConfigRegistry;
class CFileTrace;
struct LineFailure;
}  // namespace vane

namespace vane::simulator {
class CSimulatedLine;
}

namespace vane::thermoscribe {

/// The terminal, or what stands for it in a program's own form.
class CHostPlatform final : public CTerminalPlatform {
 public:
  CHostPlatform(CInterrupts& interrupts, CNotices& notices, std::function<void()> moment)
      : CTerminalPlatform(interrupts), notices_(notices), moment_(std::move(moment)) {}

  void RunMessageQueue(std::uint32_t longestwait) override;

  /// Runs for each box of an error, within the catch of that.
  void SetErrorHandler(std::function<void()> handler) { onerror_ = std::move(handler); }

  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;

  /// How many were shown so far, questions not counted.
  std::int32_t Boxes() const { return boxes_; }

 private:
  CNotices& notices_;
  std::function<void()> moment_;
  std::function<void()> onerror_;
  std::int32_t boxes_ = 0;
};

/// One object per process, on the main thread. From its making on, Ctrl-C ends a wait of the
/// library and raises `IsInterrupted`, and nothing more.
class CHost final : public CAudience {
 public:
  /// `notices` outlives the host.
  CHost(HostOptions options, CNotices& notices);
  ~CHost() override;
  CHost(const CHost&) = delete;
  CHost& operator=(const CHost&) = delete;

  /// The user's configuration; opens no line.
  const std::shared_ptr<CConfigRegistry>& Registry();

  /// Learns which line it is, and opens it with the first exchange. Raises `CUsageError` when it
  /// can't know which.
  void ChooseLine();

  /// `ChooseLine`, opens the line, proves the instrument and finds out its modules and channels.
  /// When the result is not `DONE` the user has been told why; then what was found out so far is in
  /// the instrument object. Raises `CUsageError` when it can't know which line.
  EExitCode Connect();

  /// Why the channels and modules that the readout counts can't be; empty when they can.
  std::string ProblemOfCounts() const;

  /// `Connect`, and then reads all settings of the instrument and its scanner, but not the modules'
  /// channels. When the result is not `DONE` the user has been told why, or the run was stopped.
  EExitCode ReadSettings();

  /// The audience's `ReadWell` with a code for what has ended it: what `read` gives, where that is
  /// not `DONE`.
  EExitCode ReadWell(const std::function<EExitCode()>& read);

  /// Opens editing of the groups of `gates` for this command, with the passcode where one of them
  /// is protected; the user is asked at most once. After `ReadSettings`. `DONE`, or why not,
  /// which has been told.
  EExitCode OpenGates(std::span<const EGate> gates);

  /// From now on no write is sent: its line goes to the output instead, as it would go out. Reads
  /// are sent as ever.
  void StartDryRun();

  /// Null when there is none, which the user has been told then.
  CVaneT312BPRTTHRMChannel* FindChannel(std::int16_t number);

  /// "The readout has the channels 1 to 12."
  std::string ChannelsText() const;

  /// Use it after `Connect`.
  CVaneT312B& Instrument() { return instrument_; }
  COutput& Output() { return output_; }

  /// Null unless the user wants to see the display.
  ui::CWindow* ProgressWindow() override { return options_.progress ? &window_ : nullptr; }

  /// Why a run of the library that gave false has ended; the user has been told then.
  EExitCode CodeOfStoppedRun();
  /// The same for any end.
  EExitCode CodeOf(EEnd end);

  /// For files that may keep the program waiting.
  Patience UsersPatience() const {
    return {.interrupted = [this] { return IsInterrupted(); }};
  }

  /// True once the user has pressed Ctrl-C, from then on.
  bool IsInterrupted() const override { return interrupts_.Pending(); }

  const WrittenFile& LatestFile() const { return factory_.LatestFile(); }

  /// Answers and errors only.
  bool IsQuiet() const { return options_.quiet; }

  /// Where the readout is, for people. After `ChooseLine`.
  std::string LineText() const { return options_.simulated ? "simulated" : options_.port; }

  /// A reader of the output that goes away ends nothing.
  void OutliveReader() { outlivesreader_ = true; }

  /// What has failed so far was dealt with: the program may still end well.
  void ForgetTroubles();

  /// The latest exchange; number 0 when it went well.
  const LineFailure& LastFailure() const;

  /// To be called inside a catch: shows the pending error once, with the failure of the line behind
  /// it where the error itself doesn't name that. `action` completes "An error occurred while".
  EExitCode ReportFailure(const std::string& action);
  void SayError(const std::string& action) override { raisedcode_ = ReportFailure(action); }

  std::int32_t Troubles() const override;

  /// The wall clock in the user's time zone.
  std::chrono::local_seconds LocalTime() { return platform_.LocalTime(); }

  /// A line for the user on standard error: what went wrong, or what is good to know.
  void Say(const std::string& text) override { notices_.Tell(text); }
  void Note(const std::string& text) { notices_.Note(text); }

  /// Holds what is told from now on until `Release`, so that something else is shown before.
  void Hold() { notices_.Hold(); }
  void Release() { notices_.Release(); }

  /// The last word before the program ends. Gives the code to end with: that of `code`, unless it
  /// is `DONE` and something was told to have failed.
  EExitCode Close(EExitCode code, const std::string& command);

 private:
  EExitCode CodeOfLine() const;
  EExitCode CodeOfError(std::int32_t number) const;
  EExitCode CheckFindings();
  std::string CauseOfNoReading() const;

  // The terminal has no windows; this one stands for it.
  class CTerminalWindow final : public ui::CWindow {};

  HostOptions options_;
  CNotices& notices_;
  CTerminalWindow window_;
  CInterrupts interrupts_;
  CHostPlatform platform_;
  std::shared_ptr<LineSettings> line_;
  CHostFactory factory_;
  const Components components_;
  CInstalledComponents installed_;
  std::unique_ptr<simulator::CSimulatedLine> simulated_;
  std::shared_ptr<CFileTrace> trace_;  // null: none
  std::shared_ptr<CConfigRegistry> registry_;
  CVaneT312B instrument_;
  COutput output_;
  bool outlivesreader_ = false;
  std::optional<EExitCode> errorcode_;      // of the first error that was told
  EExitCode raisedcode_ = EExitCode::DONE;  // of the latest that a run has raised
};

}  // namespace vane::thermoscribe
