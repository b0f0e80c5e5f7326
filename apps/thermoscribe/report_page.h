// A report of a recording as one page with plots, and its figures as text.
#pragma once

#include <string>

#include "recorder/recording_report.h"

namespace vane::thermoscribe {

/// HTML with plots as SVG; fetches nothing and runs nothing.
std::string ReportPage(const recorder::RecordingReport& report);

/// With so many digits behind the point.
std::string ReportNumber(double value, int digits);
/// To three significant digits.
std::string ReportFigure(double value);
/// "none", or how many and what they come to.
std::string GapsText(const recorder::SeriesReport& series);
/// How many, and over what time.
std::string ReadingsText(const recorder::RecordingReport& report);

}  // namespace vane::thermoscribe
