#include "apps/thermoscribe-desktop/desktop_host.h"

#include <QCoreApplication>
#include <QDir>
#include <QMetaObject>
#include <QStandardPaths>
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <utility>

#include "adapters/qt/qt_text.h"
#include "adapters/serial/baud_rates.h"
#include "apps/snapshots/probe_sensor.h"
#include "simulator/line_server.h"
#include "vane/channels/channel.h"
#include "vane/channels/module.h"
#include "vane/support/messages.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane::desktop {
namespace {

constexpr char kSubkey[] = "Desktop";
constexpr double kIcePoint = 273.15;  // K
constexpr std::size_t kMostWaitingLines = 10'000;

EVaneBaudRate BaudOf(const std::string& bits) {
  for (const BaudRateRow& row : BaudRates()) {
    if (std::to_string(row.bits) == bits) return row.rate;
  }
  return EVaneBaudRate::BR_9600;
}

// Empty for a port of the machine's own.
std::string AdapterName(const SerialPortRecord& port) {
  return port.id.empty() ? std::string() : port.id + " " + port.serialnumber;
}

std::string AdapterAt(const std::vector<SerialPortRecord>& ports, const std::string& path) {
  const auto port = std::ranges::find(ports, path, &SerialPortRecord::path);
  return port == ports.end() ? std::string() : AdapterName(*port);
}

// Raised for the time of something that has the line.
class CTurn {
 public:
  explicit CTurn(bool& busy) : busy_(busy) { busy_ = true; }
  ~CTurn() { busy_ = false; }
  CTurn(const CTurn&) = delete;
  CTurn& operator=(const CTurn&) = delete;

 private:
  bool& busy_;
};

// For files that the user gives no place.
std::string DocumentsFolder() {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return FromQt(QDir(documents).exists() ? documents : QDir::homePath());
}

}  // namespace

std::string Connection::Text() const {
  if (simulated) return "Simulated readout";
  const BaudRateRow* const row = FindBaudRate(baud);
  return port + (row == nullptr ? "" : ", " + std::to_string(row->bits) + " bit/s");
}

// Called on the line's thread; hands on to the window's, in one go what has come meanwhile.
class CDesktopHost::CTrace final : public CLineTrace, public std::enable_shared_from_this<CTrace> {
 public:
  explicit CTrace(std::function<void(const TraceLine& line)> observer)
      : observer_(std::move(observer)) {}

  void Record(ETraceMark mark, std::string_view text) override {
    const std::lock_guard lock(mutex_);
    if (lines_.size() == kMostWaitingLines) lines_.pop_front();
    lines_.push_back({std::chrono::system_clock::now(), mark, std::string(text)});
    if (std::exchange(isposted_, true)) return;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [self = weak_from_this()] {
          if (const auto trace = self.lock()) trace->Deliver();
        },
        Qt::QueuedConnection);
  }

 private:
  void Deliver() {
    std::deque<TraceLine> lines;
    {
      const std::lock_guard lock(mutex_);
      lines.swap(lines_);
      isposted_ = false;
    }
    for (const TraceLine& line : lines) observer_(line);
  }

  const std::function<void(const TraceLine& line)> observer_;
  std::mutex mutex_;
  std::deque<TraceLine> lines_;
  bool isposted_ = false;
};

CDesktopHost::CDesktopHost(std::function<bool(std::int32_t context)> help)
    : platform_(std::move(help)),
      factory_(line_),
      components_{platform_, factory_},
      installed_(components_),
      registry_(std::make_shared<CConfigRegistry>([this](const std::string& trouble) {
        if (trouble_) trouble_(trouble);
      })) {
  SetLibraryHelpFile("VaneT312B");
}

CDesktopHost::~CDesktopHost() { Disconnect(); }

