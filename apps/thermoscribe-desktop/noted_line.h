// The line of a live view, which wants a reading as the readout has sent it: the library gives
// numbers, and the digits of a reading say how finely the readout resolves it.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "vane/components/communications.h"

namespace vane::desktop {

class CNotedLine final : public CVaneCommunications {
 public:
  /// `line` is not null; `reading` keeps the text of the latest reading.
  CNotedLine(std::unique_ptr<CVaneCommunications> line, std::shared_ptr<std::string> reading)
      : line_(std::move(line)), reading_(std::move(reading)) {}

  CommandParams& params() override { return line_->params(); }
  CVaneCOMPort& COMPort() override { return line_->COMPort(); }
  void SetDataPath(const std::string& path) override { line_->SetDataPath(path); }
  void SetInstrumentKind(std::int32_t kind) override { line_->SetInstrumentKind(kind); }
  void WriteSetting(ECommand id) override { line_->WriteSetting(id); }

  std::string ReadSetting(ECommand id, bool flag, const std::string& text) override {
    std::string reply = line_->ReadSetting(id, flag, text);
    if (id == ECommand::READ_MEASUREMENT || id == ECommand::READ_SCANNER_MEASUREMENT) {
      *reading_ = reply;
    }
    return reply;
  }

 private:
  const std::unique_ptr<CVaneCommunications> line_;
  const std::shared_ptr<std::string> reading_;
};

}  // namespace vane::desktop
