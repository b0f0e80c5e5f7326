// The conversion of a probe, read value by value.
#include <algorithm>
#include <iterator>
#include <span>
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_table.h"
#include "vane/channels/settings_of.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

struct CodeRow {
  std::string_view text;
  std::int32_t code;
};

// Searched from the top: the reply for R(T) also holds the mark of a resistance.
constexpr CodeRow kConversionTypes[] = {
    {"ITS-90", 0},     {"IPTS-68", 1}, {"CVD", 2},     {"THRM-R(T)", 6}, {"THRM-T(R)", 5},
    {"POLYNOMIAL", 4}, {"R(", 10},     {"W(T90)", 14}, {"RATIO", 15},
};

constexpr CodeRow kLowRanges[] = {{"1 (", 1}, {"2 (", 2}, {"3 (", 3}, {"4 (", 4}, {"5 (", 5}};
constexpr CodeRow kHighRanges[] = {{"6 (", 6}, {"7 (", 7},   {"8 (", 8},
                                   {"9 (", 9}, {"10 (", 10}, {"11 (", 11}};

// The code of the first text that occurs anywhere in `reply`; -1 for none.
std::int32_t CodeIn(std::string_view reply, std::span<const CodeRow> rows) {
  for (const CodeRow& row : rows) {
    if (Contains(reply, row.text)) return row.code;
  }
  return -1;
}

void ReadRange(CITS90Range& range, std::string_view reply, std::span<const CodeRow> rows) {
  range.SetRange(CodeIn(reply, rows));
}

}  // namespace

