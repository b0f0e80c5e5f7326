#include "adapters/serial/serial_communications.h"

#include <algorithm>
#include <cstddef>
#include <locale>
#include <optional>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "adapters/serial/line_errors.h"
#include "adapters/serial/serial_ports.h"
#include "protocol/command_table.h"
#include "protocol/framing.h"

namespace vane {
namespace {

constexpr std::int32_t kKindT312B = 9;
constexpr std::string_view kNotShown = "(not shown)";
constexpr std::size_t kHeadLength = 6;                 // "#", tag, blank
constexpr std::size_t kFrameLength = kHeadLength + 5;  // and "*", check value

// Start bit, eight data bits, stop bit.
constexpr std::int32_t kBitsPerCharacter = 10;

// Of an unexpected answer, a message shows this much.
constexpr std::size_t kShownOfAnswer = 60;

[[noreturn]] void Fail(std::int32_t number, std::string description) {
  throw LineFailure{number, std::move(description)};
}

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string FromLatin1(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | (code >> 6));
      utf8 += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return utf8;
}

// Something may stand before an answer on its line: what is left of one that lost its end.
std::optional<protocol::FramedLine> FindFrame(std::string_view line) {
  for (std::size_t at = line.find('#'); at != line.npos; at = line.find('#', at + 1)) {
    if (const auto frame = protocol::ParseLine(line.substr(at))) return frame;
  }
  return std::nullopt;
}

// The line from the "#" of its frame on.
std::string_view FrameText(std::string_view line, const protocol::FramedLine& frame) {
  return line.substr(static_cast<std::size_t>(frame.body.data() - line.data()) - kHeadLength);
}

LineClock::duration TimeOnLine(std::size_t characters, const BaudRateRow& rate) {
  return std::chrono::microseconds(static_cast<std::int64_t>(characters) * kBitsPerCharacter *
                                   1'000'000 / rate.bits);
}

std::string Quoted(std::string_view answer) {
  const bool islong = answer.size() > kShownOfAnswer;
  return "\"" + EscapedText(answer.substr(0, kShownOfAnswer)) + (islong ? "...\"" : "\"");
}

std::string Seconds(std::chrono::milliseconds time) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::chrono::duration<double>(time).count() << " s";
  return text.str();
}

}  // namespace

CSerialCommunications::CSerialCommunications(std::shared_ptr<LineSettings> settings)
    : settings_(std::move(settings)),
      comport_(port_),
      instrumentkind_(kKindT312B),
      // An answer to an earlier program's command may still be under way.
      tag_(static_cast<std::uint16_t>(std::random_device{}())) {}

std::string CSerialCommunications::ReadSetting(ECommand id, bool flag, const std::string& text) {
  try {
    return Run("CSerialCommunications - ReadSetting", id, true, text);
  } catch (const LibraryError& error) {
    // A refusal may carry any number, that of silence too.
    const bool issilence = error.Number() == ERR_LINE_NO_ANSWER && !settings_->lastfailure.refused;
    if (flag || !issilence) throw;
    return {};
  }
}

void CSerialCommunications::WriteSetting(ECommand id) {
  Run("CSerialCommunications - WriteSetting", id, false, {});
}

std::string CSerialCommunications::Run(const char* label, ECommand id, bool isread,
                                       const std::string& rawtext) {
  std::string reply;
  LineFailure failure;
  try {
    const SentCommand command = MakeCommand(id, isread, rawtext);
    if (settings_->preview && !isread) {
      settings_->preview(protocol::FrameLine(++tag_, command.text));
    } else {
      reply = Exchange(command);
    }
  } catch (const LineFailure& caught) {
    failure = caught;
    Trace(ETraceMark::NOTE, failure.description);
  }
  if (comport_.AutoClose() && port_.IsOpen()) {
    port_.Close();
    Trace(ETraceMark::NOTE, "closed");
  }
  settings_->lastfailure = failure;
  if (failure.number == 0) return reply;
  // With one try alone somebody only looks whether anything answers; that nothing does, or refuses,
  // is an answer then.
  const bool isanswer = Tries() == 1 && (failure.refused || failure.number == ERR_LINE_NO_ANSWER);
  if (!isanswer) {
    ++settings_->failures;
    LineFailure& first = settings_->firsttrouble;
    if (first.number == 0 && !failure.refused) first = failure;
  }
  throw LibraryError(failure.number, label, failure.description);
}

