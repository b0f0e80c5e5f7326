// The serial adapter against a scripted readout on a pseudo-terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "adapters/serial/line_errors.h"
#include "adapters/serial/serial_communications.h"
#include "adapters/serial/serial_ports.h"
#include "protocol/framing.h"
#include "tests/support/host_machine.h"

namespace vane {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr milliseconds kPlenty{5000};
constexpr milliseconds kShort{100};
constexpr ECommand kReadLog = ECommand::READ_HISTORY_LOG;  // whose answer may be any text

// What the readout sends for one line that it got. A text in braces becomes an answer with that
// body: "{=10}". "{^=10}" carries the tag of the command before, "{~=10}" is damaged. All else goes
// out as it stands; a "%" in front sends byte by byte, the word of a hang-up at the end hangs up.
using Step = std::string;
const Step kHangUp = "hang-up";

std::string BytesOf(const Step& step, std::uint16_t tag) {
  std::string bytes;
  for (std::size_t i = 0; i < step.size(); ++i) {
    if (step[i] != '{') {
      bytes += step[i];
      continue;
    }
    std::string body = step.substr(i + 1, step.find('}', i) - i - 1);
    i += body.size() + 1;
    const bool islate = body.starts_with('^');
    const bool isdamaged = body.starts_with('~');
    if (islate || isdamaged) body.erase(0, 1);
    std::string line =
        protocol::FrameLine(static_cast<std::uint16_t>(tag - (islate ? 1 : 0)), body);
    if (isdamaged) line[7] = static_cast<char>(line[7] ^ 1);
    bytes += line + "\r\n";
  }
  return bytes;
}

class CScriptedReadout {
 public:
  explicit CScriptedReadout(std::vector<Step> steps) : steps_(std::move(steps)) {
    char path[128];
    EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
    path_ = path;
    thread_ = std::jthread([this](std::stop_token stop) { Run(stop); });
  }
  ~CScriptedReadout() {
    thread_ = {};
    HangUp();
  }

  const std::string& Path() const { return path_; }
  int Slave() const { return slave_; }

  std::vector<std::string> Commands() {
    const std::scoped_lock lock(mutex_);
    return commands_;
  }

 private:
  void Run(std::stop_token stop) {
    std::string input;
    while (!stop.stop_requested() && master_ >= 0) {
      pollfd wanted{master_, POLLIN, 0};
      if (poll(&wanted, 1, 10) <= 0) continue;
      char bytes[256];
      const ssize_t count = read(master_, bytes, sizeof bytes);
      if (count > 0) input.append(bytes, static_cast<std::size_t>(count));
      for (std::size_t end; (end = input.find("\r\n")) != input.npos; input.erase(0, end + 2)) {
        Act(input.substr(0, end));
      }
    }
  }

  void Act(const std::string& line) {
    const auto frame = protocol::ParseLine(line);
    ASSERT_TRUE(frame && tag_ != frame->tag) << line;
    tag_ = frame->tag;
    Step step = kHangUp;
    {
      const std::scoped_lock lock(mutex_);
      commands_.emplace_back(frame->body);
      if (commands_.size() <= steps_.size()) step = steps_[commands_.size() - 1];
    }
    const bool isslow = step.starts_with('%');
    const bool isend = step.ends_with(kHangUp);
    if (isend) step.erase(step.size() - kHangUp.size());
    const std::string bytes = BytesOf(step.substr(isslow ? 1 : 0), *tag_);
    for (std::size_t at = 0, size = isslow ? 1 : bytes.size(); at < bytes.size(); at += size) {
      EXPECT_EQ(write(master_, bytes.data() + at, size), static_cast<ssize_t>(size));
      if (isslow) std::this_thread::sleep_for(milliseconds(1));
    }
    if (isend) HangUp();
  }

  void HangUp() {
    if (master_ < 0) return;
    close(std::exchange(master_, -1));
    close(std::exchange(slave_, -1));
  }

