// What a program with windows has for the library: boxes, pauses, the progress, the passcode, the
// save dialog; and all of it together around the library's own windows on a late line.
#include <gmock/gmock.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <optional>

#include "adapters/qt/help_topics.h"
#include "adapters/qt/qt_factory.h"
#include "adapters/qt/qt_file_dialog.h"
#include "adapters/qt/qt_passcode.h"
#include "adapters/qt/qt_platform.h"
#include "adapters/qt/qt_progress.h"
#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_view.h"
#include "simulator/line_server.h"
#include "vane/components/registry.h"
#include "vane/instrument/t312b.h"
#include "vane/support/messages.h"

namespace vane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Acts, once each, when a window of that name is up: a dialog's object name, or "box".
class CUserAtScreen {
 public:
  using Act = std::function<void(QWidget& window)>;

  CUserAtScreen& When(const std::string& window, Act act) {
    acts_.push_back({window, std::move(act)});
    return *this;
  }
  CUserAtScreen() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
    timer_.start();
  }
  ~CUserAtScreen() { EXPECT_TRUE(acts_.empty()) << acts_.front().window << " has not come up"; }

 private:
  struct Row {
    std::string window;
    Act act;
  };

  void Look() {
    QWidget* const window = QApplication::activeModalWidget();
    if (acts_.empty() || window == nullptr || !window->isVisible() || !window->isEnabled()) return;
    auto* const form = ui::CForm::Active();
    const bool isform = form != nullptr && window->objectName() == ToQt(form->Name());
    if (isform && form->IsRunning()) return;
    const std::string name =
        qobject_cast<QMessageBox*>(window) ? "box" : FromQt(window->objectName());
    if (name != acts_.front().window) return;
    const Act act = std::move(acts_.front().act);
    acts_.erase(acts_.begin());
    // From the loop itself: a window that comes up by this one has acts of its own.
    QTimer::singleShot(0, window, [act, window] {
      window->activateWindow();
      EXPECT_TRUE(QTest::qWaitFor(
          [window] { return QGuiApplication::focusWindow() == window->windowHandle(); }));
      act(*window);
    });
  }

  std::vector<Row> acts_;
  QTimer timer_;
};

void Press(QWidget& window, QMessageBox::StandardButton button) {
  QTest::mouseClick(dynamic_cast<QMessageBox&>(window).button(button), Qt::LeftButton);
}

void PressNamed(QWidget& window, const char* name) {
  auto* const button = window.findChild<QPushButton*>(name);
  ASSERT_NE(button, nullptr) << name;
  QTest::mouseClick(button, Qt::LeftButton);
}

class QtPlatform : public testing::Test {
 protected:
  QtPlatform() {
    platform_.OnBox([this](const ShownBox& box) { boxes_.push_back(box.text); });
  }

  std::vector<std::int32_t> topics_;
  std::vector<std::string> boxes_;
  CQtPlatform platform_{[this](std::int32_t context) {
    topics_.push_back(context);
    return true;
  }};
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  CQtFactory factory_{line_};
  const Components components_{platform_, factory_};
  CInstalledComponents installed_{components_};
};

TEST_F(QtPlatform, BoxesAskAndTellAndHelpLeavesThemOpen) {
  struct Case {
    std::int32_t flags;
    QMessageBox::StandardButton pressed;
    EBoxButton answer;
    QMessageBox::Icon icon;
  };
  const Case cases[] = {
      {kBoxStop, QMessageBox::Ok, EBoxButton::OK, QMessageBox::Critical},
      {kBoxInformation, QMessageBox::Ok, EBoxButton::OK, QMessageBox::Information},
      {kBoxQuestion + kBoxYesNo, QMessageBox::Yes, EBoxButton::YES, QMessageBox::Question},
      {kBoxQuestion + kBoxYesNo, QMessageBox::No, EBoxButton::NO, QMessageBox::Question}};
  for (const Case& row : cases) {
    for (const bool helps : {false, true}) {
      topics_.clear();
      CUserAtScreen user;
      if (helps) user.When("box", [](QWidget& box) { Press(box, QMessageBox::Help); });
      user.When("box", [&](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text(), "One.\nTwo <b>&</b>");
        EXPECT_EQ(box.windowTitle(), "Title");
        EXPECT_EQ(box.icon(), row.icon);
        EXPECT_EQ(box.buttons().size(), (row.flags & kBoxYesNo ? 2 : 1) + (helps ? 1 : 0));
        Press(box, row.pressed);
      });
      EXPECT_EQ(platform_.MessageBox("One.\rTwo <b>&</b>", "Title",
                                     row.flags + (helps ? kBoxHelpButton : 0), "help", 4711),
                row.answer);
      EXPECT_EQ(topics_.size(), helps ? 1U : 0U);
    }
  }
  EXPECT_EQ(boxes_.size(), 8U);
  EXPECT_EQ(boxes_.front(), "One.\nTwo <b>&</b>");
}

