#include "physics/scale_1968.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace vane::physics {
namespace {

constexpr double kIcePoint = 273.15;

// T68 in K by ln W.
constexpr std::array kA = {273.15,
                           250.8462096788033,
                           135.0998699649997,
                           52.78567590085172,
                           27.67685488541052,
                           39.10532053766837,
                           65.56132305780693,
                           80.80358685598667,
                           70.52421182340520,
                           44.78475896389657,
                           21.25256535560578,
                           7.679763581708458,
                           2.136894593828500,
                           0.4598433489280693,
                           7.636146292316480e-2,
                           9.693286203731213e-3,
                           9.230691540070075e-4,
                           6.381165909526538e-5,
                           3.022932378746192e-6,
                           8.775513913037602e-8,
                           1.177026131254774e-9};

constexpr std::array kDifference = {0.0,       -0.148759, -0.267408, 1.080760, 1.269056,
                                    -4.089591, -1.871251, 7.438081,  -3.536296};

template <std::size_t N>
double Evaluate(const std::array<double, N>& coefficients, double x) {
  double value = coefficients[N - 1];
  for (std::size_t i = N - 1; i-- > 0;) value = value * x + coefficients[i];
  return value;
}

template <std::size_t N>
double EvaluateSlope(const std::array<double, N>& coefficients, double x) {
  double slope = 0;
  for (std::size_t i = N - 1; i > 0; --i) {
    slope = slope * x + static_cast<double>(i) * coefficients[i];
  }
  return slope;
}

}  // namespace

double ReferenceTemperature68(double ratio) { return Evaluate(kA, std::log(ratio)); }

double ReferenceRatio68(double kelvin) {
  double x = 0.0042 * (kelvin - kIcePoint);  // ln W, about
  if (kelvin < 100) x = 1.9 * std::log(kelvin / kIcePoint) - 0.4;
  for (int i = 0; i < 60; ++i) {
    const double step = (kelvin - Evaluate(kA, x)) / EvaluateSlope(kA, x);
    x += step;
    if (std::abs(step) < 1e-9) break;
  }
  return std::exp(x);
}

double CorrectionOfT68(double celsius) {
  return 0.045 * (celsius / 100) * (celsius / 100 - 1) * (celsius / 419.58 - 1) *
         (celsius / 630.74 - 1);
}

double DifferenceOfScales(double celsius90) { return Evaluate(kDifference, celsius90 / 630); }

double T68OfT90(double celsius90) { return celsius90 - DifferenceOfScales(celsius90); }

double T90OfT68(double celsius68) {
  double celsius90 = celsius68;
  // The difference changes by less than 1 mK in a kelvin: each round brings three digits.
  for (int i = 0; i < 6; ++i) celsius90 = celsius68 + DifferenceOfScales(celsius90);
  return celsius90;
}

}  // namespace vane::physics
