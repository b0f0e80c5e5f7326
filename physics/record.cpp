#include "physics/record.h"

#include <cstddef>
#include <stdexcept>

#include "physics/scale_1990.h"

namespace vane::physics {
namespace {

constexpr const char* kLowNames[] = {"a", "b", "c1", "c2", "c3", "c4", "c5"};
constexpr const char* kHighNames[] = {"a", "b", "c", "d"};

// H. Preston-Thomas, Metrologia 27 (1990): the subranges of section 3.3.
struct SubrangeRow {
  double lowest;
  double highest;
  std::int32_t coefficients;
};
constexpr SubrangeRow kSubranges[] = {
    {13.8033, kTriplePointOfWater, 7}, {24.5561, kTriplePointOfWater, 5},
    {54.3584, kTriplePointOfWater, 3}, {83.8058, kTriplePointOfWater, 2},
    {234.3156, 302.9146, 2},           {kIcePoint, 1234.93, 4},
    {kIcePoint, 933.473, 3},           {kIcePoint, 692.677, 2},
    {kIcePoint, 505.078, 2},           {kIcePoint, 429.7485, 1},
    {kIcePoint, 302.9146, 1},
};

const SubrangeRow& RowOf(std::int32_t subrange) {
  if (subrange < 1 || subrange > std::ssize(kSubranges)) {
    throw std::invalid_argument("ITS-90 has no subrange " + std::to_string(subrange) + ".");
  }
  return kSubranges[subrange - 1];
}

struct Lister {
  std::vector<Parameter>& list;

  void Range(std::int32_t subrange, std::span<double> values, std::span<const char* const> names) {
    if (subrange == kNoSubrange) return;
    for (std::int32_t i = 0; i < CoefficientsOf(subrange); ++i) {
      const auto place = static_cast<std::size_t>(i);
      std::string name = names[place];
      // "a4", but "c1" and "d": only those with a number of their own go without that of the range.
      if (name.size() == 1 && name != "d") name += std::to_string(subrange);
      list.push_back({name, &values[place]});
    }
  }
  void Series(const char* letter, std::span<double> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      list.push_back({letter + std::to_string(i), &values[i]});
    }
  }

  void operator()(Its90Record& record) {
    list.push_back({"RTPW", &record.rtpw});
    Range(record.low, record.lowcoefficients, kLowNames);
    Range(record.high, record.highcoefficients, kHighNames);
  }
  void operator()(Wt90Record& record) { list.push_back({"RTPW", &record.rtpw}); }
  void operator()(Ipts68Record& record) {
    list = {{"R0", &record.r0},
            {"alpha", &record.alpha},
            {"delta", &record.delta},
            {"a4", &record.a4},
            {"c4", &record.c4}};
  }
  void operator()(CvdRecord& record) {
    list = {{"R0", &record.r0},
            {"alpha", &record.alpha},
            {"delta", &record.delta},
            {"beta", &record.beta}};
  }
  void operator()(PolynomialRecord& record) { Series("c", record.c); }
  void operator()(ThermistorTRRecord& record) { Series("B", record.b); }
  void operator()(ThermistorRTRecord& record) { Series("A", record.a); }
};

}  // namespace

std::vector<Parameter> ParametersOf(Record& record) {
  std::vector<Parameter> list;
  std::visit(Lister{list}, record);
  return list;
}

double BaseOfW(const Record& record) {
  if (const auto* const its90 = std::get_if<Its90Record>(&record)) return its90->rtpw;
  if (const auto* const wt90 = std::get_if<Wt90Record>(&record)) return wt90->rtpw;
  if (const auto* const ipts68 = std::get_if<Ipts68Record>(&record)) return ipts68->r0;
  if (const auto* const cvd = std::get_if<CvdRecord>(&record)) return cvd->r0;
  return 0;
}

Span SpanOf(std::int32_t subrange) {
  const SubrangeRow& row = RowOf(subrange);
  return {row.lowest, row.highest};
}

std::int32_t CoefficientsOf(std::int32_t subrange) { return RowOf(subrange).coefficients; }

}  // namespace vane::physics
