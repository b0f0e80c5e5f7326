// Prints what the library computes for samples of each type, with all digits, for a check by an
// evaluation of higher precision: "type parameters | kelvin ohms".
#include <cstdio>
#include <variant>

#include "physics/sensor.h"
#include "tests/physics/samples.h"

namespace {

using namespace vane::physics;

// The subranges or the scale.
void PrintShape(const Record& record) {
  if (const auto* const its90 = std::get_if<Its90Record>(&record)) {
    std::printf("ITS90 %d %d", its90->low, its90->high);
  } else if (std::holds_alternative<Wt90Record>(record)) {
    std::printf("WT90");
  } else if (const auto* const ipts68 = std::get_if<Ipts68Record>(&record)) {
    std::printf("IPTS68 %d", ipts68->is90 ? 90 : 68);
  } else if (std::holds_alternative<CvdRecord>(record)) {
    std::printf("CVD");
  } else if (std::holds_alternative<PolynomialRecord>(record)) {
    std::printf("POLYNOMIAL");
  } else {
    std::printf(std::holds_alternative<ThermistorTRRecord>(record) ? "TR" : "RT");
  }
}

}  // namespace

int main() {
  constexpr int kPlaces = 400;
  for (Sample sample : Samples()) {
    const CSensor sensor(sample.record);
    for (int i = 0; i <= kPlaces; ++i) {
      const double kelvin = sample.lowest + (sample.highest - sample.lowest) * i / kPlaces;
      PrintShape(sample.record);
      for (const Parameter& one : ParametersOf(sample.record)) {
        std::printf(" %s=%.17g", one.name.c_str(), *one.value);
      }
      std::printf(" | %.17g %.17g\n", kelvin, sensor.Resistance(kelvin).value);
    }
  }
  for (int celsius = -200; celsius <= 850; ++celsius) {
    std::printf("IEC | %d %.17g\n", celsius,
                CSensor(IecRecord()).Resistance(celsius + 273.15).value);
  }
}