CSerialCommunications::SentCommand CSerialCommunications::MakeCommand(
    ECommand id, bool isread, const std::string& rawtext) const {
  if (instrumentkind_ != kKindT312B) {
    Fail(ERR_LINE_INSTRUMENT_KIND, "Instruments of the kind " + std::to_string(instrumentkind_) +
                                       " can't be reached; only 9, the T312B, can.");
  }
  SentCommand command{rawtext, isread && id == ECommand::RAW, {.kind = protocol::EReply::ANY}};
  if (command.issecret) {
    const auto isprintable = [](char c) { return c >= ' ' && c <= '~'; };
    if (rawtext.empty() || !std::ranges::all_of(rawtext, isprintable)) {
      Fail(ERR_LINE_BAD_FIELD, "The raw command is empty or holds a character that can't be sent.");
    }
    if (rawtext == protocol::kPasscodeCommand) command.form = protocol::kPasscodeForm;
  } else {
    const protocol::CommandRow* row = protocol::FindCommand(id);
    if (row == nullptr || row->IsRead() != isread) {
      Fail(ERR_LINE_UNKNOWN_COMMAND,
           "The readout has no " + std::string(isread ? "read" : "write") +
               " command with the id " + std::to_string(static_cast<std::int32_t>(id)) + ".");
    }
    std::string problem;
    auto text = protocol::BuildCommand(*row, params_, problem);
    if (!text) Fail(ERR_LINE_BAD_FIELD, std::move(problem));
    command.text = std::move(*text);
    command.form = row->form;
  }
  if (command.text.size() + kFrameLength > protocol::kMaxLineLength) {
    Fail(ERR_LINE_BAD_FIELD, "The command is too long to be sent.");
  }
  return command;
}

std::string CSerialCommunications::Exchange(const SentCommand& command) {
  if (!port_.IsOpen()) Open();
  // What gets reported is what says most about what is wrong: an unexpected answer before damage,
  // damage before silence.
  EOutcome worst = EOutcome::SILENT;
  const std::int32_t tries = Tries();
  for (std::int32_t i = 0; i < tries; ++i) {
    std::string reply;
    const EOutcome outcome = Try(command, reply);
    if (outcome == EOutcome::ANSWERED) return reply;
    if (outcome == EOutcome::SILENT) {
      Trace(ETraceMark::NOTE, "no answer");
    } else if (worst != EOutcome::UNEXPECTED) {
      worst = outcome;
    }
  }
  FailExchange(worst, command);
}

void CSerialCommunications::Open() {
  rate_ = FindBaudRate(comport_.BaudRate());
  if (rate_ == nullptr) {
    Fail(ERR_LINE_BAUD_RATE,
         "A serial port doesn't have this speed. Choose one from 300 to 115200 bit/s.");
  }
  const std::string path = DevicePath();
  device_ = settings_->devicename.empty() ? path : settings_->devicename;
  const EPortResult result = port_.Open(path, *rate_);
  if (result != EPortResult::DONE) FailPort(result);
  buffer_.Clear();
  Trace(ETraceMark::NOTE, "opened " + device_ + " at " + std::to_string(rate_->bits) + " bit/s");
}

std::string CSerialCommunications::DevicePath() const {
  const EVanePortNumber number = comport_.PortNumber();
  const auto device = settings_->devices.find(number);
  if (device != settings_->devices.end()) return device->second;
  const auto place = static_cast<std::int32_t>(number);
  if (place < 1) Fail(ERR_LINE_NO_PORT, "No serial port is chosen.");
  const std::vector<SerialPortRecord> ports = ListSerialPorts();
  if (static_cast<std::size_t>(place) > ports.size()) {
    Fail(ERR_LINE_NO_PORT, "The machine has no serial port " + std::to_string(place) +
                               ". Plug its adapter in or choose another port.");
  }
  return ports[static_cast<std::size_t>(place) - 1].path;
}

CSerialCommunications::EOutcome CSerialCommunications::Try(const SentCommand& command,
                                                           std::string& reply) {
  // What came before the sending can't be its answer. A line that isn't complete stays: its end
  // comes next, and would be taken for noise without its beginning.
  while (const auto line = buffer_.NextLine()) TraceReceived(line->text, false);

  std::string line = protocol::FrameLine(++tag_, command.text);
  const std::string head = line.substr(0, kHeadLength);
  secretsoutside_ = secretsoutside_ || command.issecret;
  if (settings_->trace) {
    settings_->trace->Record(ETraceMark::SENT,
                             command.issecret ? head + std::string(kNotShown) : line);
  }
  line += protocol::kLineEnd;
  auto deadline = LineClock::now() + settings_->timeout + TimeOnLine(line.size(), *rate_);
  if (port_.Write(line, deadline) == EPortResult::LOST) FailPort(EPortResult::LOST);

  EOutcome outcome = EOutcome::SILENT;
  std::size_t awaited = protocol::kMaxLineLength;  // characters that may put the deadline off
  do {
    std::size_t count = 0;
    const EPortResult result = port_.Read(buffer_.Free(), count, deadline);
    if (result == EPortResult::LOST) FailPort(result);
    if (result == EPortResult::EXPIRED) break;
    buffer_.Filled(count);
    while (const auto received = buffer_.NextLine()) {
      const EOutcome judged = Judge(*received, command, reply);
      if (judged == EOutcome::ANSWERED) return judged;
      if (judged == EOutcome::SILENT) continue;
      outcome = judged;
      // With our tag on it, it was our answer, and no other will come.
      if (received->text.find(head) != std::string_view::npos) return outcome;
    }
    const std::size_t counted = std::min(count, awaited);
    awaited -= counted;
    deadline += TimeOnLine(counted, *rate_);
  } while (LineClock::now() < deadline);
  return outcome;
}

