// The desktop program in the test's own process, on a simulated readout that can be unplugged.
#pragma once

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/channel_table.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/main_window.h"
#include "simulator/line_server.h"
#include "vane/components/form.h"

namespace vane::desktop {

using namespace std::chrono_literals;

// The user's configuration in a folder of its own, and a readout at a path that outlives it, whose
// samples come when the test says so.
class Desktop : public testing::Test {
 protected:
  Desktop() {
    qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8());
    host_.emplace([](std::int32_t) { return true; });
  }

  void Plug(const std::string& options = {}) {
    line_.reset();
    line_.emplace(simulator::ParseOptions(options + " --link " + path_),
                  simulator::CSimulatedLine::Announce(), [this] {
                    return std::chrono::steady_clock::now() + std::chrono::seconds(passed_);
                  });
    line_->Start();
  }
  void Unplug() { line_.reset(); }
  void Tell(const std::vector<const char*>& commands) {
    for (const char* const command : commands) EXPECT_EQ("=", line_->Ask(command)) << command;
  }
  void NextSample() { passed_ += 2; }
  Connection There() const {
    Connection connection;
    connection.port = path_;
    connection.timeout = 300ms;
    return connection;
  }
  // Lets the program go on, with a sample now and then.
  bool Until(const std::function<bool()>& holds) {
    const auto start = std::chrono::steady_clock::now();
    while (!holds()) {
      if (std::chrono::steady_clock::now() - start > 20s) return false;
      NextSample();
      QTest::qWait(50);
    }
    return true;
  }

  QTemporaryDir folder_;
  const std::string path_ = FromQt(folder_.filePath("readout"));
  std::atomic<std::int64_t> passed_ = 0;  // s
  std::optional<simulator::CSimulatedLine> line_;
  std::optional<CDesktopHost> host_;
};

class Window : public Desktop {
 protected:
  Window() {
    window_.emplace(*host_);
    window_->show();
  }
  std::int64_t Count(std::int16_t channel) {
    return window_->Readings().StatisticsOf(window_->Measuring().SeriesOf(channel)).count;
  }
  bool Tells(const QString& part) {
    return !window_->findChild<QTreeWidget*>()->findItems(part, Qt::MatchContains, 1).isEmpty();
  }
  void Trigger(const QString& text) {
    for (QAction* const action : window_->findChildren<QAction*>()) {
      if (action->text().remove('&') == text) return action->trigger();
    }
    FAIL() << FromQt(text);
  }
  QString Cell(int row, int column) {
    return window_->findChild<CChannelTable*>()->item(row, column)->text();
  }

  // Does what opens a modal window, and each of `steps` on the window that then waits for the user:
  // one that the step before has opened, or the same again; the last also on what comes behind.
  // Gives how many were done.
  std::size_t Through(const std::function<void()>& open,
                      std::vector<std::function<void(QWidget&)>> steps) {
    QObject context;  // whose timers end with this
    std::size_t done = 0;
    const auto start = std::chrono::steady_clock::now();
    std::function<void()> look = [&] {
      QWidget* const modal = QApplication::activeModalWidget();
      const bool isover = std::chrono::steady_clock::now() - start > 20s;
      if (isover && modal != nullptr) modal->close();
      QTimer::singleShot(20, &context, look);
      if (isover || modal == nullptr || !Waits(*modal)) return;
      ++done;
      steps[std::min(done, steps.size()) - 1](*modal);
    };
    QTimer::singleShot(20, &context, look);
    open();
    return done;
  }
  // A window of the library reads the readout first, and shows how far it is.
  static bool Waits(const QWidget& modal) {
    const ui::CForm* const form = ui::CForm::Active();
    if (form == nullptr || ToQt(form->Caption()) != modal.windowTitle()) {
      return modal.objectName() != "progress";
    }
    return form->Enabled() && !form->IsRunning();
  }
  static void Press(QWidget& dialog, const QString& caption) {
    for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
      if (button->text().remove('&') == caption) return QTest::mouseClick(button, Qt::LeftButton);
    }
    ADD_FAILURE() << "no button " << FromQt(caption);
  }
  static void GiveFile(QWidget& dialog, const QString& path) {
    auto* const files = qobject_cast<QFileDialog*>(&dialog);
    ASSERT_NE(files, nullptr) << FromQt(dialog.windowTitle());
    files->findChild<QLineEdit*>()->setText(path);
    QTest::keyClick(files->findChild<QLineEdit*>(), Qt::Key_Return);
  }
  static void GivePasscode(QWidget& dialog) {
    dialog.findChild<QLineEdit*>()->setText("1234");
    Press(dialog, "OK");
  }

  std::optional<CMainWindow> window_;
};

}  // namespace vane::desktop