  std::vector<Step> steps_;
  std::string path_;
  int master_ = -1;
  int slave_ = -1;
  std::optional<std::uint16_t> tag_;
  std::mutex mutex_;
  std::vector<std::string> commands_;
  std::jthread thread_;
};

class CRecordedTrace final : public CLineTrace {
 public:
  // Tags are random, and check values follow from them.
  void Record(ETraceMark mark, std::string_view text) override {
    std::string line(text);
    if (line.starts_with('#')) line.replace(1, 4, "tag");
    if (line.size() > 5 && line[line.size() - 5] == '*') line.replace(line.size() - 4, 4, "C");
    log += "><-"[static_cast<int>(mark)] + (" " + EscapedText(line)) + "\n";
  }
  std::string log;
};

struct Line {
  explicit Line(const std::string& path, milliseconds timeout = kPlenty) {
    settings->devices[EVanePortNumber::PORT_1] = path;
    settings->timeout = timeout;
    settings->trace = trace;
    communications.COMPort().SetBaudRate(EVaneBaudRate::BR_115200);
  }

  // The number of the error that `operation` raises; 0 when it raises none.
  std::int32_t ErrorOf(const std::function<void()>& operation) {
    try {
      operation();
    } catch (const LibraryError& error) {
      source = error.Source();
      EXPECT_EQ(settings->lastfailure.number, error.Number());
      EXPECT_EQ(settings->lastfailure.description, error.Description());
      return error.Number();
    }
    return 0;
  }
  std::int32_t ReadError(ECommand id, const std::string& text = {}) {
    return ErrorOf([&] { communications.ReadSetting(id, true, text); });
  }

