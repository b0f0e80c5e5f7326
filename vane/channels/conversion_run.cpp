#include "vane/channels/conversion_run.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_table.h"
#include "vane/channels/probe_exchange.h"
#include "vane/channels/settings_of.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

/// A value that no table of coefficients holds.
struct ValueRow {
  std::string_view stepname;
  ProbeCommand command;
  void (*store)(CVaneProbe& probe, const std::string& reply);
  std::string (*text)(CVaneProbe& probe);
};

/// One side of ITS-90: the number of its subrange, and that subrange's coefficients.
struct RangeWalk {
  const RangeSide& side;
  CITS90Range& (CITS90Settings::*range)();
  ProbeCommand number;
  std::string_view nonumber;  ///< how "no such subrange" is written
  EText rangename;
  EText coefficientsname;
};

/// Values that have names: first those without a table, then the coefficients of a table, then the
/// sides of ITS-90.
struct Sequence {
  EVaneConversionType type;
  std::string_view name;
  std::span<const ValueRow> values;
  std::span<const CoefficientRow> coefficients;
  std::span<const RangeWalk> walks;
};

std::string ValueText(double value, const std::string& format) {
  return ToDotDecimal(FormatNumber(value, format));
}

void StoreRTPW(CVaneProbe& probe, const std::string& reply) {
  SettingsOf<CWT90Settings>(probe).SetRTPW(NumberFromText(reply));
}

std::string RTPWText(CVaneProbe& probe) {
  const auto& settings = SettingsOf<CWT90Settings>(probe);
  return ValueText(settings.RTPW(), settings.RTPWFormat());
}

void StoreScale(CVaneProbe& probe, const std::string& reply) {
  auto& settings = SettingsOf<CIPTS68Settings>(probe);
  const bool scale90 = Contains(reply, "90");
  const bool known = scale90 || Contains(reply, "68");
  if (known) settings.SetIPTS68Scale(scale90 ? 0 : 1);
  settings.SetScaleEnabled(known);
}

// Whether the conversion reports in a scale at all plays no part here.
std::string ScaleText(CVaneProbe& probe) {
  const std::int32_t scale = SettingsOf<CIPTS68Settings>(probe).IPTS68Scale();
  return scale == 0 ? "90" : scale == 1 ? "68" : "";
}

// The first subrange of `side` whose number stands before a bracket anywhere in `reply`.
std::int32_t SubrangeIn(const std::string& reply, const RangeSide& side) {
  for (std::int32_t number = side.first; number <= side.last; ++number) {
    if (Contains(reply, std::to_string(number) + " (")) return number;
  }
  return kNoRange;
}

using enum ECommand;
using enum EVaneConversionType;

constexpr ValueRow kITS90Values[] = {
    {"ITS-90 RTPW", {"ITS90RTPW", READ_ITS90_RTPW}, StoreRTPW, RTPWText}};
constexpr ValueRow kWT90Values[] = {
    {"W(T90) RTPW", {"ITS90RTPW", READ_ITS90_RTPW}, StoreRTPW, RTPWText}};
constexpr ValueRow kIPTS68Values[] = {
    {"IPTS-68 scale", {"IPTS68Scale", READ_IPTS68_SCALE}, StoreScale, ScaleText}};

constexpr RangeWalk kWalks[] = {
    {kLowSide,
     &CITS90Settings::LowRange,
     {"ITS90LowRange", READ_ITS90_LOW_RANGE},
     "0",
     EText::LOW_RANGE,
     EText::LOW_RANGE_COEFFICIENTS},
    {kHighSide,
     &CITS90Settings::HighRange,
     {"ITS90HighRange", READ_ITS90_HIGH_RANGE},
     "12",
     EText::HIGH_RANGE,
     EText::HIGH_RANGE_COEFFICIENTS},
};

