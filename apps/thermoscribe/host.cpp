#include "apps/thermoscribe/host.h"

#include <algorithm>
#include <utility>

#include "adapters/files/config_registry.h"
#include "adapters/serial/line_errors.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/terminal/terminal_output.h"
#include "apps/snapshots/gates.h"
#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/line_options.h"
#include "simulator/line_server.h"
#include "vane/channels/module.h"
#include "vane/support/failure.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
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
  if ((flags & kBoxYesNo) != 0) {
    return notices_.IsSilent()
               ? EBoxButton::NO
               : CTerminalPlatform::MessageBox(text, title, flags, helpfile, helpcontext);
  }
  ++boxes_;
  if ((flags & kBoxIconMask) == kBoxStop && onerror_) onerror_();
  const LibraryError error = PendingError();
  std::string lines = text;
  std::ranges::replace(lines, '\r', '\n');
  notices_.TellBox(BoxText(text, title, flags, helpfile, helpcontext), lines, error.Number(),
                   error.Source());
  return EBoxButton::OK;
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
      factory_(line_, interrupts_, options_.passcodefile, notices.TakesLooseText(),
               [this](const std::string& text) { Say(text); }),
      components_{platform_, factory_},
      installed_(components_),
      instrument_(components_),
      output_(options_.json, UsersPatience(), [this] {
        if (!outlivesreader_) notices_.Silence();
      }) {
  if (options_.seams.moment) line_->trace = std::make_shared<CMomentTrace>(options_.seams.moment);
  if (options_.seams.skipswaits) platform_.SkipWaits();
  platform_.SetInterruptHandler([this] { instrument_.CancelWait(); });
  platform_.SetErrorHandler([this] {
    if (!errorcode_) errorcode_ = CodeOfError(PendingError().Number());
  });
  // There is no help viewer to send the user to.
  instrument_.SetHelpFile({});
}

CHost::~CHost() = default;

void CHost::ForgetTroubles() {
  errorcode_.reset();
  line_->firsttrouble = {};
  line_->lastfailure = {};
}

const LineFailure& CHost::LastFailure() const { return line_->lastfailure; }

const std::shared_ptr<CConfigRegistry>& CHost::Registry() {
  if (!registry_) {
    registry_ =
        std::make_shared<CConfigRegistry>([this](const std::string& trouble) { Say(trouble); });
  }
  return registry_;
}

void CHost::ChooseLine() {
  TakeDefaults(options_, *Registry());
  line_->timeout = options_.timeout;
  if (!options_.tracefile.empty()) {
    line_->trace = trace_ = std::make_shared<CFileTrace>(options_.tracefile);
  }
  if (options_.simulated) {
    simulated_ = std::make_unique<simulator::CSimulatedLine>(*options_.simulated);
    simulated_->Start();
    line_->devices[EVanePortNumber::PORT_1] = simulated_->Path();
    line_->devicename = "the simulated line";
  } else {
    line_->devices[EVanePortNumber::PORT_1] = options_.port;
  }
  instrument_.SetRegistry(Registry());
  instrument_.InitializeCommunications({}, EVanePortNumber::PORT_1, options_.baud);
}

EExitCode CHost::Connect() {
  ChooseLine();
  // The run below would tell of each exchange that fails on a dead line; one message is enough.
  if (!instrument_.InitializeCommunicationSettings()) return CodeOfStoppedRun();
  if (instrument_.QueryChannelInfo()) return CheckFindings();
  if (!instrument_.Identification().empty() &&
      !Contains(instrument_.Identification(), kReadoutModel)) {
    return EExitCode::WRONG_MODEL;
  }
  return CodeOfStoppedRun();
}

// The run reaches its end over failures that it has only told of, or not even that: the search for
// a scanner of old firmware takes a dead line for no scanner.
EExitCode CHost::CheckFindings() {
  const LineFailure& first = line_->firsttrouble;
  if (!errorcode_ && first.number != 0) {
    Say(first.description);
    return ExitCodeOfLine(first.number);
  }
  if (const std::string problem = ProblemOfCounts(); !problem.empty()) {
    Say(problem);
    return EExitCode::LINE_DAMAGED;
  }
  return errorcode_.value_or(EExitCode::DONE);
}

std::string CHost::ProblemOfCounts() const {
  if (instrument_.NumModules() == 0) {
    return "The readout counts scanners that it can't have: one is the most.";
  }
  std::int16_t channels = 0;
  for (std::int16_t idx = 0; idx < instrument_.NumModules(); ++idx) {
    const CModule* const md = instrument_.Modules(idx);
    if (md == nullptr) return "The readout's module " + std::to_string(idx) + " can't be used.";
    channels = static_cast<std::int16_t>(channels + md->NumChannels());
  }
  if (channels == instrument_.NumChannels()) return {};
  return "The readout counts " + std::to_string(instrument_.NumChannels()) + " channels, but " +
         (instrument_.HasScanners() ? "with its scanner" : "without a scanner") + " it has " +
         std::to_string(channels) + ".";
}

std::string CHost::ChannelsText() const {
  return "The readout has the channels 1 to " + std::to_string(instrument_.NumChannels()) + ".";
}

