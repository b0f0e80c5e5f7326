// The host program's side of the library: the terminal as the platform, the serial line or a
// simulated readout at its end, and the instrument object on top.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/interrupts.h"
#include "adapters/terminal/terminal_platform.h"
#include "apps/thermoscribe/exit_codes.h"
#include "apps/thermoscribe/instrument_properties.h"
#include "apps/thermoscribe/output.h"
#include "simulator/line_server.h"
#include "vane/components/components.h"
#include "vane/components/ui.h"
#include "vane/instrument/t312b.h"

namespace vane {

/// The options that every command takes.
struct HostOptions {
  std::string port;  ///< device path; empty: the first serial port of the machine
  std::optional<simulator::Options> simulated;
  EVaneBaudRate baud = EVaneBaudRate::BR_9600;
  std::chrono::milliseconds timeout{1000};
  std::string tracefile;     ///< empty: no trace
  std::string passcodefile;  ///< path or number of a descriptor; empty: ask on the terminal
  bool json = false;
  bool progress = false;
};

/// The latest text file of columns.
struct WrittenFile {
  std::string path;        ///< empty: none was finished
  bool cancelled = false;  ///< whether the user gave up the question for its name
};

/// Makes what the library's operations need for themselves.
class CHostFactory final : public CComponentFactory {
 public:
  CHostFactory(std::shared_ptr<LineSettings> line, CInterrupts& interrupts,
               std::string passcodefile)
      : line_(std::move(line)), interrupts_(interrupts), passcodefile_(std::move(passcodefile)) {}

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProbe> MakeProbe() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override;
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override;
  std::unique_ptr<CVaneFileDialog> MakeFileDialog() override;
  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override;
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override;

  const WrittenFile& LatestFile() const { return latestfile_; }

 private:
  std::shared_ptr<LineSettings> line_;
  CInterrupts& interrupts_;
  const std::string passcodefile_;
  WrittenFile latestfile_;
};

/// One object per process, on the main thread. From its making on, Ctrl-C ends a wait of the
/// library and raises `IsInterrupted`, and nothing more.
class CHost {
 public:
  explicit CHost(HostOptions options);
  CHost(const CHost&) = delete;
  CHost& operator=(const CHost&) = delete;

  /// Opens the line, proves the instrument and finds out its modules and channels. When the result
  /// is not `DONE` the user has been told why.
  EExitCode Connect();

  /// `Connect`, and then reads all settings of the instrument and its scanner, but not the modules'
  /// channels. When the result is not `DONE` the user has been told why, or the run was stopped.
  EExitCode ReadSettings();

  /// Opens editing of the groups of `gates` for this command, with the passcode where one of them
  /// is protected; the user is asked at most once. After `ReadSettings`. `DONE`, or why not.
  EExitCode OpenGates(std::span<const EGate> gates);

  /// From now on no write is sent: its line goes to the output instead, as it would go out. Reads
  /// are sent as ever.
  void StartDryRun();

  /// Use it after `Connect`.
  CVaneT312B& Instrument() { return instrument_; }
  COutput& Output() { return output_; }

  /// The owner of the display of a long read; null unless the user wants to see one.
  ui::CWindow* ProgressWindow() { return options_.progress ? &window_ : nullptr; }

  /// Why a run of the library that gave false has ended; the user has been told.
  EExitCode CodeOfStoppedRun() const;

  /// True once the user has pressed Ctrl-C, from then on.
  bool IsInterrupted() const { return interrupts_.Pending(); }

  const WrittenFile& LatestFile() const { return factory_.LatestFile(); }

  /// The latest exchange; number 0 when it went well.
  const LineFailure& LastFailure() const { return line_->lastfailure; }

  /// To be called inside a catch: shows the pending error once, with the failure of the line behind
  /// it where the error itself doesn't name that. `action` completes "An error occurred while".
  EExitCode ReportFailure(const std::string& action);

  /// The wall clock in the user's time zone.
  std::chrono::local_seconds LocalTime() { return platform_.LocalTime(); }

  /// A line for the user on standard error.
  static void Say(const std::string& text);

 private:
  std::string CauseOfNoReading(EExitCode code) const;

  // The terminal has no windows; this one stands for it.
  class CTerminalWindow final : public ui::CWindow {};

  HostOptions options_;
  CTerminalWindow window_;
  CInterrupts interrupts_;
  CTerminalPlatform platform_;
  std::shared_ptr<LineSettings> line_;
  CHostFactory factory_;
  const Components components_;
  CInstalledComponents installed_;
  std::unique_ptr<simulator::CSimulatedLine> simulated_;
  CVaneT312B instrument_;
  COutput output_;
};

}  // namespace vane