constexpr Sequence kSequences[] = {
    {CONV_ITS90, "ITS-90", kITS90Values, {}, kWalks},
    {CONV_IPTS68, "IPTS-68", kIPTS68Values, kIPTS68Rows, {}},
    {CONV_CVD, "CVD", {}, kCVDRows, {}},
    {CONV_WT90, "W(T90)", kWT90Values, {}, {}},
};

class CConversionRun {
 public:
  CConversionRun(const CVaneT312BPRTTHRMChannel& channel, const Components& components,
                 const ConversionWay& way, std::int16_t prbidx, ui::CWindow* frm)
      : channel_(channel), components_(components), way_(way), prbidx_(prbidx), frm_(frm) {}

  bool Run(const Sequence& sequence);
  bool Run(const SeriesRow& series);

 private:
  bool RunRange(const RangeWalk& walk);
  void Start(CLongRun& run, std::string_view name, std::int32_t steps) const {
    run.Start(SubstituteParams(ResourceText(way_.starttext), name), PercentShare(steps));
  }

  // The exchanges of single values. The settings are fetched anew for each: while a reporter lets
  // events run, a host may give the probe another conversion.
  CVaneProbe& Probe() const { return *channel_.Probe(); }
  bool Exchange(const ProbeCommand& command, const std::function<void(const std::string&)>& store,
                const std::function<std::string()>& text) const;
  bool ExchangeValue(const ValueRow& row) const;
  bool ExchangeCoefficient(const CoefficientRow& row, std::int32_t place) const;
  bool ExchangeNumber(const RangeWalk& walk) const;
  template <class Holder>
  bool ExchangeHeld(const ProbeCommand& command, const Holder& holder, std::int32_t place) const;

  const CVaneT312BPRTTHRMChannel& channel_;
  const Components& components_;
  const ConversionWay& way_;
  std::int16_t prbidx_;
  ui::CWindow* frm_;
};

bool CConversionRun::Run(const Sequence& sequence) {
  return RunLong(components_, way_.sequencerun, frm_, [&](CLongRun& run) {
    Start(run, sequence.name,
          static_cast<std::int32_t>(sequence.values.size() + sequence.coefficients.size() +
                                    sequence.walks.size()));
    for (const ValueRow& row : sequence.values) {
      if (!run.Step({std::string(row.stepname), [&] { return ExchangeValue(row); }})) return false;
    }
    std::int32_t place = 0;
    for (const CoefficientRow& row : sequence.coefficients) {
      const auto exchange = [&] { return ExchangeCoefficient(row, place); };
      if (!run.Step({std::string(row.stepname), exchange})) return false;
      ++place;
    }
    for (const RangeWalk& walk : sequence.walks) {
      const auto exchange = [&] { return ExchangeNumber(walk); };
      if (!run.Step({ResourceText(walk.rangename), exchange})) return false;
    }
    if (!sequence.walks.empty()) run.Hide();  // the sides have reporters and pauses of their own
    for (const RangeWalk& walk : sequence.walks) {
      const auto side = [&] { return RunRange(walk); };
      if (!run.StepWithoutPause({ResourceText(walk.coefficientsname), side})) return false;
    }
    return true;
  });
}

bool CConversionRun::RunRange(const RangeWalk& walk) {
  const auto range = [&]() -> CITS90Range& {
    return (SettingsOf<CITS90Settings>(Probe()).*walk.range)();
  };
  const std::string name = ResourceText(walk.coefficientsname);
  const auto steps = [&](CLongRun& run) {
    Start(run, ResourceText(walk.rangename), range().NumCoefficients());
    const std::int32_t subrange = range().Range();
    if (subrange == kNoRange) return true;
    const std::string number = std::to_string(ToInteger(subrange));
    std::int32_t place = 0;
    for (const RangeRow& row : walk.side.rows) {
      if (!row.Has(subrange)) return true;
      const auto exchange = [&] {
        return ExchangeHeld(
            {row.operation, row.readid, row.sendsrange ? number : std::string_view(), row.index},
            range, place);
      };
      if (!run.Step({name, exchange})) return false;
      ++place;
    }
    return true;
  };
  return AtBoundary([&] { return SubstituteParams(ResourceText(way_.rangerun.errortext), name); },
                    [&] {
                      return range().NumCoefficients() <= 0 ||
                             RunLong(components_, way_.rangerun, frm_, steps, name);
                    });
}

