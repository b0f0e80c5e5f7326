// What stands in the dialog of the instrument's settings, one row per field: its controls, its
// label, its property, how that is shown, limited and gathered, and the passcode that it is behind.
//
// The order of the rows is that in which the focus goes through the controls; fields are loaded and
// gathered in orders of their own.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "vane/components/ui.h"
#include "vane/dialogs/number_field.h"
#include "vane/support/text_table.h"

namespace vane {

class CVaneT312B;

/// In the order of the rows.
enum class ESettingsField : std::int32_t {
  MODEL,
  IDENTIFICATION,
  NUM_CHANNELS,
  FILTER_TYPE,
  RESPONSE_TIME,
  THRESHOLD,
  UNITS,
  SAMPLE_ACTION,
  SAMPLE_N,
  SAMPLE_TIMING,
  INTERVAL,
  INTEGRATION_TIME,
  CONVERSION_TIME,
  RESOLUTIONS,
  TEMP_RESOLUTION,
  RES_RESOLUTION,
  RATIO_RESOLUTION,
  SAMPLING_NOTICE,
  CHANNEL_MODE,
  SCAN_CHANNEL,
  REPETITIONS,
  SCAN_MODE,
  SEQ_CHANNELS,
  USER_DEFINED_SEQ,
  STEPS,
  SEQUENCE,
  SELECTED_CHANNEL,
  CHANNELS,
  CHANNEL_SETTINGS,
  EXTERNAL_RESISTOR,
  INTERNAL_RESISTORS,
  RESISTOR_1_OHM,
  RESISTOR_10_OHM,
  RESISTOR_100_OHM,
  RESISTOR_10K_OHM,
  ADC,
  OVEN,
  CALIBRATION_WARNING,
  CALIBRATION_NOTICE,
  END,  ///< none
};

enum class EFieldShape : std::int32_t {
  HEADING,    ///< a label alone
  NOTICE,     ///< the same, red and bold, its text as it stands
  READ_ONLY,  ///< a text that can't be changed
  NUMBER,     ///< a text field
  STEPPED,    ///< a text field with an up-down
  CHOICE,     ///< a drop-down list
  LIST,       ///< a list box
  BUTTON,
};

/// Also the index of the frame that a tab shows.
enum class ESettingsTab : std::int32_t {
  FILTERING,
  SAMPLING,
  MEASUREMENT,
  CHANNELS,
  CALIBRATION,
  END,
  NONE = END,  ///< above the tabs
};

/// Of fields that one passcode flag of the instrument protects together.
enum class EProtectedGroup : std::int32_t {
  UNITS,
  SAMPLING,
  CALIBRATION,
  CONVERSION,
  END,
  NONE = END
};

struct FieldLimits {
  double minimum = 0;
  double maximum = 0;
};

/// A setting of the instrument as a plain number; a code is one too.
struct FieldProperty {
  double (*get)(const CVaneT312B& instrument) = nullptr;
  /// Raises the platform's overflow error for what the setting can't hold.
  void (*set)(CVaneT312B& instrument, double value) = nullptr;
};

struct FieldRow {
  ESettingsField id;
  ESettingsTab tab;
  EFieldShape shape;
  std::string_view name;  ///< behind "txt", "ud", "cbo", "lst" or "cmd"
  EText label;
  std::string_view labelname = name;  ///< behind "lbl"

  EProtectedGroup group = EProtectedGroup::NONE;
  bool ofscanner = false;  ///< out of use without one

  std::string (*text)(const CVaneT312B& instrument) = nullptr;  ///< of what is read-only
  void (*fill)(const CVaneT312B& instrument, ui::CListControl& lst) = nullptr;
  FieldProperty property{};

  // Of numbers.
  EFieldKind kind = EFieldKind::REAL;
  CNumberField::KeyFilter filter = nullptr;
  FieldLimits (*limits)(const CVaneT312B& instrument) = nullptr;
  std::string (*format)(const CVaneT312B& instrument) = nullptr;  ///< of a real one
  double (*gathered)(std::string_view text) = nullptr;
};

/// All rows, in the order of their ids.
std::span<const FieldRow> SettingsRows();

/// The orders in which fields are loaded: those of the first stretch, those that need a scanner,
/// and those behind the list of channels.
std::span<const ESettingsField> FieldsToLoad();
std::span<const ESettingsField> ScannerFieldsToLoad();
std::span<const ESettingsField> CalibrationFieldsToLoad();

/// The order in which fields are gathered; those of a scanner only with one.
std::span<const ESettingsField> FieldsToGather();

}  // namespace vane