  std::shared_ptr<CRecordedTrace> trace = std::make_shared<CRecordedTrace>();
  std::shared_ptr<LineSettings> settings = std::make_shared<LineSettings>();
  CSerialCommunications communications{settings};
  std::string source;
};

TEST(SerialCommunications, TakesTheAnswerThatBelongsToTheCommand) {
  const std::string noise(protocol::kMaxLineLength + 1, 'x');
  const struct {
    const char* name;
    std::vector<Step> steps;
    std::string reply;
    std::int32_t error = 0;
    std::int32_t tries = 1;
    milliseconds timeout = kPlenty;
    bool checknonascii = true;
    bool flag = true;
  } cases[] = {
      {"good", {"{=10}"}, "10"},
      {"byte by byte", {"%{=T312B, 5.03}"}, "T312B, 5.03"},
      {"signs of the framing in the value", {"{=a#b*c=!}"}, "a#b*c=!"},
      {"second try", {"", "{=10}"}, "10", 0, 2, kShort},
      {"second try, first answer late", {"", "{^=9}{=10}"}, "10", 0, 2, kShort},
      {"late answer alone", {"{^=9}"}, "", ERR_LINE_NO_ANSWER, 1, kShort},
      {"damaged and repeated", {"{~=10}", "{=10}"}, "10", 0, 2},
      {"damaged", {"{~=10}", "{~=10}"}, "", ERR_LINE_GARBLED, 2},
      {"damaged, then silence", {"{~=10}", ""}, "", ERR_LINE_GARBLED, 2, kShort},
      {"empty lines", {"\r\n\r\n\n{=10}"}, "10"},
      {"remains on the line", {"#1A2B =9.3#4{=10}"}, "10"},
      {"remains on a line before", {"9.3*77F2\r\n{=10}"}, "10"},
      {"remains alone", {"=10\r\n"}, "", ERR_LINE_GARBLED, 1, kShort},
      {"overlong line before", {noise + "{=9}{=10}"}, "10"},
      {"overlong", {"{=" + noise + "}"}, "", ERR_LINE_OVERLONG},
      {"overlong and repeated", {"{=" + noise + noise + noise + "}", "{=10}"}, "10", 0, 2},
      {"too slow", {"%" + noise}, "", ERR_LINE_NO_ANSWER, 1, kShort},
      {"longest", {"{=" + noise.substr(13) + "}"}, noise.substr(13)},
      {"foreign letter", {"{=25 \xD9}", "{=25 \xD9}"}, "", ERR_LINE_GARBLED, 2},
      {"foreign letter allowed", {"{=25 \xD9}"}, "25 Ù", 0, 2, kPlenty, false},
      {"refused", {"{!12 out of range}"}, "", 12, 2},
      {"refused without a number", {"{!0 no}"}, "", ERR_LINE_UNEXPECTED},
      {"neither value nor refusal", {"{LOG:HISTORY 1?}"}, "", ERR_LINE_UNEXPECTED},
      {"silence", {"", ""}, "", ERR_LINE_NO_ANSWER, 2, kShort},
      {"no try counts as one", {""}, "", ERR_LINE_NO_ANSWER, 0, kShort},
      {"silence may be", {"", ""}, "", 0, 2, kShort, true, false},
      {"damage may not be", {"{~=1}"}, "", ERR_LINE_GARBLED, 1, kPlenty, true, false},
      {"hang-up", {kHangUp}, "", ERR_LINE_LOST, 3},
      {"hang-up within the answer", {"#" + kHangUp}, "", ERR_LINE_LOST, 3},
      {"hang-up behind a damaged answer", {"{~=1}" + kHangUp}, "", ERR_LINE_LOST, 3},
      {"hang-up after a damaged answer", {"{~=1}", kHangUp}, "", ERR_LINE_LOST, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    CScriptedReadout readout(c.steps);
    Line line(readout.Path(), c.timeout);
    line.communications.COMPort().SetReadTries(c.tries);
    line.communications.COMPort().SetCheckNonAscii(c.checknonascii);
    line.communications.params().Index = "1";
    std::string reply;
    EXPECT_EQ(line.ErrorOf([&] { reply = line.communications.ReadSetting(kReadLog, c.flag); }),
              c.error);
    EXPECT_EQ(reply, c.reply);
    EXPECT_EQ(readout.Commands(), std::vector<std::string>(c.steps.size(), "LOG:HISTORY 1?"));
    EXPECT_EQ(line.settings->lastfailure.refused, c.error > 0);
    // One try alone that meets silence or a refusal has only looked for who is there.
    const LineFailure& failure = line.settings->lastfailure;
    const bool looked = c.tries < 2 && (failure.refused || failure.number == ERR_LINE_NO_ANSWER);
    EXPECT_EQ(line.settings->failures, failure.number == 0 || looked ? 0 : 1);
  }
}

TEST(SerialCommunications, AnswerOfAnotherFormIsNoAnswer) {
  const std::string id = "T312B, 5.03";
  const std::string longanswer(100, 'x');
  const struct {
    ECommand id;  // RAW: the passcode
    std::vector<std::string> answers;
    std::string reply;  // or what is wrong
  } cases[] = {
      {ECommand::READ_INTERVAL, {id, "10"}, "10"},
      {ECommand::READ_INTERVAL,
       {id, id},
       R"("T312B, 5.03" to SAMPLE:INTERVAL?, where a number from -2147483648 to 2147483647)"},
      {ECommand::READ_CHANNEL_COUNT,
       {"", "-5"},
       R"("-5" to CHANNEL:COUNT?, where a whole number from 2 to 32767)"},
      {ECommand::READ_UNITS,
       {"\\\t" + longanswer, "X"},
       R"("X" to UNITS?, where one of C, F, K, OHM, R, RATIO, W)"},
      {ECommand::READ_UNITS,
       {"X", "\t" + longanswer},
       R"("\x09)" + longanswer.substr(0, 59) + R"(..." to UNITS?, where one of C)"},
      {ECommand::READ_SCAN_STEP, {id, ""}, ""},
      {ECommand::WRITE_START_MEASURE, {id, ""}, ""},
      {ECommand::WRITE_START_MEASURE, {id, "0"}, R"("0" to MEASURE:START, where nothing)"},
      {ECommand::RAW, {id, "12 34"}, "12 34"},
      {ECommand::RAW,
       {id, id},
       "(not shown) to a command that is (not shown), where a text without a comma"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reply);
    CScriptedReadout readout({"{=" + c.answers[0] + "}", "{=" + c.answers[1] + "}"});
    Line line(readout.Path());
    line.communications.COMPort().SetReadTries(2);
    line.communications.params().Index = "1";
    std::string reply;
    const std::int32_t error = line.ErrorOf([&] {
      if (c.id == ECommand::WRITE_START_MEASURE) return line.communications.WriteSetting(c.id);
      reply = line.communications.ReadSetting(c.id, false, c.id == ECommand::RAW ? "PC?" : "");
    });
    const std::string said = "The readout on " + readout.Path() + " answers ";
    EXPECT_EQ(error, c.reply.find("where") == c.reply.npos ? 0 : ERR_LINE_UNEXPECTED);
    EXPECT_EQ(error == 0
                  ? reply
                  : line.settings->lastfailure.description.substr(0, said.size() + c.reply.size()),
              error == 0 ? c.reply : said + c.reply);
    EXPECT_EQ(readout.Commands().size(), 2u);
  }
}

TEST(SerialCommunications, RefusalWithTheNumberOfSilenceIsNoSilence) {
  CScriptedReadout readout({"{!" + std::to_string(ERR_LINE_NO_ANSWER) + " busy}", ""});
  Line line(readout.Path(), kShort);
  const auto read = [&] { line.communications.ReadSetting(ECommand::READ_IDENTIFICATION, false); };
  EXPECT_EQ(line.ErrorOf(read), ERR_LINE_NO_ANSWER);
  EXPECT_TRUE(line.settings->lastfailure.refused);
  EXPECT_EQ(line.ErrorOf(read), 0);
  EXPECT_FALSE(line.settings->lastfailure.refused);
}

TEST(SerialCommunications, WriteSendsItsFieldsAndWantsAnEmptyAnswer) {
  CScriptedReadout readout({"{=}", "{=5}", "{!3 caf\xE9}", "{!4 }", kHangUp});
  Line line(readout.Path());
  line.communications.COMPort().SetCheckNonAscii(false);
  line.communications.params().Probe = "12";
  line.communications.params().value = "-1.5E-03 a";
  const auto write = [&] { line.communications.WriteSetting(ECommand::WRITE_PROBE_SERIAL); };
  EXPECT_EQ(line.ErrorOf(write), 0);
  EXPECT_EQ(line.ErrorOf(write), ERR_LINE_UNEXPECTED);
  EXPECT_EQ(line.ErrorOf(write), 3);
  EXPECT_EQ(line.settings->lastfailure.description, "café");
  EXPECT_EQ(line.source, "CSerialCommunications - WriteSetting");
  EXPECT_EQ(line.ErrorOf(write), 4);
  EXPECT_EQ(line.settings->lastfailure.description, "The readout refused the command (number 4).");
  EXPECT_EQ(line.ErrorOf(write), ERR_LINE_LOST);
  EXPECT_EQ(readout.Commands(), std::vector<std::string>(5, "PROBE 12:SERIAL -1.5E-03 a"));
}

TEST(SerialCommunications, WhatCannotBeSentFailsBeforeAnythingIsSent) {
  CScriptedReadout readout({"{=1}"});
  Line line(readout.Path());
  line.settings->devices[EVanePortNumber::PORT_2] = "/dev/null";
  CVaneCOMPort& port = line.communications.COMPort();
  EXPECT_EQ(line.ErrorOf([&] { line.communications.WriteSetting(ECommand::RAW); }),
            ERR_LINE_UNKNOWN_COMMAND);
  for (const ECommand id : {ECommand{999}, ECommand::WRITE_INTERVAL})
    EXPECT_EQ(line.ReadError(id), ERR_LINE_UNKNOWN_COMMAND);
  for (const std::string& text : {std::string(), std::string("PC?\n")}) {
    EXPECT_EQ(line.ReadError(ECommand::RAW, text), ERR_LINE_BAD_FIELD);
  }
  for (const std::string& channel :
       {std::string(), std::string("1\r\nINIT"), std::string(protocol::kMaxLineLength, '1')}) {
    line.communications.params().Channel = channel;
    EXPECT_EQ(line.ReadError(ECommand::READ_MEASUREMENT), ERR_LINE_BAD_FIELD);
  }
  line.communications.SetInstrumentKind(3);
  EXPECT_EQ(line.ReadError(ECommand::READ_IDENTIFICATION), ERR_LINE_INSTRUMENT_KIND);
  line.communications.SetInstrumentKind(9);
  port.SetBaudRate(EVaneBaudRate::BR_INFRARED);
  EXPECT_EQ(line.ReadError(ECommand::READ_IDENTIFICATION), ERR_LINE_BAUD_RATE);
  port.SetBaudRate(EVaneBaudRate::BR_9600);
  const std::pair<EVanePortNumber, std::int32_t> ports[] = {
      {EVanePortNumber::PORT_NONE, ERR_LINE_NO_PORT},
      {EVanePortNumber{30000}, ERR_LINE_NO_PORT},
      {EVanePortNumber::PORT_2, ERR_LINE_CANNOT_OPEN},
      {EVanePortNumber::PORT_1, 0}};
  for (const auto& [number, error] : ports) {
    port.SetPortNumber(number);
    EXPECT_EQ(line.ReadError(ECommand::READ_IDENTIFICATION), error);
  }
  EXPECT_EQ(readout.Commands(), std::vector<std::string>{"ID?"});
}

TEST(SerialCommunications, OpensAgainAtTheNextExchangeAfterALoss) {
  test::CTemporaryFolder folder;
  const fs::path link = folder / "readout";
  Line line(link.string());
  for (const std::string number : {"1", "2"}) {
    EXPECT_EQ(line.ReadError(ECommand::READ_INTERVAL),
              number == "1" ? ERR_LINE_NO_PORT : ERR_LINE_LOST);
    CScriptedReadout readout({"{=" + number + "}"});
    fs::remove(link);
    fs::create_symlink(readout.Path(), link);
    EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_INTERVAL), number);
  }
}

