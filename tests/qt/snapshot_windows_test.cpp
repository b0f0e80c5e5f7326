// Snapshots by the desktop program's windows, on a simulated readout.
#include <gmock/gmock.h>

#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>
#include <fstream>
#include <set>
#include <sstream>

#include "apps/snapshots/snapshot_file.h"
#include "tests/qt/desktop_fixture.h"

namespace vane::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SnapshotWindows : public Window {
 protected:
  // Saves a snapshot and changes behind it a setting, a probe's serial number and a coefficient of
  // it.
  void SaveAndChange() {
    ASSERT_EQ(Through([this] { Trigger("Save a snapshot..."); },
                      {[this](QWidget& dialog) { GiveFile(dialog, file_); }}),
              1U);
    ASSERT_TRUE(QFile::exists(file_));
    Tell({"UNITS K", "PROBE 5:SERIAL OTHER-1"});
    EXPECT_TRUE(Tells("saved in"));
  }
  static std::vector<std::string> Cells(QWidget& dialog, int column) {
    std::vector<std::string> cells;
    const auto& table = *dialog.findChild<QTableWidget*>();
    for (int row = 0; row < table.rowCount(); ++row) {
      cells.push_back(FromQt(table.item(row, column)->text()));
    }
    return cells;
  }
  std::string Asked(const char* command) { return line_->Ask(command).value_or("nothing"); }

  const QString file_ = folder_.filePath("bath.json");
};

TEST_F(SnapshotWindows, SavedComparedAndRestoredBehindThePasscode) {
  Plug("--protect units,sampling,calibration,conversion");
  ASSERT_TRUE(window_->Connect(There()));
  const std::string units = Asked("UNITS?");
  const std::string serial = Asked("PROBE 5:SERIAL?");
  SaveAndChange();
  const auto kept = thermoscribe::ReadSnapshotFile(FromQt(file_));
  EXPECT_EQ(kept.probes.size(), 16U);
  EXPECT_THAT(kept.taken, HasSubstr("T"));
  std::ifstream stream(FromQt(file_));
  std::stringstream bytes;
  bytes << stream.rdbuf();

  std::vector<std::string> places;
  EXPECT_EQ(Through([this] { Trigger("Compare with a snapshot..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [&](QWidget& dialog) {
                       places = Cells(dialog, 0);
                       QTest::keyClick(dialog.findChild<QTableWidget*>(), Qt::Key_C,
                                       Qt::ControlModifier);
                       dialog.close();
                     }}),
            2U);
  EXPECT_THAT(places, ElementsAre("settings.Units", "probe 5.serial"));
  EXPECT_THAT(FromQt(QGuiApplication::clipboard()->text()), HasSubstr("OTHER-1"));

  // Whose file it is, is said.
  QFile other(folder_.filePath("other.json"));
  ASSERT_TRUE(other.open(QIODevice::WriteOnly));
  other.write(QByteArray::fromStdString(bytes.str()).replace("5.03", "5.07"));
  other.close();
  QString intro;
  EXPECT_EQ(Through([this] { Trigger("Compare with a snapshot..."); },
                    {[&](QWidget& dialog) { GiveFile(dialog, other.fileName()); },
                     [&](QWidget& dialog) {
                       intro = dialog.findChild<QLabel*>()->text();
                       dialog.close();
                     }}),
            2U);
  EXPECT_THAT(FromQt(intro),
              HasSubstr("of another readout. Firmware: \"5.07\" in the file, \"5.03\" here"));

  // Without a passcode nothing is written.
  EXPECT_EQ(Through([this] { Trigger("Restore a snapshot..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [](QWidget& dialog) { Press(dialog, "Write these 2 values"); },
                     [](QWidget& passcode) { Press(passcode, "Cancel"); }}),
            3U);
  EXPECT_TRUE(Tells("Nothing was written"));
  EXPECT_NE(Asked("UNITS?"), units);

  EXPECT_EQ(Through([this] { Trigger("Restore a snapshot..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [](QWidget& dialog) { Press(dialog, "Write these 2 values"); },
                     [](QWidget& passcode) { GivePasscode(passcode); }}),
            3U);
  EXPECT_EQ(Asked("UNITS?"), units);
  EXPECT_EQ(Asked("PROBE 5:SERIAL?"), serial);
  EXPECT_TRUE(Tells("Restored 2 values."));
  // The passcode that was given for this opens nothing else.
  EXPECT_NE(host_->Instrument().UnitsTimePasscodeState(), ET312BPasscodeState::PS_ENABLED);

  EXPECT_EQ(Through([this] { Trigger("Compare two snapshots..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [&](QWidget& dialog) {
                       places = Cells(dialog, 0);
                       dialog.close();
                     }}),
            3U);
  EXPECT_THAT(places, ElementsAre());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

// Over the many runs of the library there is one progress window, and its Cancel ends all of them.
TEST_F(SnapshotWindows, CancelEndsASaveAsAWholeAndLeavesNoFile) {
  Plug();
  ASSERT_TRUE(window_->Connect(There()));
  std::set<QWidget*> shown;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->objectName() != "progress") return;
    shown.insert(modal);
    const auto* const bar = modal->findChild<QProgressBar*>();
    if (bar->value() > bar->maximum() / 3) modal->findChild<QPushButton*>()->click();
  });
  look.start(1);
  EXPECT_GE(Through([this] { Trigger("Save a snapshot..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [](QWidget& box) { box.close(); }}),
            2U);
  EXPECT_TRUE(Tells("Aborted"));
  EXPECT_EQ(shown.size(), 1U);
  EXPECT_FALSE(QFile::exists(file_));
  EXPECT_TRUE(Tells("Nothing was saved"));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  // And what comes behind is not cancelled too.
  look.stop();
  SaveAndChange();
}

TEST_F(SnapshotWindows, ALineThatFailsInTheMiddleLeavesAnAccountAndABadFileNothing) {
  Plug();
  ASSERT_TRUE(window_->Connect(There()));
  SaveAndChange();
  Plug("--fault write=12:hangup=600");
  Tell({"UNITS K", "PROBE 5:SERIAL OTHER-1"});
  ASSERT_TRUE(window_->Connect(There()));
  std::vector<std::string> boxes;
  const auto readbox = [&](QWidget& box) {
    boxes.push_back(FromQt(box.findChild<QLabel*>("qt_msgbox_label")->text()));
    box.close();
  };
  Through([this] { Trigger("Restore a snapshot..."); },
          {[this](QWidget& dialog) { GiveFile(dialog, file_); },
           [](QWidget& dialog) {
             for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
               if (button->text().startsWith("&Write")) return button->click();
             }
           },
           readbox});
  ASSERT_GE(boxes.size(), 2U);
  EXPECT_THAT(boxes.back(), HasSubstr("Not written: "));
  EXPECT_TRUE(Tells("probe 5."));  // also where a box was closed too soon

  std::ofstream(FromQt(file_)) << "{\"version\": 1, \"settings\": {\"Units\": 7}}";
  boxes.clear();
  EXPECT_EQ(Through([this] { Trigger("Compare two snapshots..."); },
                    {[this](QWidget& dialog) { GiveFile(dialog, file_); },
                     [this](QWidget& dialog) { GiveFile(dialog, file_); }, readbox}),
            3U);
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_THAT(boxes[0], HasSubstr("bath.json"));
}

}  // namespace
}  // namespace vane::desktop
