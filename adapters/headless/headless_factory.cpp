#include "adapters/headless/headless_factory.h"

#include "adapters/conversions/probe.h"
#include "adapters/files/column_file.h"
#include "adapters/files/field_reader.h"
#include "adapters/files/private_text_file.h"
#include "vane/components/memory_forms.h"

namespace vane {
namespace {

class CHeadlessProgress final : public CVaneProgress {
 public:
  void SetVisible(bool) override {}
  void Attach(ui::CWindow*) override {}
  void Hide(bool) override {}
  void Start(const std::string&, double) override {}
  bool Step(std::int32_t, std::int32_t, std::int32_t) override { return true; }
  void Finish() override {}
};

}  // namespace

std::unique_ptr<CVaneCommunications> CHeadlessFactory::MakeCommunications() {
  return std::make_unique<CSerialCommunications>(line_);
}

std::unique_ptr<CVaneProbe> CHeadlessFactory::MakeProbe() {
  return std::make_unique<CThermometerProbe>();
}

std::unique_ptr<CVaneProgress> CHeadlessFactory::MakeProgress() {
  return std::make_unique<CHeadlessProgress>();
}

std::unique_ptr<CVaneOutputFile> CHeadlessFactory::MakeOutputFile() {
  return std::make_unique<CColumnTextFile>();
}

std::unique_ptr<AwkOne> CHeadlessFactory::MakeFieldParser() {
  return std::make_unique<CFieldReader>();
}

std::unique_ptr<CVaneTextFile> CHeadlessFactory::CreateTextFile(const std::string& path) {
  return std::make_unique<CPrivateTextFile>(path);
}

std::unique_ptr<ui::CForm> CHeadlessFactory::MakeForm(const std::string& name) {
  return std::make_unique<ui::CForm>(name, std::make_unique<CUnseenView>());
}

}  // namespace vane