std::optional<Connection> CDesktopHost::LastConnection(
    const std::vector<SerialPortRecord>& ports) const {
  const auto text = [&](const char* name) {
    return registry_->ReadText(name, "", kCurrentUserRoot, kSubkey);
  };
  Connection connection;
  connection.simulated = text("Simulated") == "yes";
  connection.port = text("Port");
  if (!connection.simulated && connection.port.empty()) return std::nullopt;
  connection.baud = BaudOf(text("Baud"));
  const std::int64_t timeout = std::atoll(text("Timeout").c_str());
  if (timeout > 0) connection.timeout = std::chrono::milliseconds(timeout);
  const std::string adapter = text("Adapter");
  // Two adapters without a serial number may have the same name; then the path decides.
  if (adapter.empty() || AdapterAt(ports, connection.port) == adapter) return connection;
  const auto moved = std::ranges::find(ports, adapter, AdapterName);
  connection.port = moved == ports.end() ? std::string() : moved->path;
  return connection;
}

bool CDesktopHost::Connect(const Connection& connection, ui::CWindow* owner) {
  if (IsBusy()) return false;
  Disconnect();
  bool isdone = false;
  Run("connecting to the readout", [&] {
    connection_ = connection;
    line_->timeout = connection.timeout;
    line_->firsttrouble = {};
    if (connection.simulated) {
      simulated_ = std::make_unique<simulator::CSimulatedLine>(
          simulator::ParseOptions(connection.simulatoroptions));
      simulated_->Start();
      line_->devices[EVanePortNumber::PORT_1] = simulated_->Path();
      line_->devicename = "the simulated line";
    } else {
      line_->devices[EVanePortNumber::PORT_1] = connection.port;
      line_->devicename = "";
    }
    instrument_ = std::make_unique<CVaneT312B>(components_);
    instrument_->SetRegistry(registry_);
    instrument_->SetFilePath(DocumentsFolder());
    instrument_->SetReadAfterApply(true);
    instrument_->InitializeCommunications({}, EVanePortNumber::PORT_1, connection.baud);
    if (!instrument_->InitializeCommunicationSettings()) return;
    if (!instrument_->QueryChannelInfo()) {
      // A readout of another kind, or none: the library says nothing of a silent one.
      if (line_->lastfailure.number == 0) {
        ShowMessage("On the line is \"" + instrument_->Identification() + "\", which is no " +
                    kReadoutModel + ".");
      } else if (instrument_->Identification().empty()) {
        ShowMessage(line_->lastfailure.description);
      }
      return;
    }
    identification_ = instrument_->Identification();
    isdone = instrument_->QueryInfo(owner) && ReadChannels();
  });
  if (!isdone) {
    Disconnect();
    return false;
  }
  registry_->WriteText("Simulated", connection.simulated ? "yes" : "no", kSubkey);
  if (!connection.simulated) {
    registry_->WriteText("Port", connection.port, kSubkey);
    registry_->WriteText("Adapter", AdapterAt(ListSerialPorts(), connection.port), kSubkey);
    registry_->WriteText("Baud", std::to_string(FindBaudRate(connection.baud)->bits), kSubkey);
    registry_->WriteText("Timeout", std::to_string(connection.timeout.count()), kSubkey);
  }
  return true;
}

void CDesktopHost::BeginToEnd() {
  platform_.BeginToEnd();
  factory_.BeginToEnd();
  if (instrument_) instrument_->CancelWait();
}

void CDesktopHost::Disconnect() {
  instrument_.reset();
  simulated_.reset();
  channels_.clear();
  thermometers_.clear();
}

std::string CDesktopHost::ModuleText(std::int16_t idx) const {
  const CModule& md = *instrument_->Modules(idx);
  return md.Model() + ", " + std::to_string(md.NumChannels()) + " channels";
}

