#include "vane/topology/topology.h"

#include <string>
#include <utility>

#include "vane/instrument/operations.h"
#include "vane/support/exchange.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

constexpr std::int16_t kMaxModules = 2;

// The number of scanners on an instrument whose firmware can't count them: 0 or 1. A scanner
// answers for its scan mode, within one try so that its absence costs little time, and scan step 1
// takes the number of its last channel and gives it back. Nothing that fails here is a failure: an
// absent scanner is the normal case. The step gets its old channel back.
std::int16_t ProbeForScanner(CVaneCommunications& line) {
  CPendingFailure failure;
  std::int32_t tries = 0;
  failure.Try([&] { tries = line.COMPort().ReadTries(); });
  failure.Try([&] { line.COMPort().SetReadTries(1); });
  failure.Try([&] { line.ReadSetting(ECommand::READ_SCANNER_SCAN_MODE); });
  failure.Try([&] { line.COMPort().SetReadTries(tries); });
  if (failure.IsSet()) return 0;

  const std::string last = std::to_string(kScannerChannels);
  std::int16_t kept = 0;
  bool found = false;
  failure.Try([&] {
    line.params().ClearAll();
    line.params().Index = "1";
  });
  failure.Try(
      [&] { kept = ToInteger(NumberFromText(line.ReadSetting(ECommand::READ_SCAN_STEP))); });
  failure.Try([&] {
    line.params().Channel = "0";
    line.WriteSetting(ECommand::WRITE_SCAN_STEP);
  });
  failure.Try([&] {
    line.params().Channel = last;
    line.WriteSetting(ECommand::WRITE_SCAN_STEP);
  });
  failure.Try([&] {
    found = NumberFromText(line.ReadSetting(ECommand::READ_SCAN_STEP)) == kScannerChannels;
  });
  failure.Try([&] {
    line.params().Channel = std::to_string(kept);
    line.WriteSetting(ECommand::WRITE_SCAN_STEP);
  });
  return found ? 1 : 0;
}

}  // namespace

bool CTopology::QueryNumModules() {
  return Exchange(instrument_, "QueryNumModules", [&] {
    SetNumModules(0);
    CVaneCommunications& line = LineOf(instrument_);
    line.params().ClearAll();
    std::int32_t count = 0;
    if (instrument_.VerifyMinimumFirmware()) {
      count = ToInteger(NumberFromText(line.ReadSetting(ECommand::READ_SCANNER_MODULES))) + 1;
    } else {
      line.ReadSetting(ECommand::READ_IDENTIFICATION);
      count = 1 + ProbeForScanner(line);
    }
    SetNumModules(ToInteger(count));
    return true;
  });
}

bool CTopology::QueryNumChannels() {
  return Exchange(instrument_, "QueryNumChannels", [&] {
    numchannels_ = 0;
    CVaneCommunications& line = LineOf(instrument_);
    line.params().ClearAll();
    if (instrument_.VerifyMinimumFirmware()) {
      numchannels_ = ToInteger(NumberFromText(line.ReadSetting(ECommand::READ_CHANNEL_COUNT)));
    } else {
      line.ReadSetting(ECommand::READ_IDENTIFICATION);
      numchannels_ = kNumInputs;
      numchannels_ =
          static_cast<std::int16_t>(kNumInputs + ProbeForScanner(line) * kScannerChannels);
    }
    return true;
  });
}

void CTopology::SetNumModules(std::int16_t value) {
  AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_SETUP_MODULES); },
             [&] {
               Rebuild(value);
               return true;
             });
}

// The array has one entry more than there are modules; the last one stays empty.
void CTopology::Rebuild(std::int16_t value) {
  if (value == 0) {
    modules_.clear();
    nummodules_ = 0;
    modules_.resize(1);
    instrument_.SetChanged(true);
    return;
  }
  if (value < 0 || value > kMaxModules) {
    throw LibraryError(ERR_INVALID_MODULE, InstrumentLabel("NumModules"),
                       ResourceText(EText::INVALID_MODULE_INDEX));
  }
  if (value != nummodules_) {
    instrument_.SetChanged(true);
    nummodules_ = value;
    modules_.resize(static_cast<std::size_t>(value) + 1);
    modules_.back().reset();
  }
  std::int16_t next = 1;
  for (std::int16_t i = 0; i < nummodules_; ++i) {
    std::unique_ptr<CModule>& md = modules_[static_cast<std::size_t>(i)];
    md.reset();
    if (i == 0) {
      md = std::make_unique<CVaneT312BBaseModule>(components_);
    } else {
      md = std::make_unique<CVaneM420Multiplexer>(components_);
      // Input 1 carries the scanner while one is attached.
      modules_[0]->Channels(0)->SetEnabled(false);
    }
    instrument_.SetChanged(true);
    md->SetRegistry(instrument_.Registry());
    md->SetFilePath(instrument_.FilePath());
    md->SetBaseUnit(&instrument_);
    md->SetModuleNumber(i);
    md->SetStartChannel(next);
    next = static_cast<std::int16_t>(md->StartChannel() + md->NumChannels());
    for (std::int16_t j = 0; j < md->NumChannels(); ++j) {
      md->Channels(j)->SetActualChannel(static_cast<std::int16_t>(j + md->StartChannel()));
    }
  }
}

CModule* CTopology::Module(std::int16_t idx) const {
  if (idx < 0 || idx >= kMaxModules) {
    throw LibraryError(ERR_INVALID_MODULE, InstrumentLabel("Modules"),
                       ResourceText(EText::INVALID_MODULE_INDEX));
  }
  const auto place = static_cast<std::size_t>(idx);
  return place < modules_.size() ? modules_[place].get() : nullptr;
}

CVaneT312BPRTTHRMChannel* CVaneT312B::GetChannelReference(std::int16_t chn) const {
  return Labelled("CVaneT312B", "GetChannelReference()", [&]() -> CVaneT312BPRTTHRMChannel* {
    if (chn < 1 || chn > NumChannels()) return nullptr;
    for (std::int16_t idx = NumModules(); idx-- > 0;) {
      const CModule* const md = Modules(idx);
      if (md != nullptr && md->StartChannel() <= chn) {
        return md->Channels(static_cast<std::int16_t>(chn - md->StartChannel()));
      }
    }
    return nullptr;
  });
}

std::string CVaneT312B::GetScanSeqChannelName(std::int16_t chn) const {
  if (chn > kNumInputs)
    return ResourceText(EText::SCANNER) + " " + std::to_string(ScannerChannel(chn));
  return ResourceText(EText::INPUT) + " " + std::to_string(chn);
}

void CVaneT312B::SetSelectedChannel(std::int16_t value) {
  if (value > NumChannels() - 1) {
    throw LibraryError(ERR_INVALID_CHANNEL, InstrumentLabel("SelectedChannel"),
                       ResourceText(EText::INVALID_CHANNEL_INDEX));
  }
  selectedchannel_ = value;
}

}  // namespace vane
