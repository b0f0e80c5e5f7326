// The communications component on a serial port: turns a command id into a line, sends it, waits
// for the answer that belongs to it.
//
// The host makes one `LineSettings` and gives it to every communications object that its factory
// makes; through it the host also learns what went wrong last. One thread for all of them.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/serial/com_port.h"
#include "adapters/serial/line_trace.h"
#include "adapters/serial/serial_port.h"
#include "protocol/line_buffer.h"
#include "protocol/reply_form.h"
#include "vane/components/communications.h"

namespace vane {

/// How an exchange failed. Number 0: it didn't.
struct LineFailure {
  std::int32_t number = 0;
  std::string description;
  /// The readout refused, and the number is its own, even where it equals one of line_errors.h.
  bool refused = false;
};

struct LineSettings {
  /// The device behind a port number. A number that isn't here means the machine's serial port at
  /// that place, counted from 1. Looked at when a port is opened.
  std::map<EVanePortNumber, std::string> devices;

  /// What messages call the device; empty: its path.
  std::string devicename;

  /// How long one try waits for the readout. The time that the characters themselves take at the
  /// line's speed comes on top.
  std::chrono::milliseconds timeout{1000};

  /// Null: no trace.
  std::shared_ptr<CLineTrace> trace;

  /// When given, a write is not sent: its line goes here as it would go out, and counts as done. A
  /// read is sent as ever.
  std::function<void(const std::string& line)> preview;

  /// Written by every exchange: a good one clears it. The library may replace an error by a more
  /// general one, or take silence for an answer; here the cause is still to be seen.
  LineFailure lastfailure;

  /// How many exchanges have failed up to now, refusals and allowed silences among them; but
  /// not a read with one try that was refused or met silence, which only looks for who is there. A
  /// host that compares it before and after a run learns whether every exchange went well.
  std::int32_t failures = 0;

  /// The first failure of those that was none of the readout's: no refusal. What fails behind it,
  /// such as opening a port that has hung up, mostly follows from it.
  LineFailure firsttrouble;
};

class CSerialCommunications final : public CVaneCommunications {
 public:
  /// `settings` is not null. Nothing is opened.
  explicit CSerialCommunications(std::shared_ptr<LineSettings> settings);

  CommandParams& params() override { return params_; }
  CVaneCOMPort& COMPort() override { return comport_; }

  /// Kept, and of no further use here: everything that this component needs is in its settings.
  void SetDataPath(const std::string& path) override { datapath_ = path; }
  const std::string& DataPath() const { return datapath_; }

  /// With any kind but 9 every exchange fails.
  void SetInstrumentKind(std::int32_t kind) override { instrumentkind_ = kind; }

  /// The errors are those of line_errors.h and refusals. Silence, damaged answers and answers of
  /// another form than the command's (protocol/reply_form.h) are tried again, nothing else is. A
  /// reply's bytes above 127 are taken as ISO 8859-1.
  std::string ReadSetting(ECommand id, bool flag = true, const std::string& text = {}) override;
  void WriteSetting(ECommand id) override;

 private:
  struct SentCommand {
    std::string text;
    bool issecret;  // a raw command: it and its answer are shown nowhere
    protocol::ReplyForm form;
  };
  enum class EOutcome { ANSWERED, SILENT, GARBLED, OVERLONG, UNEXPECTED };

  std::string Run(const char* label, ECommand id, bool isread, const std::string& rawtext);
  SentCommand MakeCommand(ECommand id, bool isread, const std::string& rawtext) const;
  std::string Exchange(const SentCommand& command);
  void Open();
  std::string DevicePath() const;
  EOutcome Try(const SentCommand& command, std::string& reply);
  EOutcome Judge(const protocol::ReceivedLine& line, const SentCommand& command,
                 std::string& reply);
  EOutcome TakeAnswer(std::string_view body, const SentCommand& command, std::string& reply);
  std::int32_t Tries() const;
  void Trace(ETraceMark mark, std::string_view text) const;
  void TraceReceived(std::string_view text, bool isharmless) const;
  [[noreturn]] void FailPort(EPortResult result) const;
  [[noreturn]] void FailExchange(EOutcome outcome, const SentCommand& command) const;

  std::shared_ptr<LineSettings> settings_;
  CommandParams params_;
  CSerialPort port_;
  CSerialCOMPort comport_;
  std::string datapath_;
  std::int32_t instrumentkind_;
  const BaudRateRow* rate_ = nullptr;  // of the port that was opened last
  std::string device_;                 // what messages call it
  protocol::CLineBuffer buffer_;
  std::string unexpected_;       // as messages show it: the last answer of another form
  std::uint16_t tag_;            // of the last sending
  bool secretsoutside_ = false;  // a secret answer may still come in late
};

}  // namespace vane
