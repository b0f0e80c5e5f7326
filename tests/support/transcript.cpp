#include "tests/support/transcript.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "tests/support/fake_probe.h"
#include "vane/components/library_error.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"

namespace vane::test {
namespace {

class CRecordingProgress : public CVaneProgress {
 public:
  explicit CRecordingProgress(CTestHost& host) : host_(host) { host_.log.Add("progress"); }
  ~CRecordingProgress() override { host_.log.Add("release"); }

  void SetVisible(bool flag) override { host_.log.Add(flag ? "visible" : "invisible"); }
  void Attach(ui::CWindow* frm) override {
    host_.log.Add(frm != nullptr ? "attach window" : "attach none");
  }
  void Hide(bool flag) override { host_.log.Add(flag ? "show" : "hide"); }
  void Start(const std::string& text, double share) override {
    host_.log.Add("start " + text + " " + Number(share));
  }
  bool Step(std::int32_t total, std::int32_t position, std::int32_t) override {
    host_.log.Add(position == kNoPosition
                      ? "step"
                      : "step " + std::to_string(position) + " of " + std::to_string(total));
    return ++host_.steps != host_.abortat;
  }
  void Finish() override { host_.log.Add("finish"); }

 private:
  CTestHost& host_;
};

class CRecordingPasscodeDialog : public CVanePasscodeDialog {
 public:
  explicit CRecordingPasscodeDialog(CTestHost& host) : host_(host) {}
  ~CRecordingPasscodeDialog() override { host_.log.Add("release dialog"); }

  void SetHelpFile(const std::string& file) override { host_.log.Add("dialog help " + file); }
  bool ShowDialog(std::string& entered, ui::CWindow* owner) override {
    host_.log.Add(owner != nullptr ? "prompt window" : "prompt none");
    if (host_.typed.empty()) return false;
    entered = host_.typed.front();
    host_.typed.erase(host_.typed.begin());
    return true;
  }

