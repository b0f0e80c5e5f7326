// Makes the pictures of the documentation: the program on a simulated readout, gone through as a
// user does, with a picture of each window.
//
//   desktop_pictures [--dark] FOLDER
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QDockWidget>
#include <QLineEdit>
#include <QPalette>
#include <QPointer>
#include <QPushButton>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/appearance.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/main_window.h"
#include "vane/components/user.h"

namespace vane::desktop {
namespace {

constexpr int kTick = 30;               // ms
constexpr int kMeasuringTime = 20'000;  // ms, until a plot shows something
constexpr int kLostTime = 15'000;       // ms, until the line is lost and told so

QPalette DarkPalette() {
  QPalette palette(QColor(0x32, 0x32, 0x36), QColor(0x2B, 0x2B, 0x2E));
  palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
  palette.setColor(QPalette::AlternateBase, QColor(0x27, 0x27, 0x2A));
  palette.setColor(QPalette::Highlight, QColor(0x2F, 0x6F, 0xB5));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(role, QColor(0xEC, 0xEC, 0xEC));
  }
  palette.setColor(QPalette::ToolTipBase, QColor(0x32, 0x32, 0x36));
  palette.setColor(QPalette::ToolTipText, QColor(0xEC, 0xEC, 0xEC));
  palette.setColor(QPalette::PlaceholderText, QColor(0x8C, 0x8C, 0x8C));
  palette.setColor(QPalette::Link, QColor(0x7A, 0xB8, 0xF5));
  return palette;
}

void Wait(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

// "Scanner channel 1" -> "scanner-channel-1".
std::string NameOf(const std::string& text) {
  std::string name;
  for (const char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    } else if (!name.empty() && name.back() != '-') {
      name += '-';
    }
  }
  if (name.ends_with('-')) name.pop_back();
  return name;
}

class CPictures {
 public:
  explicit CPictures(QString folder) : folder_(std::move(folder)) {}

  bool Make() {
    window_.show();
    if (!Connect("--scanner --protect units,sampling,calibration,conversion")) return false;
    Wait(kMeasuringTime);
    Take("main", window_);
    Trigger("Connect...", [this](QWidget& dialog) {
      Take("connect", dialog);
      dialog.close();
    });
    Trigger("Settings...", [this](QWidget& dialog) { GoThroughSettings(dialog); });
    CompareSnapshots();
    Trigger("Channel...", [this](QWidget& dialog) { GoThroughChannel(dialog); });
    Trigger("Download a log...", [this](QWidget& dialog) { GoThroughDownload(dialog); });
    ShowErrors();
    window_.close();
    return isgood_;
  }

 private:
  bool Connect(const std::string& options) {
    Connection connection;
    connection.simulated = true;
    connection.simulatoroptions = options;
    connection.timeout = std::chrono::milliseconds(300);
    return window_.Connect(connection);
  }

  void Take(const std::string& name, QWidget& widget) {
    // What a page that has just come up asks its layout for comes in a second round.
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
    const QString path = folder_ + "/" + ToQt(name) + ".png";
    // Quality 0 is the smallest file.
    if (widget.grab().save(path, "png", 0)) {
      std::printf("%s\n", FromQt(path).c_str());
    } else {
      std::fprintf(stderr, "%s can't be written\n", FromQt(path).c_str());
      isgood_ = false;
    }
  }

  // Does what opens a window, and `look` as soon as the window waits for its user. `look` closes
  // it.
  void Through(const std::function<void()>& open, std::function<void(QWidget&)> look) {
    const int before = looks_;
    Await(std::move(look));
    open();
    if (looks_ > before) return;
    std::fprintf(stderr, "A window did not come up\n");
    isgood_ = false;
  }

  // The same for a window that comes up by itself behind the one that waits now.
  void Await(std::function<void(QWidget&)> look) {
    const auto tick = std::make_shared<std::function<void()>>();
    *tick = [this, before = QPointer<QWidget>(QApplication::activeModalWidget()),
             look = std::move(look), again = std::weak_ptr(tick)] {
      QWidget* const modal = QApplication::activeModalWidget();
      if (modal != nullptr && modal != before && Waits(*modal)) {
        ++looks_;
        return look(*modal);
      }
      if (const auto next = again.lock()) QTimer::singleShot(kTick, [next] { (*next)(); });
    };
    QTimer::singleShot(kTick, [tick] { (*tick)(); });
  }

  // A window of the library reads the readout first.
  static bool Waits(const QWidget& modal) {
    const ui::CForm* const form = ui::CForm::Active();
    if (form == nullptr || ToQt(form->Caption()) != modal.windowTitle()) {
      return modal.objectName() != "progress";
    }
    return form->Enabled() && !form->IsRunning();
  }

  void Trigger(const QString& text, std::function<void(QWidget&)> look) {
    for (QAction* const action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&') != text) continue;
      Through([action] { action->trigger(); }, std::move(look));
      if (!isgood_) std::fprintf(stderr, "by %s\n", FromQt(text).c_str());
      return;
    }
    std::fprintf(stderr, "There is no %s\n", FromQt(text).c_str());
    isgood_ = false;
  }

