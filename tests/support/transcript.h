// The test double of everything outside the library: scripted communications, a recording user
// interface with a manual clock, a recording reporter, and a fake probe. All write into one log, so
// that a test compares a whole run with the text that it expects.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "vane/components/components.h"
#include "vane/components/memory_forms.h"
#include "vane/instrument/t312b.h"

namespace vane::test {

/// The common log, one event a line.
class CTranscript {
 public:
  void Add(std::string line) { lines_.push_back(std::move(line)); }
  const std::vector<std::string>& Lines() const { return lines_; }
  std::string Text() const;
  void Clear() { lines_.clear(); }
  std::size_t Count(std::string_view line) const;

  /// Only the lines that begin with one of these words; all when none is given.
  std::string Only(const std::vector<std::string>& words) const;

 private:
  std::vector<std::string> lines_;
};

/// How the readout answers. A command is written as in the log: "read 12 Channel=1"; a reply that
/// is not given for the whole command is looked up by its id alone.
struct Script {
  std::map<std::string, std::string> replies;
  std::set<std::string> silent;          ///< commands that fail
  std::optional<std::size_t> failat;     ///< the n-th exchange fails, from 1
  std::function<void()> beforeexchange;  ///< lets a test step in
  std::size_t exchanges = 0;

  /// The scan steps that the scanner holds; read and written by ids 110 and 111.
  bool keepssteps = false;
  std::map<std::string, std::string> steps;
};

/// Fails with this error where the script says so.
inline constexpr std::int32_t kLineError = 4711;

class CScriptedCommunications : public CVaneCommunications, private CVaneCOMPort {
 public:
  CScriptedCommunications(CTranscript& log, Script& script) : log_(log), script_(script) {}

  CommandParams& params() override { return params_; }
  CVaneCOMPort& COMPort() override { return *this; }
  void SetDataPath(const std::string& path) override { log_.Add("DataPath=" + path); }
  void SetInstrumentKind(std::int32_t kind) override {
    log_.Add("InstrumentKind=" + std::to_string(kind));
  }
  std::string ReadSetting(ECommand id, bool flag, const std::string& text) override;
  void WriteSetting(ECommand id) override;

 private:
  EVanePortNumber PortNumber() const override { return port_; }
  void SetPortNumber(EVanePortNumber value) override;
  EVaneBaudRate BaudRate() const override { return baud_; }
  void SetBaudRate(EVaneBaudRate value) override;
  bool AutoClose() const override { return autoclose_; }
  void SetAutoClose(bool value) override;
  bool CheckNonAscii() const override { return checknonascii_; }
  void SetCheckNonAscii(bool value) override;
  std::int32_t ReadTries() const override { return tries_; }
  void SetReadTries(std::int32_t value) override;

  std::string Command(std::string command) const;
  void Exchange(const std::string& command);

  CTranscript& log_;
  Script& script_;
  CommandParams params_;
  EVanePortNumber port_{};
  EVaneBaudRate baud_{};
  bool autoclose_ = false;
  bool checknonascii_ = true;
  std::int32_t tries_ = 3;
};

class CRecordingPlatform : public CPlatform {
 public:
  CRecordingPlatform(CTranscript& log, CMemoryForms& forms) : log_(log), forms_(forms) {}

  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;
  void SetBusyCursor(bool on) override { log_.Add(on ? "busy on" : "busy off"); }
  void RunMessageQueue(std::uint32_t longestwait) override;
  std::int32_t OpenHelp(const std::string& helpfile, std::int32_t command,
                        std::int32_t data) override;
  std::uint32_t TickCount() override { return ticks; }
  std::chrono::local_seconds LocalTime() override { return now; }
  std::string DecimalSeparator() override { return separator; }
  std::string LongTimeText(std::chrono::local_seconds) override { return longtime; }
  std::string FolderOfLibrary() override { return folderoflibrary; }
  std::string SystemFolder() override { return systemfolder; }
  std::string TemporaryFolder() override { return temporaryfolder; }

  std::chrono::local_seconds now{};
  std::string longtime;
  std::string separator = ".";
  std::uint32_t ticks = 1000;
  std::uint32_t passlength = 0;   ///< what one pass takes at most, 0 for all that it may
  std::function<void()> onqueue;  ///< an event that comes up in the queue
  std::string folderoflibrary = "/opt/vane/lib";
  std::string systemfolder = "/usr/lib";
  std::string temporaryfolder = "/tmp";
  bool asksforms = false;   ///< whether boxes are answered as `CTestHost::forms` was told
  bool failsatbox = false;  ///< the next box can't be shown

 private:
  CTranscript& log_;
  CMemoryForms& forms_;
};

/// Keeps what was asked of it apart from the log.
class CFakeRegistry : public CVaneRegistry {
 public:
  std::int32_t ReadBoolean(const std::string& name, bool fallback, std::uint32_t root,
                           const std::string& subkey) override;
  std::string ReadText(const std::string& name, const std::string& fallback, std::uint32_t,
                       const std::string&) override {
    const auto text = texts.find(name);
    return text != texts.end() ? text->second : fallback;
  }
  void RestoreFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override {
    Place("restore", form, variant, flag);
  }
  void SaveFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override {
    Place("save", form, variant, flag);
  }

  std::map<std::string, std::int32_t> values;
  std::map<std::string, std::string> texts;
  std::string asked;       ///< root and sub key of the last question
  std::string placements;  ///< "restore frmShowFiles 0 1" or "save ...", a line each
  std::string failing;     ///< which of these two fails

 private:
  void Place(const std::string& what, const ui::CForm& form, std::int32_t variant, bool flag);
};

/// Bundle, scope and instrument of one test.
class CTestHost : public CComponentFactory {
 public:
  CTestHost();
  ~CTestHost() override;

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProbe> MakeProbe() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override;
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override { return forms.Make(name); }

  /// Gives the instrument a registry and a line, with nothing of it in the log.
  void Connect();
  /// As above, and finds the modules of a readout with this firmware; leaves no log behind.
  void ConnectWith(bool scanner, const std::string& firmware = "5.03");

  /// The error that `body` raises, or an error with the number 0.
  static LibraryError ErrorOf(const std::function<void()>& body);

  CTranscript log;
  Script script;
  CMemoryForms forms;
  CRecordingPlatform platform{log, forms};
  Components components{platform, *this};
  CInstalledComponents installed{components};
  std::shared_ptr<CFakeRegistry> registry = std::make_shared<CFakeRegistry>();
  std::optional<std::size_t> abortat;  ///< the n-th step of all reporters says that the user stops
  std::size_t steps = 0;
  bool logsettings = false;  ///< whether what a probe is set to goes into the log
  bool probesfail = false;
  std::vector<std::string> typed;  ///< what the user types at the passcode prompt, then cancels
  std::unique_ptr<CVaneT312B> instrument;
};

/// A window that a test hands in as an owner.
class CTestWindow : public ui::CWindow {};

std::string Number(double value);

}  // namespace vane::test
