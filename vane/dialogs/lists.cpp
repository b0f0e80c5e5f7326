// The fillers of lists: the choices of a setting, each with its code, for this library's dialogs
// and for a host's own.

#include <span>
#include <string_view>

#include "vane/channels/module.h"
#include "vane/channels/probe_exchange.h"
#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/display_texts.h"
#include "vane/support/failure.h"
#include "vane/support/numbering.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

constexpr std::int32_t kKeepExisting = -1;

// The codes of lists whose entries are fixed, in their order.
constexpr std::int32_t kFilterTypes[] = {0, 1, 2};
constexpr std::int32_t kTemperatureUnits[] = {0, 1, 2};
constexpr std::int32_t kOtherUnits[] = {4, 6, 10};
constexpr std::int32_t kSampleActions[] = {0, 1, 2};
constexpr std::int32_t kOvens[] = {0, 1};
constexpr std::int32_t kInputModes[] = {0, 1, 2};
constexpr std::int32_t kScannerModes[] = {3, 4};
constexpr std::int32_t kScannerScanModes[] = {1, 2, 3, 4, 5};
constexpr std::int32_t kExternalResistor[] = {0};
constexpr std::int32_t kInternalResistors[] = {1, 2, 3, 4};
constexpr std::int32_t kConversionTypes[] = {0, 1, 2, 14, 6, 5, 4, 10, 15};

void Add(ui::CListControl& lst, const std::string& text, std::int32_t code) {
  lst.AddItem(text);
  lst.SetItemData(lst.NewIndex(), code);
}

// `Text` gives the text of a code of type `Code`.
template <class Code, std::string (*Text)(Code)>
void AddCodes(ui::CListControl& lst, std::span<const std::int32_t> codes) {
  for (const std::int32_t code : codes) Add(lst, Text(static_cast<Code>(code)), code);
}

// Empties `lst`, then fills it; what fails is raised again under `label`.
template <class Filling>
void Fill(const std::string& label, ui::CListControl& lst, Filling&& fill) {
  try {
    lst.Clear();
    fill();
  } catch (...) {
    RaiseAgain(label);
  }
}

template <class Code, std::string (*Text)(Code)>
void FillCodes(const char* operation, ui::CListControl& lst, std::span<const std::int32_t> codes) {
  Fill(InstrumentLabel(operation), lst, [&] { AddCodes<Code, Text>(lst, codes); });
}

std::string ProbeName(std::int16_t number) {
  return ResourceText(EText::PROBE) + " " + std::to_string(number);
}

// What stands before the next "," of `text`, as a number; that is taken away from `text` with the
// "," behind it.
std::int16_t TakeNumber(std::string_view& text) {
  const std::size_t comma = text.find(',');
  const std::int16_t number = ToInteger(NumberFromText(text.substr(0, comma)));
  text = comma == text.npos ? std::string_view() : text.substr(comma + 1);
  return number;
}

}  // namespace

void CVaneT312B::FillFilterTypeList(ui::CListControl& lst) const {
  FillCodes<ET312BFilterType, FilterTypeText>("FillFilterTypeList", lst, kFilterTypes);
}

void CVaneT312B::FillRTLSUnitsList(ui::CListControl& lst, bool keepexisting) const {
  FillUnitsList(lst, keepexisting, false);
}

void CVaneT312B::FillUnitsList(ui::CListControl& lst, bool keepexisting, bool inclnontemp) const {
  Fill(InstrumentLabel("FillUnitsList"), lst, [&] {
    if (keepexisting) Add(lst, UnitsText(kKeepExisting), kKeepExisting);
    AddCodes<std::int16_t, UnitsText>(lst, kTemperatureUnits);
    if (inclnontemp) AddCodes<std::int16_t, UnitsText>(lst, kOtherUnits);
  });
}

void CVaneT312B::FillSampleActionList(ui::CListControl& lst) const {
  FillCodes<ET312BSampleAction, SampleActionText>("FillSampleActionList", lst, kSampleActions);
}