bool CDesktopHost::ReadChannels() {
  std::vector<ChannelRow> rows;
  for (std::int16_t number = 0; number < instrument_->NumModules(); ++number) {
    CModule& md = *instrument_->Modules(number);
    if (!md.QueryInfo(nullptr, false)) return false;
    for (std::int16_t idx = 0; idx < md.NumChannels(); ++idx) {
      const CVaneT312BPRTTHRMChannel& channel = *md.Channels(idx);
      rows.push_back({channel.ActualChannel(),
                      instrument_->GetScanSeqChannelName(channel.ActualChannel()),
                      channel.Enabled(), channel.ProbeIndex()});
    }
  }
  channels_ = std::move(rows);
  thermometers_.clear();
  return true;
}

void CDesktopHost::ReadThermometer(std::int16_t channel) {
  CVaneT312BPRTTHRMChannel* const object = instrument_->GetChannelReference(channel);
  if (object == nullptr || !object->QueryInfo(nullptr)) return;
  Thermometer thermometer{{}, 0, 0};
  const ET312BProbeRefResistor reference = object->ProbeRefResistor();
  if (reference != ET312BProbeRefResistor::PRR_NONE) {
    thermometer.reference =
        instrument_->CalParams(ET312BCalParams{static_cast<std::int32_t>(reference)});
  }
  try {
    const physics::Record record =
        thermoscribe::PhysicsRecordOf(thermoscribe::ProbeRecord(*object));
    thermometer.sensor.emplace(record);
    thermometer.base = physics::BaseOfW(record);
  } catch (const std::invalid_argument&) {
    // A resistor, or a probe that isn't calibrated.
  }
  thermometers_.insert_or_assign(channel, std::move(thermometer));
}

std::optional<double> CDesktopHost::CelsiusOf(std::int16_t channel, double reading) const {
  const auto found = thermometers_.find(channel);
  if (found == thermometers_.end() || !found->second.sensor) return std::nullopt;
  double ohms = reading;
  if (instrument_->Units() == ET312BUnits::UNITS_RATIO) ohms *= found->second.reference;
  if (instrument_->Units() == ET312BUnits::UNITS_W) ohms *= found->second.base;
  try {
    return found->second.sensor->Temperature(ohms).value - kIcePoint;
  } catch (const std::domain_error&) {
    return std::nullopt;
  }
}

std::vector<std::string> CDesktopHost::OddThingsOf(std::int16_t channel) const {
  const CVaneT312BPRTTHRMChannel* const object = instrument_->GetChannelReference(channel);
  if (object == nullptr) return {};
  std::vector<std::string> texts;
  for (const std::string& text : thermoscribe::OddThingsAbout(thermoscribe::ProbeRecord(*object))) {
    texts.push_back("Probe " + std::to_string(object->ProbeIndex()) + " is odd. " + text);
  }
  return texts;
}

void CDesktopHost::Run(const std::string& action, const std::function<void()>& body) {
  if (IsBusy()) return;
  const CTurn turn(busy_);
  try {
    body();
  } catch (...) {
    ShowError(action, kCompanyName, {}, 0);
  }
  SetBusyCursor(false);
}

std::string CDesktopHost::Exchange(const std::function<void()>& body) {
  const CTurn turn(busy_);
  line_->lastfailure = {};
  try {
    body();
    return {};
  } catch (const LibraryError& error) {
    return error.Description();
  } catch (const std::exception& error) {
    return error.what();
  }
}

bool CDesktopHost::IsBusy() const { return busy_ || ui::CForm::Active() != nullptr; }

bool CDesktopHost::FindSameReadout() {
  if (!instrument_->QueryIdentification(false) ||
      instrument_->Identification() != identification_) {
    return false;
  }
  return instrument_->QueryInfo();
}

bool CDesktopHost::HasNewReading() {
  CVaneCommunications& line = *instrument_->Communications();
  line.params().ClearAll();
  return Contains(line.ReadSetting(ECommand::READ_NEW_DATA), "1");
}

void CDesktopHost::SetTrace(std::function<void(const TraceLine& line)> observer) {
  line_->trace = observer ? std::make_shared<CTrace>(std::move(observer)) : nullptr;
}

}  // namespace vane::desktop
