// The words of a probe's record.
#pragma once

#include "vane/components/conversion.h"
#include "vane/support/enums.h"
#include "vane/support/words.h"

namespace vane {

inline constexpr WordRow<ET312BProbeRefResistor> kRefResistors[] = {
    {"EXT", "EXT", ET312BProbeRefResistor::PRR_EXTERNAL},
    {"10 KOHM", "10K", ET312BProbeRefResistor::PRR_10K_OHM},
    {"100 OHM", "100", ET312BProbeRefResistor::PRR_100_OHM},
    {"10 OHM", "10", ET312BProbeRefResistor::PRR_10_OHM},
    {"1 OHM", "1", ET312BProbeRefResistor::PRR_1_OHM},
};

/// The reply for R(T) also holds the mark of a resistance.
inline constexpr WordRow<EVaneConversionType> kConversionTypes[] = {
    {"ITS-90", "90", EVaneConversionType::CONV_ITS90},
    {"IPTS-68", "68", EVaneConversionType::CONV_IPTS68},
    {"CVD", "CVD", EVaneConversionType::CONV_CVD},
    {"THRM-R(T)", "TT", EVaneConversionType::CONV_THERMISTOR_RT},
    {"THRM-T(R)", "TR", EVaneConversionType::CONV_THERMISTOR_TR},
    {"POLYNOMIAL", "POLY", EVaneConversionType::CONV_POLYNOMIAL},
    {"R(", "O", EVaneConversionType::CONV_RESISTANCE},
    {"W(T90)", "W", EVaneConversionType::CONV_WT90},
    {"RATIO", "R", EVaneConversionType::CONV_RATIO},
};

}  // namespace vane
