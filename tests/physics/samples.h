// One record of each type, as calibrations have them, with the range that it is made for.
#pragma once

#include <string>
#include <vector>

#include "physics/iec60751.h"
#include "physics/record.h"
#include "physics/scale_1968.h"

namespace vane::physics {

struct Sample {
  std::string name;
  Record record;
  double lowest;  ///< K
  double highest;
};

inline std::vector<Sample> Samples() {
  const auto its90 = [](double rtpw, std::int32_t low, std::array<double, 7> lows,
                        std::int32_t high, std::array<double, 4> highs) {
    return Its90Record{rtpw, low, lows, high, highs};
  };
  const std::array<double, 7> low1{-2.4153e-4, -3.1286e-6, 8.1342e-7, 6.2714e-7,
                                   9.3381e-8,  1.27e-9,    -4.2e-9};
  const std::array<double, 4> high6{-2.3893e-4, 2.4107e-6, -3.812e-7, 4.655e-6};
  return {
      {"ITS-90 1+6", its90(25.4786312, 1, low1, 6, high6), 13.8034, 1234.92},
      {"ITS-90 2+7", its90(25.51, 2, {-2.4e-4, -3e-6, 7e-7, 5e-7, 8e-8}, 7, {-2.4e-4, 2e-6, -3e-7}),
       24.5562, 933.47},
      {"ITS-90 3+8", its90(100.02, 3, {-2.4e-4, -3e-6, 7e-7}, 8, {-2.41e-4, 2e-6}), 54.3585,
       692.67},
      {"ITS-90 4+9", its90(25.4, 4, {-2.2e-4, -8e-6}, 9, {-2.2e-4, 3e-6}), 83.8059, 505.07},
      {"ITS-90 5+10", its90(25.4, 5, {-2.2e-4, -8e-6}, 10, {-2.2e-4}), 234.3157, 429.74},
      {"ITS-90 11", its90(25.4, kNoSubrange, {}, 11, {-2.2e-4}), 273.15, 302.91},
      {"ITS-90 5", its90(25.4, 5, {-2.2e-4, -8e-6}, kNoSubrange, {}), 234.3157, 302.91},
      {"W(T90)", Wt90Record{25.5}, 13.8034, 1234.92},
      {"IPTS-68, 1968", Ipts68Record{25.5, 3.92597e-3, 1.496334, 1.2e-7, 2.1e-14, false}, 90.19,
       903.88},
      {"IPTS-68, 1990", Ipts68Record{25.5, 3.92597e-3, 1.496334, 1.2e-7, 2.1e-14, true}, 90.2,
       903.1},
      {"Callendar-Van Dusen", IecRecord(), 73.15, 1123.15},
      {"polynomial",
       PolynomialRecord{{-242.02, 2.2228, 2.5859e-3, -4.826e-6, -2.8183e-8, 1.5243e-10}}, 80, 420},
      {"thermistor T(R)", ThermistorTRRecord{{1.129241e-3, 2.341077e-4, 1e-8, 8.775468e-8}}, 200,
       500},
      {"thermistor R(T)", ThermistorRTRecord{{-4.2, 3800, 1000, -1e5}}, 200, 500},
  };
}

}  // namespace vane::physics