TEST(SerialCommunications, HoldsThePortForItselfUntilItIsClosed) {
  CScriptedReadout readout({"{=1}", "{=2}", std::string(600, 'x'), "{=4}", "{=5}"});
  Line one(readout.Path(), kShort);
  Line other(readout.Path());
  CVaneCOMPort& port = one.communications.COMPort();
  const auto takes = [&] {  // and gives the port back
    const std::int32_t error = other.ReadError(ECommand::READ_INTERVAL);
    other.communications.COMPort().SetPortNumber(EVanePortNumber::PORT_2);
    other.communications.COMPort().SetPortNumber(EVanePortNumber::PORT_1);
    return error;
  };
  EXPECT_EQ(one.ReadError(ECommand::READ_INTERVAL), 0);
  EXPECT_EQ(takes(), ERR_LINE_IN_USE);
  port.SetBaudRate(port.BaudRate());
  EXPECT_EQ(takes(), ERR_LINE_IN_USE);
  port.SetBaudRate(EVaneBaudRate::BR_300);
  EXPECT_EQ(takes(), 0);

  port.SetBaudRate(EVaneBaudRate::BR_115200);
  port.SetAutoClose(true);
  EXPECT_EQ(one.ReadError(ECommand::READ_INTERVAL), ERR_LINE_OVERLONG);
  EXPECT_EQ(takes(), 0);
  EXPECT_EQ(one.ReadError(ECommand::READ_INTERVAL), 0);
}

