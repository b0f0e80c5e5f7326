#include "vane/channels/channel.h"

#include "vane/channels/module.h"
#include "vane/channels/probe_exchange.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"

namespace vane {
namespace {

constexpr std::int32_t kResistanceInput = 2;

}  // namespace

CVaneT312BPRTTHRMChannel::CVaneT312BPRTTHRMChannel(const Components& components)
    : components_(components) {
  Labelled(kChannelClass, "Class_Initialize", [&] {
    SetEnabled(true);
    probe_ = components.factory.MakeProbe();
    probe_->SetHelpFile(LibraryHelpFile());
    probe_->SetInputKind(kResistanceInput);
    // Both differ from the zero that the fields start with, so a new channel counts as changed.
    SetProbeIndex(-1);
    SetProbeRefResistor(ET312BProbeRefResistor::PRR_NONE);
    SetProbeCurrentFormat("0.0000");
    SetProbe3WireOffsetFormat("0.000000");
    SetFilePath(components.platform.FolderOfLibrary());
  });
}

CVaneT312BPRTTHRMChannel::~CVaneT312BPRTTHRMChannel() = default;

void CVaneT312BPRTTHRMChannel::SetFilePath(const std::string& value) {
  filepath_ = value;
  if (probe_) probe_->SetFilePath(filepath_);
}

void CVaneT312BPRTTHRMChannel::SetRegistry(const std::shared_ptr<CVaneRegistry>& vData) {
  registry_ = vData;
  if (!probe_) return;
  std::shared_ptr<CVaneRegistry> copy = registry_;
  probe_->SetRegistry(copy);
  registry_ = copy;
}

bool CVaneT312BPRTTHRMChannel::Changed() const { return changed_ || (probe_ && probe_->Changed()); }

void CVaneT312BPRTTHRMChannel::SetChanged(bool value) {
  changed_ = value;
  if (probe_) probe_->SetChanged(value);
}

}  // namespace vane
