#include "apps/thermoscribe/host.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "adapters/files/registry.h"
#include "adapters/terminal/terminal_output.h"
#include "vane/support/failure.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

class CMomentTrace final : public CLineTrace {
 public:
  explicit CMomentTrace(std::function<void()> moment) : moment_(std::move(moment)) {}

  void Record(ETraceMark, std::string_view) override { moment_(); }

 private:
  std::function<void()> moment_;
};

}  // namespace

// A box with nothing to answer is told like everything else; the error behind it is at hand here.
EBoxButton CHostPlatform::MessageBox(const std::string& text, const std::string& title,
                                     std::int32_t flags, const std::string& helpfile,
                                     std::int32_t helpcontext) {
  if ((flags & kBoxYesNo) == 0) ++boxes_;
  if (!notices_.IsJson() || (flags & kBoxYesNo) != 0) {
    return CTerminalPlatform::MessageBox(text, title, flags, helpfile, helpcontext);
  }
  const LibraryError error = PendingError();
  std::string lines = text;
  std::ranges::replace(lines, '\r', '\n');
  notices_.Tell(lines, error.Number(), error.Source());
  return EBoxButton::kOk;
}

void CHostPlatform::RunMessageQueue(std::uint32_t longestwait) {
  if (moment_) moment_();
  CTerminalPlatform::RunMessageQueue(longestwait);
}

CHost::CHost(HostOptions options, CNotices& notices)
    : options_(std::move(options)),
      notices_(notices),
      platform_(interrupts_, notices, options_.seams.moment),
      line_(std::make_shared<LineSettings>()),
      factory_(line_, interrupts_, options_.passcodefile),
      components_{platform_, factory_},
      installed_(components_),
      instrument_(components_),
      output_(std::cout, options_.json) {
  if (options_.seams.moment) line_->trace = std::make_shared<CMomentTrace>(options_.seams.moment);
  if (options_.seams.skipswaits) platform_.SkipWaits();
  platform_.SetInterruptHandler([this] { instrument_.CancelWait(); });
  // There is no help viewer to send the user to.
  instrument_.SetHelpFile({});
}

EExitCode CHost::Connect() {
  line_->timeout = options_.timeout;
  if (!options_.tracefile.empty()) line_->trace = std::make_shared<CFileTrace>(options_.tracefile);
  if (options_.simulated) {
    simulated_ = std::make_unique<simulator::CSimulatedLine>(*options_.simulated);
    simulated_->Start();
    line_->devices[EVanePortNumber::PORT_1] = simulated_->Path();
  } else if (!options_.port.empty()) {
    line_->devices[EVanePortNumber::PORT_1] = options_.port;
  }
  instrument_.SetRegistry(
      std::make_shared<CConfigRegistry>([](const std::string& trouble) { ShowMessage(trouble); }));
  instrument_.InitializeCommunications({}, EVanePortNumber::PORT_1, options_.baud);

  // The run below would tell of each exchange that fails on a dead line; one message is enough.
  if (!instrument_.InitializeCommunicationSettings()) return ExitCodeOfLine(LastFailure().number);
  if (instrument_.QueryChannelInfo()) {
    // A module that could not be made has been told of, and its place is empty.
    for (std::int16_t idx = 0; idx < instrument_.NumModules(); ++idx) {
      if (instrument_.Modules(idx) == nullptr) return EExitCode::FAILED;
    }
    return EExitCode::DONE;
  }
  if (instrument_.Identification().empty()) {
    Say(LastFailure().description);
    return ExitCodeOfLine(LastFailure().number);
  }
  return Contains(instrument_.Identification(), kReadoutModel) ? EExitCode::ABORTED
                                                               : EExitCode::WRONG_MODEL;
}

EExitCode CHost::ReadSettings() {
  if (const EExitCode code = Connect(); code != EExitCode::DONE) return code;
  if (!instrument_.QueryInfo(ProgressWindow(), false)) return CodeOfStoppedRun();
  // Stopped within the scan sequence, the library gives the steps up to there as a whole one.
  if (IsInterrupted()) {
    Say("Aborted while the scan sequence was read.");
    return EExitCode::ABORTED;
  }
  return EExitCode::DONE;
}