void CVaneT312B::FillOvenList(ui::CListControl& lst) const {
  FillCodes<ET312BOven, OvenText>("FillOvenList", lst, kOvens);
}

void CVaneT312B::FillChannelModeList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillChannelModeList"), lst, [&] {
    AddCodes<ET312BChannelMode, ChannelModeText>(lst, kInputModes);
    if (HasScanners()) AddCodes<ET312BChannelMode, ChannelModeText>(lst, kScannerModes);
  });
}

void CVaneT312B::FillScannerScanModeList(ui::CListControl& lst) const {
  FillCodes<ET312BScannerScanMode, ScannerScanModeText>("FillScannerScanModeList", lst,
                                                        kScannerScanModes);
}

void CVaneT312B::FillScanChannelList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillScanChannelList"), lst, [&] {
    if (!HasScanners()) return;
    for (std::int32_t i = 1; i <= ScannerChannel(NumChannels()); ++i)
      Add(lst, std::to_string(i), i);
  });
}

void CVaneT312B::FillScanSeqList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillScanSeqList"), lst, [&] {
    std::string_view rest = ScanChannels();
    for (std::int32_t step = 1; step <= ScanSeqSteps(); ++step) {
      const std::int16_t channel = TakeNumber(rest);
      Add(lst, std::to_string(step) + ") " + GetScanSeqChannelName(channel), channel);
    }
  });
}

void CVaneT312B::FillChannelNameList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillChannelNameList"), lst, [&] {
    // By the number of modules, whatever these say of their channels; never Input 1.
    const std::int32_t last = (NumModules() - 1) * kScannerChannels + kNumInputs;
    for (auto chn = kNumInputs; chn <= last; ++chn) Add(lst, GetScanSeqChannelName(chn), chn);
  });
}

void CVaneT312B::FillChannelList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillChannelList"), lst, [&] {
    const auto add = [&](std::int16_t number, const CVaneT312BPRTTHRMChannel& channel) {
      Add(lst, GetScanSeqChannelName(number) + ") " + ProbeName(channel.ProbeIndex()), number);
    };
    // With a scanner, Input 1 is the one that it is plugged into.
    for (std::int16_t i = HasScanners() ? kNumInputs : 1;
         i <= (HasScanners() ? kNumInputs : NumChannels()); ++i) {
      add(i, *ModuleOf(*this, 0).Channels(static_cast<std::int16_t>(i - 1)));
    }
    for (std::int16_t m = 1; m < NumModules(); ++m) {
      const CModule& scanner = *Modules(m);
      for (std::int16_t c = 0; c < scanner.NumChannels(); ++c) {
        add(static_cast<std::int16_t>(scanner.StartChannel() + c), *scanner.Channels(c));
      }
    }
  });
}

void CVaneT312B::FillProbeNameList(ui::CListControl& lst) const {
  Fill(InstrumentLabel("FillProbeNameList"), lst, [&] {
    for (std::int16_t i = 1; i <= NumProbes(); ++i) Add(lst, ProbeName(i), i);
  });
}

void CVaneT312BPRTTHRMChannel::FillRefResistorList(ui::CListControl& lst) const {
  Fill(OperationLabel(kChannelClass, "FillRefResistorList"), lst, [&] {
    // Input 2 has no terminals for a resistor of the user's.
    if (ActualChannel() != kNumInputs) {
      AddCodes<ET312BProbeRefResistor, RefResistorText>(lst, kExternalResistor);
    }
    AddCodes<ET312BProbeRefResistor, RefResistorText>(lst, kInternalResistors);
  });
}

void CVaneT312BPRTTHRMChannel::FillConversionTypeList(ui::CListControl& lst,
                                                      bool keepexisting) const {
  Fill(OperationLabel(kChannelClass, "FillConversionTypeList"), lst, [&] {
    if (keepexisting) Add(lst, ConversionTypeText(kKeepExisting), kKeepExisting);
    AddCodes<std::int32_t, ConversionTypeText>(lst, kConversionTypes);
  });
}

}  // namespace vane
