// The commands of the readout by name, and the fields that go with one.
//
// The library names a command when it asks its communications component for an exchange; the two
// ends of a line find the command's text and the form of its answer under that name
// (`protocol/command_table.h`).
#pragma once

#include <cstdint>
#include <string>

namespace vane {

/// One setting or action of the instrument. The numbers are fixed: they address the setting on
/// every communications component. A command that reads a setting has a name in `READ_`, one that
/// writes a setting or does something a name in `WRITE_`.
enum class ECommand : std::int32_t {
  RAW = -1,  ///< no command of its own: a text that goes out as it is
  WRITE_INITIALIZE = 0,
  READ_PROTECT_CONVERSION = 5,
  READ_PROTECT_CALIBRATION = 6,
  READ_PROTECT_SAMPLING = 7,
  READ_PROTECT_UNITS_TIME = 8,
  WRITE_START_MEASURE = 10,
  WRITE_STOP_MEASURE = 11,
  READ_MEASUREMENT = 12,
  READ_NEW_DATA = 15,
  READ_IDENTIFICATION = 18,
  READ_FILTER_TYPE = 24,
  WRITE_FILTER_TYPE = 25,
  READ_FILTER_RESPONSE_TIME = 26,
  WRITE_FILTER_RESPONSE_TIME = 27,
  READ_FILTER_THRESHOLD = 28,
  WRITE_FILTER_THRESHOLD = 29,
  READ_INTERVAL = 32,
  WRITE_INTERVAL = 33,
  READ_CONVERSION_TIME = 34,
  WRITE_CONVERSION_TIME = 35,
  READ_INTEGRATION_TIME = 36,
  WRITE_INTEGRATION_TIME = 37,
  READ_SCANNER_MODULES = 41,
  READ_CHANNEL_COUNT = 43,
  READ_REPETITIONS = 54,
  WRITE_REPETITIONS = 55,
  READ_CHANNEL_MODE = 56,
  WRITE_CHANNEL_MODE = 57,
  READ_SAMPLE_N = 58,
  WRITE_SAMPLE_N = 59,
  READ_SAMPLE_ACTION = 60,
  WRITE_SAMPLE_ACTION = 61,
  READ_RESOLUTION = 66,
  WRITE_RESOLUTION = 67,
  READ_RESISTANCE_RESOLUTION = 68,
  WRITE_RESISTANCE_RESOLUTION = 69,
  READ_RATIO_RESOLUTION = 70,
  WRITE_RATIO_RESOLUTION = 71,
  READ_CAL_PARAM = 76,
  WRITE_CAL_PARAM = 77,
  READ_ADC = 84,
  WRITE_ADC = 85,
  READ_OVEN = 86,
  WRITE_OVEN = 87,
  READ_SCANNER_MEASUREMENT = 103,
  READ_SCANNER_SCAN_MODE = 104,
  WRITE_SCANNER_SCAN_MODE = 105,
  READ_SCAN_SEQ_CHANNELS = 106,
  WRITE_SCAN_SEQ_CHANNELS = 107,
  READ_SCAN_SEQ_STEPS = 108,
  WRITE_SCAN_SEQ_STEPS = 109,
  READ_SCAN_STEP = 110,
  WRITE_SCAN_STEP = 111,
  READ_SCANNER_PROBE_INDEX = 112,
  WRITE_SCANNER_PROBE_INDEX = 113,
  READ_SCAN_CHANNEL = 116,
  WRITE_SCAN_CHANNEL = 117,
  READ_PROBE_SERIAL = 122,
  WRITE_PROBE_SERIAL = 123,
  READ_CONVERSION_TYPE = 130,
  WRITE_CONVERSION_TYPE = 131,
  READ_PROBE_INDEX = 136,
  WRITE_PROBE_INDEX = 137,
  READ_REF_RESISTOR = 138,
  WRITE_REF_RESISTOR = 139,
  READ_PROBE_CURRENT = 140,
  WRITE_PROBE_CURRENT = 141,
  READ_PROBE_3WIRE_OFFSET = 142,
  WRITE_PROBE_3WIRE_OFFSET = 143,
  READ_UNITS = 168,
  WRITE_UNITS = 169,
  READ_ITS90_LOW_RANGE = 205,
  WRITE_ITS90_LOW_RANGE = 206,
  READ_ITS90_HIGH_RANGE = 207,
  WRITE_ITS90_HIGH_RANGE = 208,
  READ_ITS90_RTPW = 209,
  WRITE_ITS90_RTPW = 210,
  READ_ITS90_LOW_A = 211,
  WRITE_ITS90_LOW_A = 212,
  READ_ITS90_LOW_B = 213,
  WRITE_ITS90_LOW_B = 214,
  READ_ITS90_LOW_C = 215,
  WRITE_ITS90_LOW_C = 216,
  READ_ITS90_HIGH_A = 217,
  WRITE_ITS90_HIGH_A = 218,
  READ_ITS90_HIGH_B = 219,
  WRITE_ITS90_HIGH_B = 220,
  READ_ITS90_HIGH_C = 221,
  WRITE_ITS90_HIGH_C = 222,
  READ_ITS90_HIGH_D = 223,
  WRITE_ITS90_HIGH_D = 224,
  READ_IPTS68_SCALE = 225,
  WRITE_IPTS68_SCALE = 226,
  READ_IPTS68_R0 = 229,
  WRITE_IPTS68_R0 = 230,
  READ_IPTS68_ALPHA = 231,
  WRITE_IPTS68_ALPHA = 232,
  READ_IPTS68_DELTA = 233,
  WRITE_IPTS68_DELTA = 234,
  READ_IPTS68_A = 239,
  WRITE_IPTS68_A = 240,
  READ_IPTS68_C = 241,
  WRITE_IPTS68_C = 242,
  READ_CVD_R0 = 243,
  WRITE_CVD_R0 = 244,
  READ_CVD_ALPHA = 245,
  WRITE_CVD_ALPHA = 246,
  READ_CVD_DELTA = 247,
  WRITE_CVD_DELTA = 248,
  READ_CVD_BETA = 249,
  WRITE_CVD_BETA = 250,
  READ_THERMISTOR_RT = 257,
  WRITE_THERMISTOR_RT = 258,
  READ_THERMISTOR_TR = 259,
  WRITE_THERMISTOR_TR = 260,
  READ_POLYNOMIAL = 261,
  WRITE_POLYNOMIAL = 262,
  READ_HISTORY_LOG = 275,
  READ_MEMORY_LOG = 276,
  WRITE_DATE = 288,
  WRITE_TIME = 290,
};

/// The command that writes what `read` reads. Only for a setting that can be written.
constexpr ECommand WriteOf(ECommand read) {
  return static_cast<ECommand>(static_cast<std::int32_t>(read) + 1);
}

/// Whether `command` reads or writes the setting that `read` reads.
constexpr bool IsAbout(ECommand command, ECommand read) {
  return command == read || command == WriteOf(read);
}

/// The text fields that go with a command; numbers travel as text with "." as the decimal point. A
/// field stays set until the next `ClearAll`.
struct CommandParams {
  std::string value;  ///< what to write
  std::string Channel;
  std::string Probe;
  std::string Range;
  std::string Index;
  std::string FilterCode;

  void ClearAll() { *this = CommandParams{}; }

  friend bool operator==(const CommandParams&, const CommandParams&) = default;
};

}  // namespace vane