bool CConversionRun::Run(const SeriesRow& series) {
  const auto settings = [&]() -> CThermistorSettings& {
    return SettingsOf<CThermistorSettings>(Probe());
  };
  const auto steps = [&](CLongRun& run) {
    Start(run, series.title, settings().NumCoefficients());
    for (std::int32_t index = 0; index < settings().NumCoefficients(); ++index) {
      const std::string number = std::to_string(index);
      const ProbeCommand command{series.operation, series.readid, {}, number};
      if (!run.Step({number, [&] { return ExchangeHeld(command, settings, index); }})) return false;
    }
    return true;
  };
  const std::string first = "0";
  return AtBoundary([&] { return SubstituteParams(ResourceText(way_.seriesrun.errortext), first); },
                    [&] {
                      return (way_.maybenone && settings().NumCoefficients() <= 0) ||
                             RunLong(components_, way_.seriesrun, frm_, steps, first);
                    });
}

bool CConversionRun::Exchange(const ProbeCommand& command,
                              const std::function<void(const std::string&)>& store,
                              const std::function<std::string()>& text) const {
  if (way_.writes) return UpdateProbe(channel_, command, prbidx_, text);
  return QueryProbe(channel_, command, prbidx_, store);
}

bool CConversionRun::ExchangeValue(const ValueRow& row) const {
  return Exchange(
      row.command, [&](const std::string& reply) { row.store(Probe(), reply); },
      [&] { return row.text(Probe()); });
}

bool CConversionRun::ExchangeCoefficient(const CoefficientRow& row, std::int32_t place) const {
  const auto settings = [&]() -> CCVDSettings& { return SettingsOf<CCVDSettings>(Probe()); };
  return Exchange(
      {row.operation, row.readid, row.range},
      [&](const std::string& reply) { settings().SetCoefficients(place, NumberFromText(reply)); },
      [&] { return ValueText(settings().Coefficients(place), settings().ValueFormat(place)); });
}

bool CConversionRun::ExchangeNumber(const RangeWalk& walk) const {
  const auto range = [&]() -> CITS90Range& {
    return (SettingsOf<CITS90Settings>(Probe()).*walk.range)();
  };
  return Exchange(
      walk.number,
      [&](const std::string& reply) { range().SetRange(SubrangeIn(reply, walk.side)); },
      [&] {
        const std::int32_t number = range().Range();
        return number == kNoRange ? std::string(walk.nonumber) : std::to_string(number);
      });
}

// These pass by way of their caller: what fails in the settings is not the operation's failure.
template <class Holder>
bool CConversionRun::ExchangeHeld(const ProbeCommand& command, const Holder& holder,
                                  std::int32_t place) const {
  double value = 0;
  std::string format;
  if (way_.writes) {
    value = holder().Coefficients(place);
    format = holder().ValueFormat();
  }
  Exchange(
      command, [&](const std::string& reply) { value = NumberFromText(reply); },
      [&] { return ValueText(value, format); });
  if (!way_.writes) holder().SetCoefficients(place, value);
  return true;
}

}  // namespace

bool RunConversion(const CVaneT312BPRTTHRMChannel& channel, const Components& components,
                   const ConversionWay& way, std::int16_t prbidx, ui::CWindow* frm) {
  const EVaneConversionType type = channel.Probe()->ConversionType();
  CConversionRun run(channel, components, way, prbidx, frm);
  for (const Sequence& sequence : kSequences) {
    if (sequence.type == type) return run.Run(sequence);
  }
  for (const SeriesRow& series : kSeriesRows) {
    if (series.type == type) return run.Run(series);
  }
  return true;
}

}  // namespace vane
