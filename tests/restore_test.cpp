// A snapshot restored by a program without a terminal, on the simulated readout.

#include "apps/snapshots/restore.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "apps/snapshots/snapshot_file.h"
#include "simulator/line_server.h"
#include "tests/support/host_machine.h"
#include "vane/components/passcode_dialog.h"

namespace vane::thermoscribe {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Types a passcode once and cancels then.
class CTypedPasscode final : public CVanePasscodeDialog {
 public:
  explicit CTypedPasscode(std::string text) : text_(std::move(text)) {}
  void SetHelpFile(const std::string&) override {}
  bool ShowDialog(std::string& entered, ui::CWindow*) override {
    entered = std::exchange(text_, {});
    return !entered.empty();
  }

 private:
  std::string text_;
};

class CTestFactory final : public CHeadlessFactory {
 public:
  using CHeadlessFactory::CHeadlessFactory;
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override {
    return std::make_unique<CTypedPasscode>(passcode);
  }
  std::string passcode;
};

// A program with an instrument object that lives on, as one with windows has it.
class CProgram final : public CAudience {
 public:
  explicit CProgram(const std::string& simulated) : readout_(simulator::ParseOptions(simulated)) {
    platform_.SkipWaits();
    readout_.Start();
    line_->devices[EVanePortNumber::PORT_1] = readout_.Path();
    instrument.SetRegistry(std::make_shared<CEmptyRegistry>());
    instrument.InitializeCommunications();
    EXPECT_TRUE(instrument.QueryChannelInfo());
  }

  bool IsInterrupted() const override { return isinterrupted; }
  ui::CWindow* ProgressWindow() override { return nullptr; }
  std::int32_t Troubles() const override { return troubles; }
  void Say(const std::string& text) override { said.push_back(text); }
  void SayError(const std::string& action) override { said.push_back("error " + action); }

  Snapshot Take() {
    Snapshot snapshot;
    EXPECT_EQ(TakeSnapshot(instrument, *this, snapshot), EEnd::DONE);
    return snapshot;
  }

 private:
  CHeadlessPlatform platform_;
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  simulator::CSimulatedLine readout_;

 public:
  CTestFactory factory{line_};

 private:
  const Components components_{platform_, factory};
  CInstalledComponents installed_{components_};

 public:
  CVaneT312B instrument{components_};
  std::vector<std::string> said;
  bool isinterrupted = false;
  std::int32_t troubles = 0;
};

struct RestoreCase {
  const char* simulated;
  const char* passcode;
  std::size_t stopafter;  // stages; 9: never
  EEnd gates;
  EEnd end;
  const char* account;
};

TEST(Restore, WritesAFileStageByStageAndLeavesNoGateOpen) {
  constexpr const char* kProtect = "--protect conversion,calibration,sampling,units";
  for (const auto& [simulated, passcode, stopafter, gates, end, account] : std::vector<RestoreCase>{
           {"", "", 9, EEnd::DONE, EEnd::DONE, ""},
           {kProtect, "1234", 9, EEnd::DONE, EEnd::DONE, ""},
           {kProtect, "4321", 9, EEnd::STOPPED, EEnd::STOPPED, ""},
           {"", "", 0, EEnd::DONE, EEnd::STOPPED, "Aborted. Nothing was written."},
           {"", "", 1, EEnd::DONE, EEnd::STOPPED,
            "Aborted. Written in part at most: scanner and settings. Not written: probe 5, channel "
            "assignments."},
           {"--fault write=40:refuse", "", 9, EEnd::DONE, EEnd::RAISED,
            "Written: scanner and settings, probe 5. Written in part at most: channel "
            "assignments."}}) {
    SCOPED_TRACE(std::string(simulated) + passcode + std::to_string(stopafter));
    CProgram program(simulated);
    program.factory.passcode = passcode;
    const test::CTemporaryFolder folder;
    Snapshot changed = program.Take();
    const Snapshot before = changed;
    for (auto& [row, value] : changed.settings) {
      if (row->name == "Interval") value = 7;
    }
    changed.probes[4].back().value = 0.125;
    changed.channels[2].probe = 9;
    WriteSnapshotFile(folder.Path() / "a.json", changed);
    const ET312BPasscodeState state = program.instrument.ConvPasscodeState();
    {
      CRestore restore(program.instrument, program, ReadSnapshotFile(folder.Path() / "a.json"),
                       before);
      EXPECT_EQ(restore.All().size(), 3);
      EXPECT_EQ(restore.Wanted().size(), 3);
      ASSERT_EQ(restore.OpenGates(), gates);
      if (gates == EEnd::DONE) {
        std::vector<Stage> stages = restore.Stages();
        program.isinterrupted = stopafter == 0;
        if (stopafter == 1) {
          stages[0].write = [&] { return !(program.isinterrupted = true); };
        }
        const WriteAccount written = WriteStages(stages, program);
        EXPECT_EQ(written.end, end);
        EXPECT_EQ(end == EEnd::DONE ? "" : written.Text(program.isinterrupted), account);
      }
      if (end == EEnd::DONE) {
        EXPECT_THAT(restore.LostIn(program.Take()), IsEmpty());
      }
    }
    EXPECT_EQ(program.instrument.ConvPasscodeState(), state);
  }
}

TEST(Restore, TellsWhatDidNotArriveAndWhatWasNotReadWell) {
  CProgram program("");
  const Snapshot before = program.Take();
  Snapshot file = before;
  file.channels[2].probe = 9;
  const CRestore restore(program.instrument, program, file, before);
  const std::vector<LostValue> lost = restore.LostIn(before);
  ASSERT_EQ(lost.size(), 1);
  EXPECT_EQ(lost[0].Text(),
            "channel 3: 9 did not arrive, the readout has 3: the readout did not take it.");

  CProgram other("--fault at=60:refuse");
  Snapshot none;
  EXPECT_EQ(TakeSnapshot(other.instrument, other, none), EEnd::RAISED);
  const auto withtrouble = [&] { return ++other.troubles > 0 && other.instrument.QueryInfo(); };
  EXPECT_EQ(TakeSnapshot(other.instrument, other, withtrouble, none), EEnd::BADLY);
  EXPECT_THAT(other.said, ElementsAre("error reading from the instrument",
                                      "Not everything could be read well."));
}

}  // namespace
}  // namespace vane::thermoscribe