// SILENT for a line that belongs to an earlier sending.
CSerialCommunications::EOutcome CSerialCommunications::Judge(const protocol::ReceivedLine& line,
                                                             const SentCommand& command,
                                                             std::string& reply) {
  const auto frame = line.overlong ? std::nullopt : FindFrame(line.text);
  const bool isours = frame && frame->tag == tag_;
  TraceReceived(isours ? FrameText(line.text, *frame) : line.text, isours && !command.issecret);
  if (line.overlong) {
    Trace(ETraceMark::NOTE, "longer than any line, the rest is skipped");
    return EOutcome::OVERLONG;
  }
  if (frame && !isours) {
    Trace(ETraceMark::NOTE, "late answer, skipped");
    return EOutcome::SILENT;
  }
  if (!frame || (comport_.CheckNonAscii() && !IsAscii(frame->body))) {
    Trace(ETraceMark::NOTE, "garbled");
    return EOutcome::GARBLED;
  }
  const EOutcome outcome = TakeAnswer(frame->body, command, reply);
  if (outcome == EOutcome::UNEXPECTED) Trace(ETraceMark::NOTE, "not of the command's form");
  return outcome;
}

CSerialCommunications::EOutcome CSerialCommunications::TakeAnswer(std::string_view body,
                                                                  const SentCommand& command,
                                                                  std::string& reply) {
  const auto answer = protocol::ParseAnswer(body);
  if (answer && answer->refused && answer->number != 0) {
    std::string text = command.issecret ? std::string() : FromLatin1(answer->text);
    if (text.empty()) {
      text = "The readout refused the command (number " + std::to_string(answer->number) + ").";
    }
    throw LineFailure{answer->number, std::move(text), true};
  }
  if (!answer || answer->refused || !protocol::FitsForm(command.form, answer->text)) {
    const bool isvalue = answer && !answer->refused;
    unexpected_ = command.issecret ? kNotShown : Quoted(isvalue ? answer->text : body);
    return EOutcome::UNEXPECTED;
  }
  reply = FromLatin1(answer->text);
  return EOutcome::ANSWERED;
}

std::int32_t CSerialCommunications::Tries() const { return std::max(1, comport_.ReadTries()); }

void CSerialCommunications::Trace(ETraceMark mark, std::string_view text) const {
  if (settings_->trace) settings_->trace->Record(mark, text);
}

// Once a secret command has gone out, all but the answer to another command may be its answer, late
// or damaged.
void CSerialCommunications::TraceReceived(std::string_view text, bool isharmless) const {
  Trace(ETraceMark::RECEIVED, isharmless || !secretsoutside_ ? text : kNotShown);
}

void CSerialCommunications::FailPort(EPortResult result) const {
  switch (result) {
    case EPortResult::NO_DEVICE:
      Fail(ERR_LINE_NO_PORT,
           "There is no serial port " + device_ + ". Check that its adapter is plugged in.");
    case EPortResult::IN_USE:
      Fail(ERR_LINE_IN_USE,
           device_ + " is in use by another program. Close that program and try again.");
    case EPortResult::LOST:
      Fail(ERR_LINE_LOST, "The connection to " + device_ + " was lost (" + port_.Problem() +
                              "). Check the cable; the next command opens the port again.");
    default:
      Fail(ERR_LINE_CANNOT_OPEN, device_ + " can't be opened (" + port_.Problem() +
                                     "). Check that it is a serial port and that you may use it.");
  }
}

void CSerialCommunications::FailExchange(EOutcome outcome, const SentCommand& command) const {
  const std::string tries = Tries() == 1 ? "(1 try)" : "(" + std::to_string(Tries()) + " tries)";
  switch (outcome) {
    case EOutcome::GARBLED:
      Fail(ERR_LINE_GARBLED, "The answer from " + device_ + " was garbled " + tries +
                                 ". Check the cable and the baud rate.");
    case EOutcome::OVERLONG:
      Fail(ERR_LINE_OVERLONG, "The answer from " + device_ + " was too long " + tries +
                                  ". Check the baud rate and that the device is a T312B.");
    case EOutcome::UNEXPECTED:
      Fail(ERR_LINE_UNEXPECTED,
           "The readout on " + device_ + " answers " + unexpected_ + " to " +
               (command.issecret ? "a command that is " + std::string(kNotShown) : command.text) +
               ", where " + protocol::FormText(command.form) + " should stand " + tries +
               ". It may have been switched off and on; check that it is a T312B.");
    default:
      Fail(ERR_LINE_NO_ANSWER, "No answer from the readout on " + device_ + " within " +
                                   Seconds(settings_->timeout) + " " + tries +
                                   ". Check the cable, the power and the baud rate.");
  }
}

}  // namespace vane