TEST_F(QtPlatform, PausesWaitForEventsAndNoLonger) {
  QElapsedTimer clock;
  clock.start();
  int beats = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++beats; });
  timer.start(10);
  const std::uint32_t start = platform_.TickCount();
  while (platform_.TickCount() - start < 200) platform_.RunMessageQueue(200);
  EXPECT_GE(beats, 10);
  EXPECT_LT(clock.elapsed(), 400);
  timer.stop();
  clock.restart();
  platform_.RunMessageQueue(30);
  EXPECT_LT(clock.elapsed(), 200);
  // Set twice, taken back once: as the library does.
  platform_.SetBusyCursor(true);
  platform_.SetBusyCursor(true);
  platform_.SetBusyCursor(false);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(QtPlatform, ProgressStopsBetweenTwoSteps) {
  using Stop = std::function<void(QWidget & window)>;
  const Stop stops[] = {
      [](QWidget& window) { QTest::mouseClick(window.findChild<QPushButton*>(), Qt::LeftButton); },
      [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
      [](QWidget& window) { window.close(); }};
  QWidget owner;
  owner.show();
  owner.setEnabled(false);
  CQtWindow window(owner);
  for (const Stop& stop : stops) {
    CQtProgress progress;
    progress.Attach(&window);
    progress.SetVisible(true);
    progress.Start("Reading", 1);
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(progress.Step(kNoPosition, kNoPosition, 0));
    QTest::qWait(30);
    ASSERT_TRUE(progress.Step(kNoPosition, kNoPosition, 0));
    QWidget* const shown = QApplication::activeModalWidget();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->findChild<QProgressBar*>()->value(), 11);
    progress.Hide(false);
    EXPECT_FALSE(shown->isVisible());
    progress.Hide(true);
    EXPECT_TRUE(shown->isVisible());
    stop(*shown);
    EXPECT_TRUE(shown->isVisible());
    EXPECT_FALSE(progress.Step(100, 50, 0));
    EXPECT_FALSE(progress.Step(100, 60, 0));
    progress.Finish();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    progress.Start("Again", 0);
    EXPECT_TRUE(progress.Step(4, 1, 0));
  }
}