CVaneT312BPRTTHRMChannel* CHost::FindChannel(std::int16_t number) {
  CVaneT312BPRTTHRMChannel* const channel = instrument_.GetChannelReference(number);
  if (channel == nullptr) Say(ChannelsText());
  return channel;
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

std::int32_t CHost::Troubles() const { return line_->failures + platform_.Boxes(); }

EExitCode CHost::ReadWell(const std::function<EExitCode()>& read) {
  EExitCode code = EExitCode::DONE;
  const EEnd end = CAudience::ReadWell([&] {
    code = read();
    return code == EExitCode::DONE;
  });
  return code != EExitCode::DONE ? code : CodeOf(end);
}

EExitCode CHost::OpenGates(std::span<const EGate> gates) {
  const EEnd end = thermoscribe::OpenGates(instrument_, *this, gates);
  if (end == EEnd::STOPPED && !IsInterrupted()) return EExitCode::NO_PASSCODE;
  return CodeOf(end);
}

void CHost::StartDryRun() {
  line_->preview = [this](const std::string& line) {
    output_.Record("line", {{"line", line}}, PrintableText(line));
  };
  platform_.SkipWaits();
}

// A readout that answers at last after it was lost, or a port that isn't back yet, are the same
// trouble as what came first.
EExitCode CHost::CodeOfLine() const {
  if (line_->firsttrouble.number == ERR_LINE_LOST) return EExitCode::LINE_DAMAGED;
  return LastFailure().refused ? EExitCode::REFUSED : ExitCodeOfLine(LastFailure().number);
}

EExitCode CHost::CodeOfError(std::int32_t number) const {
  // An error that isn't the line's own says nothing about the line, whatever happened there before.
  const bool isoflines = number == ERR_MEASUREMENT || number == LastFailure().number;
  if (isoflines && LastFailure().number != 0) return CodeOfLine();
  return IsInterrupted() ? EExitCode::ABORTED : EExitCode::FAILED;
}

EExitCode CHost::CodeOfStoppedRun() {
  if (IsInterrupted()) return EExitCode::ABORTED;
  if (errorcode_) return *errorcode_;
  // A readout that is silent when it is asked who it is ends a run without a word.
  if (platform_.Boxes() == 0 && LastFailure().number != 0) Say(LastFailure().description);
  return CodeOfLine();
}

EExitCode CHost::CodeOf(EEnd end) {
  switch (end) {
    case EEnd::DONE:
      return EExitCode::DONE;
    case EEnd::STOPPED:
      return CodeOfStoppedRun();
    case EEnd::RAISED:
      return raisedcode_;
    case EEnd::BADLY:
      break;
  }
  return errorcode_.value_or(CodeOfLine());
}

EExitCode CHost::ReportFailure(const std::string& action) {
  try {
    throw;
  } catch (const CUsageError& error) {
    Say(error.what());
    return EExitCode::USAGE;
  } catch (...) {
  }
  const bool isfirst = !errorcode_;
  ShowError(action, kCompanyName, {}, 0);
  const std::int32_t number = PendingError().Number();
  if (number == ERR_INVALID_CHANNEL && LastFailure().number != number) {
    Say(ChannelsText());
    return EExitCode::USAGE;
  }
  if (number == ERR_MEASUREMENT) {
    Say(CauseOfNoReading());
  } else if (isfirst && line_->firsttrouble.number != 0 && line_->firsttrouble.number != number) {
    // Nobody was told of it, and what is told now may follow from it.
    Say("Before that: " + line_->firsttrouble.description);
  }
  return *errorcode_;
}

std::string CHost::CauseOfNoReading() const {
  const auto& [number, description, refused] = LastFailure();
  if (refused) return "The readout refused (number " + std::to_string(number) + "): " + description;
  if (number != 0) return description;
  const MeasurementTrouble* const trouble = instrument_.LastMeasurementTrouble();
  if (trouble == nullptr || trouble->kind == EMeasurementTrouble::FAILED) {
    return "What the readout sent is no reading" +
           (trouble == nullptr ? "." : ": " + trouble->error.Description());
  }
  if (trouble->kind == EMeasurementTrouble::CANCELLED)
    return "Aborted while a reading was awaited.";
  return "No new reading came in time, which was " +
         std::to_string(instrument_.NewDataLimit() / 1000) +
         " s. Check that measuring is on (\"thermoscribe measure --start\"); --limit allows more "
         "time.";
}

EExitCode CHost::Close(EExitCode code, const std::string& command) {
  if (output_.IsReaderGone() && !outlivesreader_) return EExitCode::READER_GONE;
  if (code == EExitCode::DONE && errorcode_) {
    code = *errorcode_;
  } else if (code == EExitCode::DONE && line_->firsttrouble.number != 0) {
    Say(line_->firsttrouble.description);
    code = ExitCodeOfLine(line_->firsttrouble.number);
  }
  if (trace_ && !trace_->Trouble().empty()) {
    Say(trace_->Trouble());
    if (code == EExitCode::DONE) code = EExitCode::FAILED;
  }
  notices_.Close(code, Hint(code, command), LastFailure().number);
  return code;
}

}  // namespace vane::thermoscribe