TEST(SerialCommunications, PortIsForThisProcessAloneAndNoStandardFile) {
  CScriptedReadout readout({"{=1}", "{=2}"});
  const auto isexclusive = [&] {
    int state = -1;
    EXPECT_EQ(ioctl(readout.Slave(), TIOCGEXCL, &state), 0);
    return state;
  };
  {
    Line line(readout.Path());
    EXPECT_EQ(line.ReadError(ECommand::READ_INTERVAL), 0);
    EXPECT_EQ(isexclusive(), 1);
  }
  EXPECT_EQ(isexclusive(), 0);
  const auto withoutinput = [&] {
    close(STDIN_FILENO);
    Line line(readout.Path());
    bool isgood =
        line.ReadError(ECommand::READ_INTERVAL) == 0 && fcntl(STDIN_FILENO, F_GETFD) == -1;
    // Of the two that lead to the device, the other one is the readout's.
    int ownfiles = 0;
    for (int file = 3; file < 256; ++file) {
      std::error_code error;
      const fs::path target = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
      if (target == readout.Path() && (fcntl(file, F_GETFD) & FD_CLOEXEC) != 0) ++ownfiles;
    }
    isgood = isgood && ownfiles == 1;
    _exit(isgood ? 0 : 1);
  };
  EXPECT_EXIT(withoutinput(), testing::ExitedWithCode(0), "");
}

