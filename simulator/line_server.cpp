#include "simulator/line_server.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "protocol/framing.h"
#include "simulator/readout_numbers.h"

namespace vane::simulator {
namespace {

Moment Now() { return std::chrono::steady_clock::now(); }

CAnswerQueue::Duration Seconds(double seconds) {
  return std::chrono::duration_cast<CAnswerQueue::Duration>(std::chrono::duration<double>(seconds));
}

timespec WaitUntil(Moment due) {
  const auto wait = std::max(std::chrono::nanoseconds(due - Now()), std::chrono::nanoseconds(0));
  return {static_cast<time_t>(wait.count() / 1'000'000'000),
          static_cast<long>(wait.count() % 1'000'000'000)};
}

// When a new device can't be had after a hangup, this is how long until the next try.
constexpr double kReopenSeconds = 0.3;

// How long a client that was killed may keep others out.
constexpr std::chrono::seconds kLookAfterClients{1};

}  // namespace

CSimulatedLine::CSimulatedLine(Options options, Announce announce, Clock clock)
    : options_(std::move(options)),
      faults_(options_.faults, options_.readout.seed),
      announce_(std::move(announce)),
      readout_(options_.readout, std::move(clock)),
      answers_(options_.baud),
      link_(options_.link) {}

CSimulatedLine::~CSimulatedLine() { Stop(); }

void CSimulatedLine::Start() {
  std::array<int, 2> stoppipe;
  if (pipe2(stoppipe.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "can't make a pipe");
  }
  stopread_ = CFile(stoppipe[0]);
  stopwrite_ = CFile(stoppipe[1]);
  if (stopread_.Get() < 0 || stopwrite_.Get() < 0) {
    throw std::system_error(EMFILE, std::generic_category(), "can't make a pipe");
  }
  if (!options_.readingslog.empty()) {
    readingslog_ =
        CFile(open(options_.readingslog.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    if (readingslog_.Get() < 0) {
      throw std::system_error(errno, std::generic_category(), options_.readingslog);
    }
  }
  OpenDevice();
  thread_ = std::thread([this] { Serve(); });
}

void CSimulatedLine::Stop() {
  if (!thread_.joinable()) return;
  stopwrite_ = CFile();  // the far end sees it closed
  thread_.join();
  link_.Remove();
  terminal_ = CPseudoTerminal();
}

std::optional<std::string> CSimulatedLine::Ask(std::string_view command) {
  const std::lock_guard lock(readoutmutex_);
  return readout_.Answer(command);
}

void CSimulatedLine::OpenDevice() {
  terminal_ = CPseudoTerminal::Open();
  link_.PointTo(terminal_.DevicePath());
  if (announce_) announce_(terminal_.DevicePath());
}

void CSimulatedLine::HangUp(double seconds) {
  link_.Remove();
  terminal_ = CPseudoTerminal();
  lines_.Clear();
  answers_.Clear();
  reopenat_ = Now() + Seconds(seconds);
}

void CSimulatedLine::Reopen() {
  reopenat_.reset();
  if (std::exchange(isoff_, false)) {
    const std::lock_guard lock(readoutmutex_);
    readout_.SwitchOn();
  }
  try {
    OpenDevice();
  } catch (const std::runtime_error&) {
    HangUp(kReopenSeconds);
  }
}

void CSimulatedLine::Serve() {
  for (;;) {
    std::array<pollfd, 2> files = {pollfd{terminal_.Get(), POLLIN, 0},
                                   pollfd{stopread_.Get(), POLLIN, 0}};
    Moment due = Now() + kLookAfterClients;
    if (reopenat_) due = std::min(due, *reopenat_);
    if (const auto answerdue = answers_.NextDue()) due = std::min(due, *answerdue);
    const timespec wait = WaitUntil(due);
    const bool idle = ppoll(files.data(), files.size(), &wait, nullptr) == 0;
    if (files[1].revents != 0) return;
    if (idle) terminal_.FreeAbandoned();
    if (files[0].revents != 0) ReadCommands();
    if (reopenat_ && *reopenat_ <= Now()) Reopen();
    if (!answers_.NextDue()) continue;
    if (const std::string bytes = answers_.TakeDue(Now()); !bytes.empty()) terminal_.Write(bytes);
  }
}

void CSimulatedLine::ReadCommands() {
  const std::span<char> room = lines_.Free();
  lines_.Filled(terminal_.Read(room.data(), room.size()));
  while (terminal_.Get() >= 0) {
    const auto line = lines_.NextLine();
    if (!line) return;
    TakeLine(*line);
  }
}

// In one piece each, so that a file may be shared with whoever comes behind.
void CSimulatedLine::LogReading(const protocol::ParsedCommand& command, std::string_view body,
                                const FaultRule* rule) {
  if (readingslog_.Get() < 0) return;
  const bool isscanner = command.row->id == ECommand::READ_SCANNER_MEASUREMENT;
  const auto channel = ParseWhole(command.fields.Channel).value_or(0) + (isscanner ? kInputs : 0);
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  const std::string line = std::to_string(now.tv_sec * 1000 + now.tv_nsec / 1'000'000) + " " +
                           std::to_string(readout_.FetchedSample()) + " " +
                           std::to_string(channel) + " " + std::string(body) + " " +
                           std::string(rule == nullptr ? "sent" : FaultName(rule->fault)) + "\n";
  // A log that can't be written shows as one that has too little.
  [[maybe_unused]] const ssize_t written = write(readingslog_.Get(), line.data(), line.size());
}

void CSimulatedLine::TakeLine(const protocol::ReceivedLine& received) {
  const std::string_view line = received.text;
  // A line without a tag comes from somebody at a terminal program and is answered likewise.
  const bool tagged = line.front() == '#';
  const auto framed = protocol::ParseLine(line);
  if (received.overlong || (tagged && !framed)) {
    ++ignoredlines_;
    return;
  }
  const std::string_view command = tagged ? framed->body : line;
  const Moment arrived = answers_.CommandArrives(line.size() + protocol::kLineEnd.size(), Now());
  const std::uint64_t exchange = ++exchanges_;
  const auto parsed = protocol::ParseCommand(command);
  const bool iswrite = parsed && !parsed->row->IsRead();
  if (iswrite) ++writes_;
  const FaultRule* const rule = faults_.Strike(exchange, iswrite ? writes_ : 0);
  const auto strikes = [rule](EFault fault) { return rule != nullptr && rule->fault == fault; };
  if (strikes(EFault::HANGUP) || strikes(EFault::POWER)) {
    isoff_ = strikes(EFault::POWER);
    HangUp(rule->seconds);
    return;
  }

  std::optional<std::string> body;
  if (strikes(EFault::REFUSE)) {
    body = protocol::RefusalBody(rule->refusal, RefusalText(ERefusal{rule->refusal}));
  } else if (strikes(EFault::IDENTIFY)) {
    body = protocol::ValueBody(readout_.Identification());
  } else if (strikes(EFault::ANSWER)) {
    body = protocol::ValueBody(rule->answer);
  } else if (strikes(EFault::OVERLONG)) {
    body = protocol::ValueBody(std::string(protocol::kMaxLineLength, '9'));
  } else {
    body = Ask(command);
    const bool isreading = parsed && (parsed->row->id == ECommand::READ_MEASUREMENT ||
                                      parsed->row->id == ECommand::READ_SCANNER_MEASUREMENT);
    if (isreading && body) LogReading(*parsed, *body, rule);
  }
  if (!body || strikes(EFault::DROP)) return;
  std::string answer = tagged ? protocol::FrameLine(framed->tag, *body) : *body;
  if (strikes(EFault::GARBLE)) answer = faults_.Garble(std::move(answer), exchange);
  answer += protocol::kLineEnd;
  const bool held = strikes(EFault::DELAY) || strikes(EFault::LATE);
  answers_.Add(std::move(answer), held ? arrived + Seconds(rule->seconds) : arrived,
               strikes(EFault::SPLIT) ? Seconds(rule->seconds) : CAnswerQueue::Duration::zero());
}

}  // namespace vane::simulator