  void TakeTabs(const std::string& name, QWidget& dialog, const std::string& strip) {
    ui::CUser user(*ui::CForm::Active());
    auto& tabs = user.Find<ui::CTabStrip>(strip);
    for (std::int32_t tab = 0; tab < tabs.Count(); ++tab) {
      user.SelectTab(tabs, tab);
      Take(name + "-" + NameOf(tabs.TabText(tab)), dialog);
    }
  }

  void GoThroughSettings(QWidget& dialog) {
    ui::CUser user(*ui::CForm::Active());
    TakeTabs("settings", dialog, "tabSettings");
    // Shut groups opened, so that a picture has what may be edited.
    Through([&] { user.Click(user.Find<ui::CButton>("cmdEditProtected")); },
            [this](QWidget& passcode) {
              Take("passcode", passcode);
              passcode.close();
            });
    user.Escape();
  }

  void GoThroughChannel(QWidget& dialog) {
    ui::CUser user(*ui::CForm::Active());
    Take("channel", dialog);
    auto& types = user.Find<ui::CDropDown>("cboConversionType");
    // The other types are behind the passcode.
    Through([&] { user.Click(user.Find<ui::CButton>("cmdEditProtected")); },
            [](QWidget& passcode) {
              passcode.findChild<QLineEdit*>()->setText("1234");
              passcode.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
            });
    for (std::int32_t type = 0; type < types.ListCount(); ++type) {
      if (type != types.ListIndex()) user.Pick(types, type);
      auto& edit = user.Find<ui::CButton>("cmdConversionSettings");
      if (!edit.Enabled()) continue;  // has none
      const std::string name = "conversion-" + NameOf(types.ItemText(type));
      Through([&] { user.Click(edit); },
              [this, &name](QWidget& editor) {
                Take(name, editor);
                ui::CUser(*ui::CForm::Active()).Escape();
              });
    }
    user.Escape();
  }

  // A snapshot, and two values changed behind it.
  void CompareSnapshots() {
    const QString file = QDir::homePath() + "/bath.json";
    const auto givefile = [&file](QWidget& dialog) {
      dialog.findChild<QLineEdit*>()->setText(file);
      dynamic_cast<QDialog&>(dialog).accept();
    };
    Trigger("Save a snapshot...", givefile);
    std::ifstream saved(FromQt(file));
    std::string text{std::istreambuf_iterator<char>(saved), {}};
    for (const auto& [before, behind] :
         {std::pair<std::string, std::string>{"\"Units\": \"\u00B0C\"", "\"Units\": \"K\""},
          {"\"Interval\": 2", "\"Interval\": 10"},
          {"CAP-1881", "CAP-1882"}}) {
      const std::size_t place = text.find(before);
      if (place != text.npos) text.replace(place, before.size(), behind);
    }
    std::ofstream(FromQt(file)) << text;
    Trigger("Restore a snapshot...", [&](QWidget& dialog) {
      Await([this](QWidget& differences) {
        Take("restore", differences);
        differences.close();
      });
      givefile(dialog);
    });
  }

  void GoThroughDownload(QWidget& dialog) {
    ui::CUser user(*ui::CForm::Active());
    Take("download", dialog);
    Through([&] { user.Click(user.Find<ui::CButton>("cmdOKCancelHelp(0)")); },
            [this](QWidget& files) {
              Take("files", files);
              ui::CUser(*ui::CForm::Active()).CloseBox();
            });
    user.Escape();
  }

  void ShowErrors() {
    for (QDockWidget* const pane : window_.findChildren<QDockWidget*>()) pane->show();
    Connect("--no-scanner --fault at=70:hangup=600");
    Wait(kLostTime);
    Take("lost", window_);
    Through([this] { Connect("--fault every=1:drop"); },
            [this](QWidget& box) {
              Take("error", box);
              box.close();
            });
  }

  const QString folder_;
  bool isgood_ = true;
  int looks_ = 0;
  CDesktopHost host_{[](std::int32_t) { return true; }};
  CMainWindow window_{host_};
};

int Run(const QApplication& application) {
  const QStringList arguments = application.arguments().mid(1);
  const bool isdark = arguments.contains("--dark");
  if (arguments.size() != (isdark ? 2 : 1)) {
    std::fprintf(stderr, "usage: desktop_pictures [--dark] FOLDER\n");
    return 2;
  }
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  if (isdark) QApplication::setPalette(DarkPalette());
  MakeDisabledTextsLegible();
  if (!QDir().mkpath(arguments.back())) {
    std::fprintf(stderr, "There is no folder for the pictures\n");
    return 1;
  }
  return CPictures(arguments.back()).Make() ? 0 : 1;
}

}  // namespace
}  // namespace vane::desktop

int main(int argc, char** argv) {
  // On any machine the same: no screen, and nothing of a user's own.
  const QTemporaryDir home(QDir::tempPath() + "/ann-XXXXXX");
  qputenv("HOME", home.path().toUtf8());
  qunsetenv("XDG_CONFIG_HOME");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  std::setlocale(LC_ALL, "C.UTF-8");
  return vane::desktop::Run(application);
}
