#include "vane/channels/module.h"

#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

constexpr ModuleKind kInputs{"CVaneT312BBaseModule", kReadoutModel, kNumInputs};
constexpr ModuleKind kScanner{"CVaneM420Multiplexer", kScannerModel, kScannerChannels};

}  // namespace

CVaneT312BBaseModule::CVaneT312BBaseModule(const Components& components)
    : CModule(kInputs, components) {}

CVaneM420Multiplexer::CVaneM420Multiplexer(const Components& components)
    : CModule(kScanner, components) {}

CModule::CModule(const ModuleKind& kind, const Components& components)
    : kind_(kind), components_(components) {
  Labelled(kind_.classname, "Class_Initialize", [&] {
    SetModel(kind_.model);
    SetModuleName(kind_.model);
    SetStartChannel(-1);
    for (std::int16_t number = 1; number <= NumChannels(); ++number) {
      auto& channel =
          channels_.emplace_back(std::make_unique<CVaneT312BPRTTHRMChannel>(components_));
      channel->SetModuleChannel(number);
      channel->SetModule(this);
    }
    SetFilePath(components_.platform.FolderOfLibrary());
    SetChanged(false);
  });
}

CModule::~CModule() = default;

void CModule::SetFilePath(const std::string& value) {
  filepath_ = value;
  for (const auto& channel : channels_) channel->SetFilePath(filepath_);
}

void CModule::SetRegistry(const std::shared_ptr<CVaneRegistry>& Reg) {
  registry_ = Reg;
  for (const auto& channel : channels_) channel->SetRegistry(registry_);
}

CVaneT312BPRTTHRMChannel* CModule::Channels(std::int16_t idx) const {
  if (idx < 0 || idx >= NumChannels()) {
    throw LibraryError(ERR_INVALID_CHANNEL, OperationLabel(kind_.classname, "Get Channels"),
                       ResourceText(EText::INVALID_CHANNEL_INDEX));
  }
  return channels_[static_cast<std::size_t>(idx)].get();
}

bool CModule::QueryInfo(ui::CWindow* frm, bool inclchannels) {
  return Labelled(kind_.classname, "QueryInfo", [&] {
    return RunLong(components_, kReadRun, frm, [&](CLongRun& run) {
      if (inclchannels) {
        for (const auto& channel : channels_) channel->QueryInfo(frm);
        return true;
      }
      run.Start(ResourceText(EText::READING_PROBE_INDEXES), PercentShare(NumChannels()));
      for (std::int16_t idx = 0; idx < NumChannels(); ++idx) {
        const bool goon =
            run.Step({std::to_string(idx + 1) + " " + ResourceText(EText::PROBE_INDEX),
                      [&] { return Channels(idx)->QueryProbeIndex(); }});
        if (!goon) return false;
      }
      return true;
    });
  });
}

}  // namespace vane
