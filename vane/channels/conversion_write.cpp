// The conversion of a probe, written value by value.
#include <span>
#include <string>

#include "vane/channels/channel.h"
#include "vane/channels/conversion_table.h"
#include "vane/channels/settings_of.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/long_run.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

std::string ValueText(double value, const std::string& format) {
  return ToDotDecimal(FormatNumber(value, format));
}

std::string RangeText(const CITS90Range& range, const char* none) {
  return range.Range() == kNoRange ? none : std::to_string(range.Range());
}

}  // namespace

bool CVaneT312BPRTTHRMChannel::Update(std::string_view operation, ECommand id, std::int16_t prbidx,
                                      const std::function<std::string()>& value,
                                      std::string_view range, std::string_view index) {
  return Labelled(kClassName, "Update" + std::string(operation), [&] {
    CVaneCommunications& line = Line();
    Write(line, id,
          {{&CommandParams::Probe, std::to_string(prbidx)},
           {&CommandParams::Range, std::string(range)},
           {&CommandParams::Index, std::string(index)},
           {&CommandParams::value, value()}});
    return true;
  });
}

// --- The forms ---

bool CVaneT312BPRTTHRMChannel::UpdateSequence(std::string_view name, double share, ui::CWindow* frm,
                                              const std::function<bool(CLongRun&)>& steps) {
  return RunLong(components_, kConversionWriteRun, frm, [&](CLongRun& run) {
    run.Start(SubstituteParams(ResourceText(EText::UPDATING_COEFFICIENTS), name), share);
    return steps(run);
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateRange(const RangeWalk& walk, std::int16_t prbidx,
                                           ui::CWindow* frm) {
  // Fetched anew for each value: while the reporter lets events run, a host may give the probe
  // another conversion.
  const auto range = [&]() -> CITS90Range& {
    return (SettingsOf<CITS90Settings>(*probe_).*walk.range)();
  };
  const std::string name = ResourceText(walk.coefficientsname);
  return AtBoundary(
      [&] { return SubstituteParams(ResourceText(EText::ATTEMPTING_TO_UPDATE), name); },
      [&] {
        if (range().NumCoefficients() <= 0) return true;
        return RunLong(
            components_, kRangeWriteRun, frm,
            [&](CLongRun& run) {
              run.Start(SubstituteParams(ResourceText(EText::UPDATING_COEFFICIENTS),
                                         ResourceText(walk.rangename)),
                        PercentShare(range().NumCoefficients()));
              const std::int32_t subrange = range().Range();
              if (subrange == kNoRange) return true;
              const std::string number = std::to_string(ToInteger(subrange));
              for (const RangeRow& row : walk.rows) {
                if (subrange < row.lowest || subrange > row.highest) return true;
                const auto write = [&] {
                  const double value = range().Coefficients(row.place);
                  const std::string format = range().ValueFormat();
                  return Update(
                      row.operation, WriteOf(row.readid), prbidx,
                      [&] { return ValueText(value, format); },
                      row.sendsrange ? number : std::string(), row.index);
                };
                if (!run.Step({name, write})) return false;
              }
              return true;
            },
            name);
      });
}

bool CVaneT312BPRTTHRMChannel::UpdateSeries(const SeriesRow& series, std::int16_t prbidx,
                                            ui::CWindow* frm) {
  const auto settings = [&]() -> CThermistorSettings& {
    return SettingsOf<CThermistorSettings>(*probe_);
  };
  return AtBoundary(
      [] { return SubstituteParams(ResourceText(EText::ATTEMPTING_TO_UPDATE), "0"); },
      [&] {
        // Unlike a read, which takes what the instrument has, there may be nothing to
        // write.
        if (settings().NumCoefficients() <= 0) return true;
        return RunLong(
            components_, kSeriesWriteRun, frm,
            [&](CLongRun& run) {
              run.Start(SubstituteParams(ResourceText(EText::UPDATING_COEFFICIENTS), series.name),
                        PercentShare(settings().NumCoefficients()));
              for (std::int32_t index = 0; index < settings().NumCoefficients(); ++index) {
                const std::string number = std::to_string(index);
                const auto write = [&] {
                  const double value = settings().Coefficients(index);
                  const std::string format = settings().ValueFormat();
                  return Update(
                      series.operation, WriteOf(series.readid), prbidx,
                      [&] { return ValueText(value, format); }, {}, number);
                };
                if (!run.Step({number, write})) return false;
              }
              return true;
            },
            "0");
      });
}

// --- The conversions ---

bool CVaneT312BPRTTHRMChannel::UpdateCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  const ConversionRow* const row = RowOfConversion();
  return row == nullptr || (this->*row->update)(prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::UpdateCVDCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return UpdateSequence("CVD", PercentShare(4), frm, [&](CLongRun& run) {
    return UpdateCoefficientRows(run, kCVDRows, prbidx);
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateIPTS68Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return UpdateSequence("IPTS-68", PercentShare(6), frm, [&](CLongRun& run) {
    return run.Step({"IPTS-68 scale", [&] { return UpdateIPTS68Scale(prbidx); }}) &&
           UpdateCoefficientRows(run, kIPTS68Rows, prbidx);
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateWT90Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return UpdateSequence("W(T90)", PercentShare(1), frm, [&](CLongRun& run) {
    return run.Step({"W(T90) RTPW", [&] { return UpdateITS90RTPW(prbidx); }});
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90Coefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return UpdateSequence("ITS-90", PercentShare(3), frm, [&](CLongRun& run) {
    const bool values = run.Steps({
        {"ITS-90 RTPW", [&] { return UpdateITS90RTPW(prbidx); }},
        {EText::LOW_RANGE, [&] { return UpdateITS90LowRange(prbidx); }},
        {EText::HIGH_RANGE, [&] { return UpdateITS90HighRange(prbidx); }},
    });
    if (!values) return false;
    run.Hide();  // the ranges have reporters and pauses of their own
    return run.StepWithoutPause({EText::LOW_RANGE_COEFFICIENTS,
                                 [&] { return UpdateITS90LowRangeCoefficients(prbidx, frm); }}) &&
           run.StepWithoutPause({EText::HIGH_RANGE_COEFFICIENTS,
                                 [&] { return UpdateITS90HighRangeCoefficients(prbidx, frm); }});
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90LowRangeCoefficients(std::int16_t prbidx,
                                                               ui::CWindow* frm) {
  return UpdateRange(kLowRangeWalk, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90HighRangeCoefficients(std::int16_t prbidx,
                                                                ui::CWindow* frm) {
  return UpdateRange(kHighRangeWalk, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::UpdateThermistorTRCoefficients(std::int16_t prbidx,
                                                              ui::CWindow* frm) {
  return UpdateSeries(kThermistorTR, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::UpdateThermistorRTCoefficients(std::int16_t prbidx,
                                                              ui::CWindow* frm) {
  return UpdateSeries(kThermistorRT, prbidx, frm);
}

bool CVaneT312BPRTTHRMChannel::UpdatePOLYCoefficients(std::int16_t prbidx, ui::CWindow* frm) {
  return UpdateSeries(kPolynomial, prbidx, frm);
}

// --- The values ---

bool CVaneT312BPRTTHRMChannel::UpdateCoefficientRows(CLongRun& run,
                                                     std::span<const CoefficientRow> rows,
                                                     std::int16_t prbidx) {
  for (const CoefficientRow& row : rows) {
    const auto value = [&] {
      const auto& settings = SettingsOf<CCVDSettings>(*probe_);
      return ValueText(settings.Coefficients(row.index), settings.ValueFormat(row.index));
    };
    const auto write = [&] {
      return Update(row.operation, WriteOf(row.readid), prbidx, value, row.range);
    };
    if (!run.Step({std::string(row.stepname), write})) return false;
  }
  return true;
}

// Whether the conversion reports in a scale at all plays no part here.
bool CVaneT312BPRTTHRMChannel::UpdateIPTS68Scale(std::int16_t prbidx) {
  return Update("IPTS68Scale", ECommand::WRITE_IPTS68_SCALE, prbidx, [&]() -> std::string {
    switch (SettingsOf<CIPTS68Settings>(*probe_).IPTS68Scale()) {
      case 0:
        return "90";
      case 1:
        return "68";
      default:
        return {};
    }
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90RTPW(std::int16_t prbidx) {
  return Update("ITS90RTPW", ECommand::WRITE_ITS90_RTPW, prbidx, [&] {
    const auto& settings = SettingsOf<CWT90Settings>(*probe_);
    return ValueText(settings.RTPW(), settings.RTPWFormat());
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90LowRange(std::int16_t prbidx) {
  return Update("ITS90LowRange", ECommand::WRITE_ITS90_LOW_RANGE, prbidx, [&] {
    return RangeText(SettingsOf<CITS90Settings>(*probe_).LowRange(), kNoLowRange);
  });
}

bool CVaneT312BPRTTHRMChannel::UpdateITS90HighRange(std::int16_t prbidx) {
  return Update("ITS90HighRange", ECommand::WRITE_ITS90_HIGH_RANGE, prbidx, [&] {
    return RangeText(SettingsOf<CITS90Settings>(*probe_).HighRange(), kNoHighRange);
  });
}

}  // namespace vane