TEST(SerialCommunications, EveryRateReachesTheDevice) {
  constexpr std::pair<std::int32_t, speed_t> kRates[] = {
      {300, B300},   {600, B600},     {1200, B1200},   {2400, B2400},   {4800, B4800},
      {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};
  CScriptedReadout readout(std::vector<Step>(std::size(kRates), "{=5}"));
  Line line(readout.Path());
  for (std::size_t i = 0; i < std::size(kRates); ++i) {
    line.communications.COMPort().SetBaudRate(static_cast<EVaneBaudRate>(i + 1));
    EXPECT_EQ(line.ReadError(ECommand::READ_INTERVAL), 0);
    termios settings{};
    ASSERT_EQ(tcgetattr(readout.Slave(), &settings), 0);
    EXPECT_EQ(cfgetospeed(&settings), kRates[i].second);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0u);
    EXPECT_NE(line.trace->log.find("at " + std::to_string(kRates[i].first) + " bit/s"),
              std::string::npos);
  }
}

TEST(SerialCommunications, TimeOfTheCharactersComesOnTopOfTheTimeOut) {
  CScriptedReadout readout({"%" + std::string(300, '\n') + "{=1}"});
  Line line(readout.Path(), kShort);
  line.communications.COMPort().SetBaudRate(EVaneBaudRate::BR_2400);
  EXPECT_EQ(line.ReadError(ECommand::READ_INTERVAL), 0);
}

TEST(SerialCommunications, LastFailureKeepsASilenceThatTheCallerAllowed) {
  CScriptedReadout readout({"{=1}9.3*77F2\r\n", "{^=2}", "", "{=1}"});
  Line line(readout.Path(), kShort);
  EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_IDENTIFICATION), "1");
  line.communications.COMPort().SetReadTries(2);
  EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_IDENTIFICATION, false), "");
  EXPECT_EQ(line.settings->lastfailure.number, ERR_LINE_NO_ANSWER);
  EXPECT_EQ(line.settings->lastfailure.description,
            "No answer from the readout on " + readout.Path() +
                " within 0.1 s (2 tries). Check the cable, the power and the baud rate.");
  EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_IDENTIFICATION, false), "1");
  EXPECT_EQ(line.settings->lastfailure.number, 0);
}

