// The least that a host needs: finds the readout on a serial device, names its channels, takes one
// reading. Nobody is asked anything; what the library has to say goes to standard error.
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "vane/instrument/t312b.h"

namespace {

void Run(vane::CVaneT312B& readout) {
  readout.SetRegistry(std::make_shared<vane::CEmptyRegistry>());
  readout.InitializeCommunications();
  if (!readout.QueryChannelInfo()) throw std::runtime_error("The readout can't be used.");

  std::cout << readout.Model() << ", firmware " << readout.Firmware() << '\n';
  for (std::int16_t chn = 1; chn <= readout.NumChannels(); ++chn) {
    std::cout << "Channel " << chn << ": " << readout.GetScanSeqChannelName(chn) << '\n';
  }
  // Input 1 carries the scanner where there is one; input 2 is always a thermometer's.
  std::cout << readout.GetScanSeqChannelName(2) << " reads " << readout.QueryMeasurement(2) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: minimal_host DEVICE\n";
    return 2;
  }
  const auto line = std::make_shared<vane::LineSettings>();
  line->devices[vane::EVanePortNumber::PORT_1] = argv[1];
  vane::CHeadlessPlatform platform;
  vane::CHeadlessFactory factory(line);
  const vane::Components components{platform, factory};
  const vane::CInstalledComponents installed(components);
  int status = 0;
  try {
    vane::CVaneT312B readout(components);
    Run(readout);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    status = 1;
  }
  for (const vane::HeadlessMessage& message : platform.TakeMessages()) {
    std::cerr << message.text << '\n';
  }
  return status;
}
