// The least that a host needs: finds the readout on a serial device, names its channels, takes one
// reading.
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "adapters/conversions/probe.h"
#include "adapters/files/registry.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/terminal_platform.h"
#include "adapters/terminal/terminal_progress.h"
#include "vane/instrument/t312b.h"

class CFactory : public vane::CComponentFactory {
 public:
  CFactory(vane::CInterrupts& interrupts, const std::string& device) : interrupts_(interrupts) {
    line_->devices[vane::EVanePortNumber::PORT_1] = device;
  }
  std::unique_ptr<vane::CVaneCommunications> MakeCommunications() override {
    return std::make_unique<vane::CSerialCommunications>(line_);
  }
  std::unique_ptr<vane::CVaneProbe> MakeProbe() override {
    return std::make_unique<vane::CThermometerProbe>();
  }
  std::unique_ptr<vane::CVaneProgress> MakeProgress() override {
    return std::make_unique<vane::CTerminalProgress>(interrupts_);
  }

 private:
  vane::CInterrupts& interrupts_;
  std::shared_ptr<vane::LineSettings> line_ = std::make_shared<vane::LineSettings>();
};

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("Usage: minimal_host DEVICE");
  vane::CInterrupts interrupts;
  vane::CTerminalPlatform platform(interrupts);
  CFactory factory(interrupts, argv[1]);
  const vane::Components components{platform, factory};
  const vane::CInstalledComponents installed(components);

  vane::CVaneT312B readout(components);
  readout.SetRegistry(std::make_shared<vane::CConfigRegistry>(
      [](const std::string& trouble) { std::cerr << trouble << '\n'; }));
  readout.InitializeCommunications();
  if (!readout.QueryChannelInfo()) throw std::runtime_error("The readout can't be used.");

  std::cout << readout.Model() << ", firmware " << readout.Firmware() << '\n';
  for (std::int16_t chn = 1; chn <= readout.NumChannels(); ++chn) {
    std::cout << "Channel " << chn << ": " << readout.GetScanSeqChannelName(chn) << '\n';
  }
  // Input 1 carries the scanner where there is one; input 2 is always a thermometer's.
  std::cout << readout.GetScanSeqChannelName(2) << " reads " << readout.QueryMeasurement(2) << '\n';
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