TEST(LineTrace, ShowsEveryLineButNoSecret) {
  CScriptedReadout readout({"{=T312B, 5.03}", "", "{=1234}", "{~=1234}", "{!7 PC? 1234}",
                            "4*77F2\r\n34{=ab\t}", "{^=1234}{=5}"});
  Line line(readout.Path(), kShort);
  line.communications.COMPort().SetReadTries(2);
  EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_IDENTIFICATION), "T312B, 5.03");
  EXPECT_EQ(line.communications.ReadSetting(ECommand::RAW, true, "PC?"), "1234");
  EXPECT_EQ(line.ReadError(ECommand::RAW, "PC?"), 7);
  EXPECT_EQ(line.settings->lastfailure.description, "The readout refused the command (number 7).");
  line.communications.params().Index = "1";
  EXPECT_EQ(line.communications.ReadSetting(kReadLog), "ab\t");
  EXPECT_EQ(line.communications.ReadSetting(ECommand::READ_INTERVAL), "5");
  EXPECT_EQ(line.trace->log, "- opened " + readout.Path() + " at 115200 bit/s\n" +
                                 R"(> #tag ID?*C
< #tag =T312B, 5.03*C
> #tag (not shown)
- no answer
> #tag (not shown)
< (not shown)
> #tag (not shown)
< (not shown)
- garbled
> #tag (not shown)
< (not shown)
- The readout refused the command (number 7).
> #tag LOG:HISTORY 1?*C
< (not shown)
- garbled
< #tag =ab\x09*C
> #tag SAMPLE:INTERVAL?*C
< (not shown)
- late answer, skipped
< #tag =5*C
)");
}

TEST(SerialPorts, ListHasWhatIsThereInNaturalOrder) {
  test::CTemporaryFolder folder;
  const auto write = [](const fs::path& file, const char* text) { std::ofstream(file) << text; };
  fs::create_directories(folder / "dev");
  fs::create_directories(folder / "sys/class/tty");
  // A port below `device`, with a driver and, unless it is empty, a type.
  const auto add = [&](const std::string& name, const std::string& device, const char* driver,
                       const char* type) {
    const fs::path port = folder / ("sys/devices/" + device + "/tty/" + name);
    fs::create_directories(port);
    fs::create_symlink("../..", port / "device");
    fs::create_symlink("../../bus/drivers/" + std::string(driver), port / "../../driver");
    fs::create_symlink(port, folder / ("sys/class/tty/" + name));
    if (*type != 0) write(port / "type", type);
    write(folder / ("dev/" + name), "");
  };
  fs::create_directories(folder / "sys/class/tty/tty1");
  write(folder / "dev/tty1", "");
  add("ttyUSB10", "usb1/1-2/1-2:1.0/ttyUSB10", "ch341", "");
  add("ttyUSB9", "usb1/1-1/1-1:1.0/ttyUSB9", "ftdi_sio", "");
  add("ttyS10", "pnp/10", "serial", "4\n");
  add("ttyS2", "platform/uart/port2", "port", "4\n");
  add("ttyS3", "platform/uart3", "serial8250", "0\n");
  add("ttyS4", "pnp/4", "serial", "4\n");
  fs::remove(folder / "dev/ttyS4");
  fs::create_symlink("../../bus/serial-base", folder / "sys/devices/platform/uart/port2/subsystem");
  fs::create_symlink("../../bus/drivers/serial8250", folder / "sys/devices/platform/uart/driver");
  const fs::path usb = folder / "sys/devices/usb1/1-1";
  write(usb / "manufacturer", "Corvane\n");
  write(usb / "product", "Line 1\n");
  write(usb / "serial", "A7\n");
  write(usb / "idVendor", "0403\n");
  write(usb / "idProduct", "6001\n");

  const auto dev = [&](const char* name) { return (folder / "dev" / name).string(); };
  const std::vector<SerialPortRecord> expected = {
      {dev("ttyS2"), "serial8250", "", "", "", ""},
      {dev("ttyS10"), "serial", "", "", "", ""},
      {dev("ttyUSB9"), "ftdi_sio", "Corvane", "Line 1", "A7", "0403:6001"},
      {dev("ttyUSB10"), "ch341", "", "", "", ""},
  };
  EXPECT_EQ(ListSerialPorts(folder / "sys", folder / "dev"), expected);
  EXPECT_TRUE(ListSerialPorts(folder / "nowhere", folder / "dev").empty());
}

}  // namespace
}  // namespace vane
