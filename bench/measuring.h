// What the benchmarks share: times, medians, and a host with the real components.
#pragma once

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/conversions/probe.h"
#include "adapters/files/column_file.h"
#include "adapters/files/private_text_file.h"
#include "adapters/files/registry.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/terminal_platform.h"
#include "adapters/terminal/terminal_progress.h"
#include "vane/components/components.h"
#include "vane/components/memory_forms.h"

namespace vane::bench {

using Clock = std::chrono::steady_clock;

inline double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double MedianOf(std::vector<double> numbers) {
  std::ranges::sort(numbers);
  return (numbers[(numbers.size() - 1) / 2] + numbers[numbers.size() / 2]) / 2;
}

/// All real but the windows, which nobody sees.
class CFactory : public CComponentFactory {
 public:
  CFactory(CInterrupts& interrupts, std::shared_ptr<LineSettings> line)
      : interrupts_(interrupts), line_(std::move(line)) {}

  std::unique_ptr<CVaneCommunications> MakeCommunications() override {
    return std::make_unique<CSerialCommunications>(line_);
  }
  std::unique_ptr<CVaneProbe> MakeProbe() override { return std::make_unique<CThermometerProbe>(); }
  std::unique_ptr<CVaneProgress> MakeProgress() override {
    return std::make_unique<CTerminalProgress>(interrupts_);
  }
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override {
    return std::make_unique<CColumnTextFile>();
  }
  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override {
    return std::make_unique<CPrivateTextFile>(path);
  }
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override {
    return forms_.Make(name);
  }

  CMemoryForms& Forms() { return forms_; }

 private:
  CInterrupts& interrupts_;
  std::shared_ptr<LineSettings> line_;
  CMemoryForms forms_;
};

/// A file that is not there: no setting of the user's changes what is measured.
inline std::shared_ptr<CVaneRegistry> EmptyRegistry() {
  return std::make_shared<CConfigRegistry>([](const std::string&) {}, "/dev/null");
}

}  // namespace vane::bench
