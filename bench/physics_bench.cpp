// How exact the directions of each type of thermometer are to each other over a million points, and
// how fast the scale of 1990 is beside the bare polynomial that it needs at the least.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "bench/measuring.h"
#include "physics/scale_1990.h"
#include "physics/sensor.h"
#include "tests/physics/samples.h"

namespace vane::bench {
namespace {

using namespace physics;

constexpr int kPoints = 1'000'000;

void RoundTrips() {
  std::printf("Temperature to resistance and back, %d points\n", kPoints);
  for (const Sample& sample : Samples()) {
    const CSensor sensor(sample.record);
    double worst = 0;
    for (int i = 0; i <= kPoints; ++i) {
      const double kelvin = sample.lowest + (sample.highest - sample.lowest) * i / kPoints;
      const double back = sensor.Temperature(sensor.Resistance(kelvin).value).value;
      worst = std::max(worst, std::abs(back - kelvin));
    }
    std::printf("  %-20s %7.1e K\n", sample.name.c_str(), worst);
  }
  double worst = 0;
  for (int i = 0; i <= kPoints; ++i) {
    const double kelvin = kLowestT90 + (kHighestT90 - kLowestT90) * i / kPoints;
    worst = std::max(worst, std::abs(PublishedInverse(ReferenceRatio(kelvin)) - kelvin));
  }
  std::printf("  %-20s %7.1e K, which are not used\n", "published inverses", worst);
}

// Nanoseconds of one call of `convert`, over resistances from `low` to `high`.
template <class Convert>
double Time(double low, double high, Convert convert) {
  const auto start = steady_clock::now();
  double sum = 0;
  for (int i = 0; i < kPoints; ++i) sum += convert(low + (high - low) * i / kPoints);
  const double took = SecondsSince(start);
  if (std::isnan(sum)) std::printf("not a number\n");
  return took * 1e9 / kPoints;
}

// What a table of the scale's own approximation would take: a polynomial of degree 9.
double Polynomial(double x) {
  static constexpr std::array kD = {439.932854, 472.418020, 37.684494, 7.472018, 2.920828,
                                    0.005184,   -0.963864,  -0.188732, 0.191203, 0.049025};
  double value = kD.back();
  for (std::size_t i = kD.size() - 1; i-- > 0;) value = value * x + kD[i];
  return value;
}

void Speed() {
  const CSensor sensor(Samples()[0].record);
  std::vector<double> polynomial;
  std::vector<double> above;
  std::vector<double> below;
  for (int round = 0; round < 9; ++round) {
    const auto convert = [&](double ohms) { return sensor.Temperature(ohms).value; };
    polynomial.push_back(Time(0.5, 1.5, Polynomial));
    above.push_back(Time(26, 84, convert));
    below.push_back(Time(0.5, 25, convert));
  }
  std::printf("A resistance to its temperature by ITS-90, with deviations\n");
  std::printf(
      "  above the triple point of water %6.1f ns, %4.1f million a second, %4.1f of a bare "
      "polynomial\n",
      MedianOf(above), 1e3 / MedianOf(above), MedianRatio(above, polynomial));
  std::printf("  below it                        %6.1f ns, %4.1f million a second, %4.1f\n",
              MedianOf(below), 1e3 / MedianOf(below), MedianRatio(below, polynomial));
}

}  // namespace
}  // namespace vane::bench

int main() {
  vane::bench::RoundTrips();
  vane::bench::Speed();
}
