// The four groups of settings behind the instrument's passcode. The library only ever reads the
// flags and the passcode.
#include "vane/instrument/t312b.h"
#include "vane/support/scramble.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

// The command that asks for the passcode, scrambled.
constexpr char kPasscodeCommand[] = "EV*";

}  // namespace

bool CVaneT312B::QueryProtection(std::string_view name, ECommand id,
                                 void (CVaneT312B::*store)(bool)) {
  return Exchange("QueryProtect" + std::string(name), [&] {
    // These have no fields, and leave those of the exchange before them alone.
    (this->*store)(Contains(Line().ReadSetting(id), "ON"));
    return true;
  });
}

bool CVaneT312B::QueryPasscodeProtectionSettings() {
  return Exchange("QueryPasscodeProtectionSettings", [&] {
    bool done = QueryProtection("Conversion", ECommand::READ_PROTECT_CONVERSION,
                                &CVaneT312B::SetProtectConversion);
    done &= QueryProtection("CalParams", ECommand::READ_PROTECT_CALIBRATION,
                            &CVaneT312B::SetProtectCalParams);
    done &= QueryProtection("Sampling", ECommand::READ_PROTECT_SAMPLING,
                            &CVaneT312B::SetProtectSampling);
    done &= QueryProtection("UnitsTime", ECommand::READ_PROTECT_UNITS_TIME,
                            &CVaneT312B::SetProtectUnitsTime);
    return done;
  });
}

bool CVaneT312B::QueryPasscode(std::string& passcode) {
  return Exchange("QueryPasscode", [&] {
    passcode = Line().ReadSetting(ECommand::RAW, true, ScrambleText(kPasscodeCommand));
    return true;
  });
}

bool CVaneT312B::ValidatePasscode(ui::CWindow* frm) {
  return Labelled("CVaneT312B", "ValidatePasscode", [&] {
    const auto dialog = components_.factory.MakePasscodeDialog();
    dialog->SetHelpFile(HelpFile());
    for (;;) {
      std::string entered;
      std::string passcode;
      if (!dialog->ShowDialog(entered, frm) || !QueryPasscode(passcode)) return false;
      if (entered == passcode) return true;
      ShowMessage(ResourceText(103));
    }
  });
}

}  // namespace vane
