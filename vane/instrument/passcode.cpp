// The four groups of settings behind the instrument's passcode. The library only ever reads the
// flags and the passcode.
#include <string>
#include <string_view>

#include "vane/instrument/operations.h"
#include "vane/support/scramble.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

// The command that asks for the passcode, scrambled.
constexpr char kPasscodeCommand[] = "EV*";

struct ProtectionRow {
  std::string_view name;
  ECommand id;
  void (CVaneT312B::*store)(bool);
};

constexpr ProtectionRow kProtections[] = {
    {"Conversion", ECommand::READ_PROTECT_CONVERSION, &CVaneT312B::SetProtectConversion},
    {"CalParams", ECommand::READ_PROTECT_CALIBRATION, &CVaneT312B::SetProtectCalParams},
    {"Sampling", ECommand::READ_PROTECT_SAMPLING, &CVaneT312B::SetProtectSampling},
    {"UnitsTime", ECommand::READ_PROTECT_UNITS_TIME, &CVaneT312B::SetProtectUnitsTime},
};

std::string QueryPasscode(const CVaneT312B& instrument) {
  return Exchange(instrument, "QueryPasscode", [&] {
    return LineOf(instrument).ReadSetting(ECommand::RAW, true, ScrambleText(kPasscodeCommand));
  });
}

}  // namespace

bool QueryPasscodeProtectionSettings(CVaneT312B& instrument) {
  return Exchange(instrument, "QueryPasscodeProtectionSettings", [&] {
    for (const ProtectionRow& row : kProtections) {
      Exchange(instrument, "QueryProtect" + std::string(row.name), [&] {
        // These have no fields, and leave those of the exchange before them alone.
        (instrument.*row.store)(Contains(LineOf(instrument).ReadSetting(row.id), "ON"));
      });
    }
    return true;
  });
}

bool CVaneT312B::ValidatePasscode(ui::CWindow* frm) {
  return Labelled("CVaneT312B", "ValidatePasscode", [&] {
    const auto dialog = components_.factory.MakePasscodeDialog();
    dialog->SetHelpFile(HelpFile());
    for (;;) {
      std::string entered;
      if (!dialog->ShowDialog(entered, frm)) return false;
      if (entered == QueryPasscode(*this)) return true;
      ShowMessage(ResourceText(EText::PASSCODE_INCORRECT));
    }
  });
}

}  // namespace vane