bool CVaneT312BPRTTHRMChannel::QueryConversionType(std::int16_t prbidx) {
  return Labelled(kClassName, "QueryConversionType", [&] {
    CVaneCommunications& line = Line();
    if (prbidx == -1) {
      if (!QueryProbeIndex()) return false;
      prbidx = ProbeIndex();
    }
    SetFields(line, {{&CommandParams::Probe, std::to_string(prbidx)}});
    // The reply may hold the sign for ohms. A failed read leaves the check off.
    CVaneCOMPort& port = line.COMPort();
    const bool kept = port.CheckNonAscii();
    port.SetCheckNonAscii(false);
    const std::string reply = UpperCase(line.ReadSetting(ECommand::READ_CONVERSION_TYPE));
    port.SetCheckNonAscii(kept);
    SetConversionType(static_cast<EVaneConversionType>(CodeIn(reply, kConversionTypes)));
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::Query(std::string_view operation, ECommand id, std::int16_t prbidx,
                                     const std::function<void(const std::string&)>& store,
                                     std::string_view range, std::string_view index) {
  return Labelled(kClassName, "Query" + std::string(operation), [&] {
    store(UpperCase(Read(Line(), id,
                         {{&CommandParams::Probe, std::to_string(prbidx)},
                          {&CommandParams::Range, std::string(range)},
                          {&CommandParams::Index, std::string(index)}})));
    return true;
  });
}

bool CVaneT312BPRTTHRMChannel::QueryNumber(std::string_view operation, ECommand id,
                                           std::int16_t prbidx,
                                           const std::function<void(double)>& store,
                                           std::string_view range, std::string_view index) {
  return Query(
      operation, id, prbidx, [&](const std::string& reply) { store(NumberFromText(reply)); }, range,
      index);
}

// --- The forms ---

bool CVaneT312BPRTTHRMChannel::QuerySequence(std::string_view name, double share, ui::CWindow* frm,
                                             const std::function<bool(CLongRun&)>& steps) {
  return RunLong(components_, kConversionReadRun, frm, [&](CLongRun& run) {
    run.Start(SubstituteParams(ResourceText(EText::READING_COEFFICIENTS), name), share);
    return steps(run);
  });
}

bool CVaneT312BPRTTHRMChannel::QueryRange(const RangeWalk& walk, std::int16_t prbidx,
                                          ui::CWindow* frm) {
  // Fetched anew for each value: while the reporter lets events run, a host may give the probe
  // another conversion.
  const auto range = [&]() -> CITS90Range& {
    return (SettingsOf<CITS90Settings>(*probe_).*walk.range)();
  };
  const std::string name = ResourceText(walk.coefficientsname);
  return AtBoundary(
      [&] { return SubstituteParams(ResourceText(EText::ATTEMPTING_TO_QUERY), name); },
      [&] {
        if (range().NumCoefficients() <= 0) return true;
        return RunLong(
            components_, kRangeReadRun, frm,
            [&](CLongRun& run) {
              run.Start(SubstituteParams(ResourceText(EText::READING_COEFFICIENTS),
                                         ResourceText(walk.rangename)),
                        PercentShare(range().NumCoefficients()));
              const std::int32_t subrange = range().Range();
              if (subrange == kNoRange) return true;
              const std::string number = std::to_string(ToInteger(subrange));
              for (const RangeRow& row : walk.rows) {
                if (subrange < row.lowest || subrange > row.highest) return true;
                const auto read = [&] {
                  double value = 0;
                  const bool done = QueryNumber(
                      row.operation, row.readid, prbidx, [&](double reply) { value = reply; },
                      row.sendsrange ? number : std::string(), row.index);
                  if (done) range().SetCoefficients(row.place, value);
                  return true;
                };
                if (!run.Step({name, read})) return false;
              }
              return true;
            },
            name);
      });
}

bool CVaneT312BPRTTHRMChannel::QuerySeries(const SeriesRow& series, std::int16_t prbidx,
                                           ui::CWindow* frm) {
  const auto settings = [&]() -> CThermistorSettings& {
    return SettingsOf<CThermistorSettings>(*probe_);
  };
  return RunLong(
      components_, kConversionReadRun, frm,
      [&](CLongRun& run) {
        run.Start(SubstituteParams(ResourceText(EText::READING_COEFFICIENTS), series.name),
                  PercentShare(settings().NumCoefficients()));
        for (std::int32_t index = 0; index < settings().NumCoefficients(); ++index) {
          const std::string number = std::to_string(index);
          const auto read = [&] {
            double value = 0;
            const bool done = QueryNumber(
                series.operation, series.readid, prbidx, [&](double reply) { value = reply; }, {},
                number);
            if (done) settings().SetCoefficients(index, value);
            return true;
          };
          if (!run.Step({number, read})) return false;
        }
        return true;
      },
      "0");
}

// --- The conversions ---

const CVaneT312BPRTTHRMChannel::ConversionRow* CVaneT312BPRTTHRMChannel::RowOfConversion() const {
  using Self = CVaneT312BPRTTHRMChannel;
  using enum EVaneConversionType;
  static constexpr ConversionRow kRows[] = {
      {CONV_ITS90, &Self::QueryITS90Coefficients, &Self::UpdateITS90Coefficients},
      {CONV_IPTS68, &Self::QueryIPTS68Coefficients, &Self::UpdateIPTS68Coefficients},
      {CONV_CVD, &Self::QueryCVDCoefficients, &Self::UpdateCVDCoefficients},
      {CONV_POLYNOMIAL, &Self::QueryPOLYCoefficients, &Self::UpdatePOLYCoefficients},
      {CONV_THERMISTOR_TR, &Self::QueryThermistorTRCoefficients,
       &Self::UpdateThermistorTRCoefficients},
      {CONV_THERMISTOR_RT, &Self::QueryThermistorRTCoefficients,
       &Self::UpdateThermistorRTCoefficients},
      {CONV_WT90, &Self::QueryWT90Coefficients, &Self::UpdateWT90Coefficients},
  };
  const auto row = std::ranges::find(kRows, probe_->ConversionType(), &ConversionRow::type);
  return row != std::end(kRows) ? row : nullptr;
}

bool CVaneT312BPRTTHRMChannel::QueryCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  const ConversionRow* const row = RowOfConversion();
  return row == nullptr || (this->*row->query)(prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::QueryCVDCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return QuerySequence("CVD", PercentShare(4), frm,
                       [&](CLongRun& run) { return QueryCoefficientRows(run, kCVDRows, prbidx); });
}

bool CVaneT312BPRTTHRMChannel::QueryIPTS68Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return QuerySequence("IPTS-68", PercentShare(6), frm, [&](CLongRun& run) {
    return run.Step({"IPTS-68 scale", [&] { return QueryIPTS68Scale(prbidx); }}) &&
           QueryCoefficientRows(run, kIPTS68Rows, prbidx);
  });
}

bool CVaneT312BPRTTHRMChannel::QueryWT90Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return QuerySequence("W(T90)", PercentShare(1), frm, [&](CLongRun& run) {
    return run.Step({"W(T90) RTPW", [&] { return QueryITS90RTPW(prbidx); }});
  });
}

bool CVaneT312BPRTTHRMChannel::QueryITS90Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return QuerySequence("ITS-90", PercentShare(3), frm, [&](CLongRun& run) {
    const bool values = run.Steps({
        {"ITS-90 RTPW", [&] { return QueryITS90RTPW(prbidx); }},
        {EText::LOW_RANGE, [&] { return QueryITS90LowRange(prbidx); }},
        {EText::HIGH_RANGE, [&] { return QueryITS90HighRange(prbidx); }},
    });
    if (!values) return false;
    run.Hide();  // the ranges have reporters of their own
    return run.Steps({
        {EText::LOW_RANGE_COEFFICIENTS,
         [&] { return QueryITS90LowRangeCoefficients(prbidx, frm); }},
        {EText::HIGH_RANGE_COEFFICIENTS,
         [&] { return QueryITS90HighRangeCoefficients(prbidx, frm); }},
    });
  });
}

