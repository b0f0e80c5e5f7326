// What the library's operations make for themselves in a host without a person: a serial line,
// probes, files, a reporter that never stops a run, and windows that close by themselves. There is
// no passcode prompt and no save dialog: what needs one fails and says so.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "adapters/serial/serial_communications.h"
#include "vane/components/components.h"
#include "vane/components/registry.h"

namespace vane {

class CHeadlessFactory : public CComponentFactory {
 public:
  /// `line` says where the readout is. It stays shared, so that a host can read what failed last.
  explicit CHeadlessFactory(std::shared_ptr<LineSettings> line) : line_(std::move(line)) {}

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProbe> MakeProbe() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override;
  std::unique_ptr<AwkOne> MakeFieldParser() override;
  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override;
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override;

 private:
  std::shared_ptr<LineSettings> line_;
};

/// No values of a user: everything is as the library has it by itself.
class CEmptyRegistry final : public CVaneRegistry {
 public:
  std::int32_t ReadBoolean(const std::string&, bool fallback, std::uint32_t,
                           const std::string&) override {
    return fallback ? 1 : 0;
  }
  std::string ReadText(const std::string&, const std::string& fallback, std::uint32_t,
                       const std::string&) override {
    return fallback;
  }
  void RestoreFormPlacement(ui::CForm&, std::int32_t, bool) override {}
  void SaveFormPlacement(ui::CForm&, std::int32_t, bool) override {}
};

}  // namespace vane