TEST_F(QtPlatform, PasscodeIsNeitherShownNorKept) {
  CQtPasscodeDialog dialog;
  dialog.SetHelpFile("some");
  std::string entered = "before";
  QLineEdit* line = nullptr;
  {
    CUserAtScreen user;
    user.When("passcode", [&](QWidget& window) {
      line = window.findChild<QLineEdit*>();
      EXPECT_EQ(line->echoMode(), QLineEdit::Password);
      QTest::keyClick(line, Qt::Key_Return);  // nothing typed is no passcode
      EXPECT_TRUE(window.isVisible());
      for (auto* const button : window.findChildren<QPushButton*>()) {
        if (button->text().contains("Help")) button->click();
      }
      QTest::keyClicks(line, "12 34");
      EXPECT_FALSE(line->displayText().contains('1'));
      QTest::keyClick(line, Qt::Key_Return);
    });
    EXPECT_TRUE(dialog.ShowDialog(entered, nullptr));
  }
  EXPECT_EQ(entered, "12 34");
  EXPECT_THAT(topics_, ElementsAre(kPasscodeTopic));
  CUserAtScreen user;
  user.When("passcode", [](QWidget& window) {
    QTest::keyClicks(window.findChild<QLineEdit*>(), "99");
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  EXPECT_FALSE(dialog.ShowDialog(entered, nullptr));
  EXPECT_EQ(entered, "12 34");
}

TEST_F(QtPlatform, SaveDialogGivesAPathOrRaises) {
  const QTemporaryDir folder;
  const auto ask = [&](const std::function<void(QFileDialog & dialog)>& act) {
    CQtFileDialog dialog;
    dialog.SetDefaultExt("txt");
    dialog.SetDialogTitle("Save");
    dialog.SetFlags(0x280806);
    dialog.SetFileName("download.txt");
    dialog.SetFilter("Text files (*.txt)|*.txt|All files (*.*)|*.*");
    dialog.SetInitDir(FromQt(folder.path()));
    QTimer::singleShot(
        20, [&act] { act(dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget())); });
    dialog.ShowSave();
    return dialog.FileName();
  };
  const std::string root = FromQt(folder.path()) + "/";
  EXPECT_EQ(ask([](QFileDialog& dialog) {
              EXPECT_EQ(dialog.nameFilters().size(), 2);
              dialog.findChild<QLineEdit*>()->setText("other");
              QTest::keyClick(&dialog, Qt::Key_Return);
            }),
            root + "other.txt");
  EXPECT_EQ(ask([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }),
            root + "download.txt");
  EXPECT_THROW(ask([](QFileDialog& dialog) { dialog.reject(); }), LibraryError);
}

// The settings of a protected readout whose answers are late: the passcode, the question, the
// progress and its Cancel, with the window's close box at each moment.
TEST_F(QtPlatform, SettingsAreEditedWithAllThatComesUpAround) {
  simulator::CSimulatedLine readout(simulator::ParseOptions(
      "--protect units,sampling,calibration,conversion --fault every=1:delay=0.004"));
  readout.Start();
  line_->devices[EVanePortNumber::PORT_1] = readout.Path();
  CVaneT312B instrument(components_);
  instrument.SetRegistry(std::make_shared<CEmptyRegistry>());
  instrument.SetHelpFile("VaneT312B");
  instrument.InitializeCommunications();
  ASSERT_TRUE(instrument.QueryChannelInfo());

  QWidget* settings = nullptr;
  const auto interval = [&] { return settings->findChild<QLineEdit*>("txtInterval"); };
  CUserAtScreen user;
  user.When("frmT312BSettings", [&](QWidget& window) {
    settings = &window;
    PressNamed(window, "cmdEditProtected");
  });
  user.When("passcode", [&](QWidget& window) {
    QTest::keyClicks(window.findChild<QLineEdit*>(), "4321");
    QTest::keyClick(window.findChild<QLineEdit*>(), Qt::Key_Return);
  });
  user.When("box", [](QWidget& box) { Press(box, QMessageBox::Ok); });  // a wrong one
  user.When("passcode", [&](QWidget& window) {
    QTest::keyClicks(window.findChild<QLineEdit*>(), "1234");
    QTest::keyClick(window.findChild<QLineEdit*>(), Qt::Key_Return);
  });
  user.When("frmT312BSettings", [&](QWidget& window) {
    window.findChild<QTabBar*>()->setCurrentIndex(1);
    QTest::mouseClick(interval(), Qt::LeftButton);
    QTest::keyClick(interval(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(interval(), "77");
    PressNamed(window, "cmdApply");
  });
  user.When("box", [&](QWidget& box) {
    settings->close();  // under a box nothing happens
    EXPECT_TRUE(settings->isVisible());
    Press(box, QMessageBox::Yes);
  });
  user.When("progress", [&](QWidget& window) {
    settings->close();
    EXPECT_TRUE(settings->isVisible());
    QTest::mouseClick(window.findChild<QPushButton*>(), Qt::LeftButton);
  });
  // Stopped, and told; the window is there with its edits.
  user.When("box", [](QWidget& box) { Press(box, QMessageBox::Ok); });
  user.When("frmT312BSettings", [&](QWidget& window) {
    EXPECT_EQ(interval()->text(), "77");
    window.close();
  });
  instrument.Edit();
  EXPECT_THAT(boxes_, testing::Contains(HasSubstr("Do you wish to write the changes")));
}

}  // namespace
}  // namespace vane