 private:
  CTestHost& host_;
};

std::string OneLine(std::string text) {
  std::ranges::replace(text, '\r', '/');
  return text;
}

}  // namespace

std::string Number(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string CTranscript::Text() const { return Only({}); }

std::string CTranscript::Only(const std::vector<std::string>& words) const {
  std::string text;
  for (const std::string& line : lines_) {
    const bool wanted = words.empty() || std::ranges::any_of(words, [&](const auto& word) {
                          return line.starts_with(word);
                        });
    if (wanted) text += line + "\n";
  }
  return text;
}

std::size_t CTranscript::Count(std::string_view line) const {
  return static_cast<std::size_t>(std::ranges::count(lines_, line));
}

std::string CScriptedCommunications::Command(std::string command) const {
  const auto add = [&](const char* name, const std::string& text) {
    if (!text.empty()) command += std::string(" ") + name + "=" + text;
  };
  add("Probe", params_.Probe);
  add("Channel", params_.Channel);
  add("Range", params_.Range);
  add("Index", params_.Index);
  add("FilterCode", params_.FilterCode);
  add("value", params_.value);
  return command;
}

void CScriptedCommunications::Exchange(const std::string& command) {
  log_.Add(command);
  if (script_.beforeexchange) script_.beforeexchange();
  const std::string byid = command.substr(0, command.find(' ', command.find(' ') + 1));
  if (++script_.exchanges == script_.failat || script_.silent.contains(command) ||
      script_.silent.contains(byid)) {
    throw LibraryError(kLineError, "line", "No answer");
  }
}

std::string CScriptedCommunications::ReadSetting(ECommand id, bool flag, const std::string& text) {
  const std::string byid = "read " + std::to_string(static_cast<std::int32_t>(id));
  const std::string command = Command(byid) + (text.empty() ? "" : " text=" + text);
  Exchange(flag ? command : command + " mayfail");
  if (script_.keepssteps && id == ECommand::READ_SCAN_STEP) return script_.steps[params_.Index];
  const auto reply = script_.replies.contains(command) ? script_.replies.find(command)
                                                       : script_.replies.find(byid);
  if (reply == script_.replies.end()) {
    throw LibraryError(kLineError, "line", "Nobody expected " + command);
  }
  return reply->second;
}

void CScriptedCommunications::WriteSetting(ECommand id) {
  Exchange(Command("write " + std::to_string(static_cast<std::int32_t>(id))));
  if (script_.keepssteps && id == ECommand::WRITE_SCAN_STEP)
    script_.steps[params_.Index] = params_.Channel;
}

void CScriptedCommunications::SetPortNumber(EVanePortNumber value) {
  port_ = value;
  log_.Add("PortNumber=" + std::to_string(static_cast<int>(value)));
}

void CScriptedCommunications::SetBaudRate(EVaneBaudRate value) {
  baud_ = value;
  log_.Add("BaudRate=" + std::to_string(static_cast<int>(value)));
}

void CScriptedCommunications::SetAutoClose(bool value) {
  autoclose_ = value;
  log_.Add(value ? "AutoClose on" : "AutoClose off");
}

void CScriptedCommunications::SetCheckNonAscii(bool value) {
  checknonascii_ = value;
  log_.Add(value ? "CheckNonAscii on" : "CheckNonAscii off");
}

void CScriptedCommunications::SetReadTries(std::int32_t value) {
  tries_ = value;
  log_.Add("ReadTries=" + std::to_string(value));
}

EBoxButton CRecordingPlatform::MessageBox(const std::string& text, const std::string& title,
                                          std::int32_t flags, const std::string& helpfile,
                                          std::int32_t helpcontext) {
  std::string line = "box " + std::to_string(flags) + " " + title + ": " + OneLine(text);
  if (!helpfile.empty()) line += " help=" + helpfile + "#" + std::to_string(helpcontext);
  log_.Add(line);
  if (std::exchange(failsatbox, false)) throw LibraryError(kLineError, "box", "no screen");
  return asksforms ? forms_.MessageBox(text, flags) : EBoxButton::OK;
}

void CRecordingPlatform::RunMessageQueue(std::uint32_t longestwait) {
  log_.Add("queue " + std::to_string(longestwait));
  ticks += passlength == 0 ? longestwait : std::min(passlength, longestwait);
  if (onqueue) onqueue();
  forms_.RunMessageQueue();
}

std::int32_t CRecordingPlatform::OpenHelp(const std::string& helpfile, std::int32_t command,
                                          std::int32_t data) {
  log_.Add("help " + helpfile + " " + std::to_string(command) + " " + std::to_string(data));
  if (helpfile.empty()) throw LibraryError(kLineError, "viewer", "No viewer");
  return 1;
}

std::int32_t CFakeRegistry::ReadBoolean(const std::string& name, bool fallback, std::uint32_t root,
                                        const std::string& subkey) {
  asked = std::to_string(root) + "/" + subkey;
  if (values.contains("fails")) throw LibraryError(kLineError, "registry", "No", "own.hlp", 8);
  const auto value = values.find(name);
  return value != values.end() ? value->second : fallback;
}

void CFakeRegistry::Place(const std::string& what, const ui::CForm& form, std::int32_t variant,
                          bool flag) {
  placements += what + " " + form.Name() + " " + std::to_string(variant) + (flag ? " 1\n" : " 0\n");
  if (what == failing) throw LibraryError(kLineError, "registry", "No " + what);
}

CTestHost::CTestHost() {
  SetLibraryHelpFile("VaneT312B.hlp");
  SetDecimalSeparator({});
  instrument = std::make_unique<CVaneT312B>(components);
  log.Clear();
}

CTestHost::~CTestHost() { instrument.reset(); }

std::unique_ptr<CVaneCommunications> CTestHost::MakeCommunications() {
  return std::make_unique<CScriptedCommunications>(log, script);
}

std::unique_ptr<CVaneProbe> CTestHost::MakeProbe() {
  if (probesfail) throw LibraryError(kLineError, "probes", "No probe");
  return std::make_unique<CFakeProbe>([this](const std::string& line) {
    if (logsettings) log.Add(line);
  });
}

std::unique_ptr<CVaneProgress> CTestHost::MakeProgress() {
  return std::make_unique<CRecordingProgress>(*this);
}

std::unique_ptr<CVanePasscodeDialog> CTestHost::MakePasscodeDialog() {
  return std::make_unique<CRecordingPasscodeDialog>(*this);
}

void CTestHost::Connect() {
  instrument->SetRegistry(registry);
  instrument->InitializeCommunications();
  log.Clear();
}

void CTestHost::ConnectWith(bool scanner, const std::string& firmware) {
  Connect();
  script.replies["read 18"] = "T312B, " + firmware;
  script.replies["read 41"] = scanner ? "1" : "0";
  script.replies["read 43"] = scanner ? "12" : "2";
  instrument->QueryChannelInfo();
  instrument->SetChanged(false);
  log.Clear();
  steps = 0;
  script.exchanges = 0;
}

LibraryError CTestHost::ErrorOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const LibraryError& error) {
    return error;
  }
  return {0, {}, {}};
}

}  // namespace vane::test