bool CVaneT312BPRTTHRMChannel::QueryITS90LowRangeCoefficients(std::int16_t prbidx,
                                                              ui::CWindow* frm) {
  return QueryRange(kLowRangeWalk, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::QueryITS90HighRangeCoefficients(std::int16_t prbidx,
                                                               ui::CWindow* frm) {
  return QueryRange(kHighRangeWalk, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::QueryThermistorTRCoefficients(std::int16_t prbidx,
                                                             ui::CWindow* frm) {
  return QuerySeries(kThermistorTR, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::QueryThermistorRTCoefficients(std::int16_t prbidx,
                                                             ui::CWindow* frm) {
  return QuerySeries(kThermistorRT, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::QueryPOLYCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return QuerySeries(kPolynomial, prbidx, frm);
}

// --- The values ---

bool CVaneT312BPRTTHRMChannel::QueryCoefficientRows(CLongRun& run,
                                                    std::span<const CoefficientRow> rows,
                                                    std::int16_t prbidx) {
  for (const CoefficientRow& row : rows) {
    const auto read = [&] {
      return QueryNumber(
          row.operation, row.readid, prbidx,
          [&](double value) {
            SettingsOf<CCVDSettings>(*probe_).SetCoefficients(row.index, value);
          },
          row.range);
    };
    if (!run.Step({std::string(row.stepname), read})) return false;
  }
  return true;
}

bool CVaneT312BPRTTHRMChannel::QueryIPTS68Scale(std::int16_t prbidx) {
  return Query("IPTS68Scale", ECommand::READ_IPTS68_SCALE, prbidx, [&](const std::string& reply) {
    auto& settings = SettingsOf<CIPTS68Settings>(*probe_);
    const bool scale90 = Contains(reply, "90");
    const bool known = scale90 || Contains(reply, "68");
    if (known) settings.SetIPTS68Scale(scale90 ? 0 : 1);
    settings.SetScaleEnabled(known);
  });
}

bool CVaneT312BPRTTHRMChannel::QueryITS90RTPW(std::int16_t prbidx) {
  return QueryNumber("ITS90RTPW", ECommand::READ_ITS90_RTPW, prbidx,
                     [&](double value) { SettingsOf<CWT90Settings>(*probe_).SetRTPW(value); });
}

bool CVaneT312BPRTTHRMChannel::QueryITS90LowRange(std::int16_t prbidx) {
  return Query("ITS90LowRange", ECommand::READ_ITS90_LOW_RANGE, prbidx,
               [&](const std::string& reply) {
                 ReadRange(SettingsOf<CITS90Settings>(*probe_).LowRange(), reply, kLowRanges);
               });
}

bool CVaneT312BPRTTHRMChannel::QueryITS90HighRange(std::int16_t prbidx) {
  return Query("ITS90HighRange", ECommand::READ_ITS90_HIGH_RANGE, prbidx,
               [&](const std::string& reply) {
                 ReadRange(SettingsOf<CITS90Settings>(*probe_).HighRange(), reply, kHighRanges);
               });
}

}  // namespace vane
