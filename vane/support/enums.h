// The public enumerations of the instrument and its channels. Every one may hold values without a
// name: they come from the instrument's replies and from hosts.
#pragma once

#include <cstdint>

namespace vane {

/// Display units; 3, 5, 7, 8 and 9 have no name.
enum class ET312BUnits : std::int32_t {
  UNITS_NONE = -1,
  UNITS_DEGREESC = 0,
  UNITS_DEGREESF = 1,
  UNITS_KELVIN = 2,
  UNITS_OHMS = 4,
  UNITS_RATIO = 6,
  UNITS_W = 10,
};

/// Index of a calibration parameter.
enum class ET312BCalParams : std::int32_t {
  CP_EXTERNAL = 0,
  CP_1_OHM = 1,
  CP_10_OHM = 2,
  CP_100_OHM = 3,
  CP_10K_OHM = 4,
};

enum class ET312BFilterType : std::int32_t { FT_NONE = 0, FT_AVERAGE = 1, FT_EXPONENTIAL = 2 };

/// Whether editing of a protected group is open (`PS_ENABLED`) or shut.
enum class ET312BPasscodeState : std::int32_t { PS_ENABLED = 0, PS_DISABLED = 1 };

/// What the instrument measures.
enum class ET312BChannelMode : std::int32_t {
  CM_ALTERNATE = 0,
  CM_INPUT_1 = 1,
  CM_INPUT_2 = 2,
  CM_SCANNER_CHANNEL = 3,
  CM_SCANNER_SEQUENCE = 4,
};

/// How a scanner sequence runs; 0 has no name.
enum class ET312BScannerScanMode : std::int32_t {
  SSM_SCAN = 1,
  SSM_INPUT_2_SCAN = 2,
  SSM_ALT_INPUT_2_SCAN = 3,
  SSM_ALT_SCAN_1_SCAN = 4,
  SSM_USER_DEFINED = 5,
};

/// The host's one word for both modes: the first five members are channel modes and hold without a
/// scanner, the others are scanner modes and hold with one. So the numbers overlap.
enum class ET312BScanMode : std::int32_t {
  SM_ALTERNATE = 0,
  SM_CHANNEL_1 = 1,
  SM_CHANNEL_2 = 2,
  SM_SCANNER_CHANNEL = 3,
  SM_SCAN_SEQUENCE = 4,
  SM_SCAN = 1,
  SM_INPUT_2_SCAN = 2,
  SM_ALT_INPUT_2_SCAN = 3,
  SM_ALT_SCAN_1_SCAN = 4,
  SM_USER_DEFINED = 5,
};

/// What the instrument does after a sample run.
enum class ET312BSampleAction : std::int32_t { SA_RUN = 0, SA_STOP = 1, SA_SAMPLE_N = 2 };

/// Which of the instrument's two logs.
enum class ET312BDownloadLogOption : std::int32_t {
  DOWNLOAD_HISTORY_LOG = 0,
  DOWNLOAD_MEMORY_LOG = 1
};

/// Both give one file: a logged reading doesn't tell its channel.
enum class ET312BDownloadOption : std::int32_t {
  DOWNLOAD_SINGLE_FILE = 0,
  DOWNLOAD_MULTIPLE_FILES = 1
};

/// Zero is on.
enum class ET312BOven : std::int32_t { OVEN_ON = 0, OVEN_OFF = 1 };

/// Reference resistor of a probe.
enum class ET312BProbeRefResistor : std::int32_t {
  PRR_NONE = -1,
  PRR_EXTERNAL = 0,
  PRR_1_OHM = 1,
  PRR_10_OHM = 2,
  PRR_100_OHM = 3,
  PRR_10K_OHM = 4,
};

}  // namespace vane