EExitCode CHost::ReadWell(const std::function<EExitCode()>& read) {
  const std::int32_t failures = line_->failures;
  const std::int32_t boxes = platform_.Boxes();
  EExitCode code = EExitCode::FAILED;
  try {
    code = read();
  } catch (...) {
    return ReportFailure("reading from the instrument");
  }
  if (code == EExitCode::DONE && IsInterrupted()) return EExitCode::ABORTED;
  if (code != EExitCode::DONE || (line_->failures == failures && platform_.Boxes() == boxes)) {
    return code;
  }
  Say("Not everything could be read well.");
  const EExitCode linecode = ExitCodeOfLine(LastFailure().number);
  return linecode == EExitCode::DONE ? EExitCode::FAILED : linecode;
}

EExitCode CHost::OpenGates(std::span<const EGate> gates) {
  const auto isshut = [this](EGate gate) {
    const auto& it = instrument_;
    switch (gate) {
      case EGate::UNITS_TIME:
        return it.UnitsTimePasscodeState() != ET312BPasscodeState::PS_ENABLED;
      case EGate::SAMPLING:
        return it.SamplingPasscodeState() != ET312BPasscodeState::PS_ENABLED;
      case EGate::CALIBRATION:
        return it.CalParamPasscodeState() != ET312BPasscodeState::PS_ENABLED;
      case EGate::CONVERSION:
        return it.ConvPasscodeState() != ET312BPasscodeState::PS_ENABLED;
      case EGate::NONE:
        break;
    }
    return false;
  };
  if (std::ranges::none_of(gates, isshut)) return EExitCode::DONE;
  if (!instrument_.ValidatePasscode(nullptr)) {
    return IsInterrupted() ? EExitCode::ABORTED : EExitCode::NO_PASSCODE;
  }
  // One passcode opens all groups.
  instrument_.SetUnitsTimePasscodeState(ET312BPasscodeState::PS_ENABLED);
  instrument_.SetSamplingPasscodeState(ET312BPasscodeState::PS_ENABLED);
  instrument_.SetCalParamPasscodeState(ET312BPasscodeState::PS_ENABLED);
  instrument_.SetConvPasscodeState(ET312BPasscodeState::PS_ENABLED);
  return EExitCode::DONE;
}

void CHost::StartDryRun() {
  line_->preview = [this](const std::string& line) {
    output_.Record("line", {{"line", line}}, PrintableText(line));
  };
  platform_.SkipWaits();
}

EExitCode CHost::CodeOfStoppedRun() const {
  if (IsInterrupted()) return EExitCode::ABORTED;
  return ExitCodeOfLine(LastFailure().number);
}

EExitCode CHost::ReportFailure(const std::string& action) {
  ShowError(action, kCompanyName, {}, 0);
  const std::int32_t number = PendingError().Number();
  if (number == ERR_INVALID_CHANNEL) {
    Say("The readout has the channels 1 to " + std::to_string(instrument_.NumChannels()) + ".");
    return EExitCode::USAGE;
  }
  // An error that isn't the line's own says nothing about the line, whatever happened there before.
  if (number != ERR_MEASUREMENT && number != LastFailure().number) return EExitCode::FAILED;
  const EExitCode code = ExitCodeOfLine(LastFailure().number);
  if (number == ERR_MEASUREMENT) Say(CauseOfNoReading(code));
  return code;
}

std::string CHost::CauseOfNoReading(EExitCode code) const {
  const auto& [number, description, refused] = LastFailure();
  if (number == 0) {
    return "No new reading came in time. Check that measuring is on (\"thermoscribe measure "
           "--start\"); --limit allows more time.";
  }
  if (!refused && code != EExitCode::REFUSED) return description;
  return "The readout refused (number " + std::to_string(number) + "): " + description;
}

void CHost::Close(EExitCode code, const std::string& command) {
  notices_.Close(code, Hint(code, command), LastFailure().number);
}

}  // namespace vane
