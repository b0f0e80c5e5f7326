// The desktop program's side of the library: its windows, the line with a readout or a simulated
// one at its end, and the instrument object on top. No widget of the program's own.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/files/config_registry.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/serial/serial_ports.h"
#include "apps/thermoscribe-desktop/desktop_components.h"
#include "physics/sensor.h"
#include "vane/components/components.h"
#include "vane/components/ui.h"
#include "vane/instrument/t312b.h"

namespace vane::simulator {
class CSimulatedLine;
}

namespace vane::desktop {

/// Where the readout is.
struct Connection {
  bool simulated = false;
  std::string simulatoroptions;  ///< as of `thermoscribe-sim`
  std::string port;
  EVaneBaudRate baud = EVaneBaudRate::BR_9600;
  std::chrono::milliseconds timeout{1000};

  /// For people.
  std::string Text() const;
};

struct ChannelRow {
  std::int16_t channel = 0;
  std::string name;
  bool enabled = false;
  std::int16_t probe = -1;
};

/// One line that went over the wire, as a trace shows it.
struct TraceLine {
  std::chrono::system_clock::time_point time;
  ETraceMark mark;
  std::string text;
};

class CDesktopHost {
 public:
  explicit CDesktopHost(std::function<bool(std::int32_t context)> help);
  ~CDesktopHost();
  CDesktopHost(const CDesktopHost&) = delete;
  CDesktopHost& operator=(const CDesktopHost&) = delete;

  CDesktopPlatform& Platform() { return platform_; }
  CConfigRegistry& Registry() { return *registry_; }

  /// What the configuration's file has to say against itself.
  void OnTrouble(std::function<void(const std::string&)> observer) {
    trouble_ = std::move(observer);
  }

  /// The connection of the last time that worked, among these ports of the machine. A USB adapter
  /// is known again by its id and serial number, whatever its path has become; where it isn't
  /// there, the port is empty: another one in its place isn't taken for it.
  std::optional<Connection> LastConnection(
      const std::vector<SerialPortRecord>& ports = ListSerialPorts()) const;

  /// Opens the line, proves the readout, finds out its channels and reads its settings; `owner` is
  /// the window of the progress. False when the user has been told why not; then nothing is
  /// connected. Closes what was connected before.
  bool Connect(const Connection& connection, ui::CWindow* owner);
  void Disconnect();
  /// The program is about to end: what the library is doing ends as soon as its present exchange is
  /// over, and no box comes up any more.
  void BeginToEnd();
  bool IsConnected() const { return instrument_ != nullptr; }

  /// While connected.
  CVaneT312B& Instrument() { return *instrument_; }
  const Connection& Current() const { return connection_; }
  const std::vector<ChannelRow>& Channels() const { return channels_; }
  /// "T312B, 2 channels".
  std::string ModuleText(std::int16_t idx) const;
  /// Reads anew which channels are in use and with which probe, and forgets their thermometers.
  bool ReadChannels();

  /// Reads the record of the channel's probe, for `CelsiusOf`. Raises what the line raises.
  void ReadThermometer(std::int16_t channel);
  bool KnowsThermometer(std::int16_t channel) const { return thermometers_.contains(channel); }
  /// What a reading in ohms, of the ratio or of W means in °C by the record of the channel's probe,
  /// computed here; nothing for one that gives no temperature.
  std::optional<double> CelsiusOf(std::int16_t channel, double reading) const;

  /// What is odd about the record that the channel's object holds, as sentences for the user.
  std::vector<std::string> OddThingsOf(std::int16_t channel) const;

  /// Runs something of the library that has the line for itself, and shows what it raises.
  /// `action` completes "An error occurred while". Nothing when the line is busy.
  void Run(const std::string& action, const std::function<void()>& body);
  /// Runs one exchange without a word to the user; gives the description of what it raised, or
  /// nothing.
  std::string Exchange(const std::function<void()>& body);
  /// Whether something has the line, or a window of the library is up.
  bool IsBusy() const;

  /// Asks who is on the line, without a word to the user, and reads the settings of the readout
  /// that was connected. False for another one. Raises what the line raises.
  bool FindSameReadout();

  /// Whether there is a reading that nobody has fetched. Raises what the line raises.
  bool HasNewReading();
  /// The latest reading, as the readout has sent it.
  const std::string& ReadingText() const { return factory_.ReadingText(); }

  /// How often an exchange has failed or a box has told something so far.
  std::int32_t Troubles() const { return line_->failures + platform_.Boxes(); }
  /// Whether the user has stopped a run since `ForgetStop`, or the program is about to end.
  bool IsStopped() const { return factory_.IsStopped(); }
  void ForgetStop() { factory_.ForgetStop(); }
  /// Makes the progress of each run from now on; null: a window for each.
  void SetProgress(std::function<std::unique_ptr<CVaneProgress>()> maker) {
    factory_.SetProgress(std::move(maker));
  }

  /// What the latest exchange has met; number 0 for nothing.
  const LineFailure& LastFailure() const { return line_->lastfailure; }

  /// From now on hears of all lines, on this thread. Null ends it.
  void SetTrace(std::function<void(const TraceLine& line)> observer);

 private:
  class CTrace;
  struct Thermometer {
    std::optional<physics::CSensor> sensor;
    double reference;  // ohms of its reference resistor
    double base;       // ohms that W counts from; 0: there are none
  };

  std::function<void(const std::string&)> trouble_;
  CDesktopPlatform platform_;
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  CDesktopFactory factory_;
  const Components components_;
  CInstalledComponents installed_;
  std::shared_ptr<CConfigRegistry> registry_;
  std::unique_ptr<simulator::CSimulatedLine> simulated_;
  std::unique_ptr<CVaneT312B> instrument_;
  Connection connection_;
  std::string identification_;
  std::vector<ChannelRow> channels_;
  std::map<std::int16_t, Thermometer> thermometers_;
  bool busy_ = false;
};

}  // namespace vane::desktop
