#include "vane/instrument/t312b.h"

#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

struct CalParamRow {
  double minimum;
  double maximum;
  const char* format;
};

// By index; external, 1, 10, 100 and 10K ohms.
constexpr CalParamRow kCalParams[] = {
    {0.1, 990000.0, "0.00000000000"},       {0.1, 5.0, "0.0000000000000"},
    {5.0, 50.0, "0.000000000000"},          {50.0, 500.0, "0.00000000000"},
    {5000.0, 1000000.0, "0.000000000E+00"},
};
static_assert(std::size(kCalParams) == CVaneT312B::NumCalParams());

constexpr CalParamRow kNoCalParam{0.0, 0.0, ""};

const CalParamRow& CalParamOf(ET312BCalParams cp) {
  const auto index = static_cast<std::size_t>(cp);
  return index < std::size(kCalParams) ? kCalParams[index] : kNoCalParam;
}

// `Index` as a place in an array of `size`.
std::size_t PlaceOf(ET312BCalParams Index, std::size_t size) {
  RequireIndex(static_cast<std::int32_t>(Index), size);
  return static_cast<std::size_t>(Index);
}

}  // namespace

CVaneT312B::CVaneT312B(const Components& components)
    : components_(components),
      topology_(*this, components),
      calparams_{Tracked<double>{*this}, Tracked<double>{*this}, Tracked<double>{*this},
                 Tracked<double>{*this}, Tracked<double>{*this}, Tracked<double>{*this}} {
  Labelled("CVaneT312B", "Class Initialize", [&] {
    model_ = kReadoutModel;
    topology_.SetNumModules(0);
    SetSelectedChannel(-1);
    SetAllowSetSerial(false);
    SetReadAfterApply(false);
    SetProtectConversion(true);
    SetProtectCalParams(true);
    SetProtectSampling(true);
    SetProtectUnitsTime(true);
    SetCalParamPasscodeState(ET312BPasscodeState::PS_DISABLED);
    SetConvPasscodeState(ET312BPasscodeState::PS_DISABLED);
    SetSamplingPasscodeState(ET312BPasscodeState::PS_DISABLED);
    SetUnitsTimePasscodeState(ET312BPasscodeState::PS_DISABLED);
    SetFilePath(components_.platform.FolderOfLibrary());
    SetSystemClock(0);
    for (std::int16_t i = 0; i < NumCalParams(); ++i) {
      const auto cp = static_cast<ET312BCalParams>(i);
      SetCalParamsFormat(cp, CalParamOf(cp).format);
    }
    SetADCFormat("0.00");
    // Laying out no modules counts as a change; a new object has none to tell of.
    SetChanged(false);
  });
}

CVaneT312B::~CVaneT312B() {
  topology_.SetNumModules(0);
  registry_.reset();
  communications_.reset();
}

double CVaneT312B::MaxCalParamValue(ET312BCalParams cp) { return CalParamOf(cp).maximum; }

double CVaneT312B::MinCalParamValue(ET312BCalParams cp) { return CalParamOf(cp).minimum; }

const std::string& CVaneT312B::CalParamsFormat(ET312BCalParams Index) const {
  return calparamsformat_[PlaceOf(Index, calparamsformat_.size())];
}

void CVaneT312B::SetCalParamsFormat(ET312BCalParams Index, const std::string& value) {
  calparamsformat_[PlaceOf(Index, calparamsformat_.size())] = value;
}

double CVaneT312B::CalParams(ET312BCalParams Index) const {
  return calparams_[PlaceOf(Index, calparams_.size())].Get();
}

void CVaneT312B::SetCalParams(ET312BCalParams Index, double value) {
  calparams_[PlaceOf(Index, calparams_.size())].Set(value);
}

void CVaneT312B::SetFilePath(const std::string& value) {
  filepath_ = value;
  for (std::int16_t idx = 0; idx < NumModules(); ++idx) {
    if (CModule* const md = Modules(idx)) md->SetFilePath(filepath_);
  }
}

}  // namespace vane
