#include <QApplication>
#include <QCommandLineParser>
#include <QDesktopServices>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>
#include <QUrl>
#include <clocale>
#include <cstdio>

#include "adapters/posix/process_start.h"
#include "adapters/qt/help_topics.h"
#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/appearance.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/main_window.h"

namespace vane::desktop {
namespace {

constexpr int kScreenshotTime = 8000;  // ms of readings

// Beside an installed program, or in the tree that it was built from.
bool ShowHelp(std::int32_t context) {
  const QString page = ToQt(HelpPageOf(context));
  for (const QString& folder : {QCoreApplication::applicationDirPath() + "/../share/VaneT312B/help",
                                QString(THERMOSCRIBE_HELP_FOLDER)}) {
    const QFileInfo file(folder + "/" + page);
    if (file.exists())
      return QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath()));
  }
  return false;
}

int Run(QApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription("Reads and sets the T312B thermometer readout.");
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption simulate("simulate", "Connect to a simulated readout.");
  const QCommandLineOption options("simulate-options", "Options of the simulated readout.", "TEXT");
  const QCommandLineOption port("port", "Connect to the readout at DEVICE.", "DEVICE");
  const QCommandLineOption screenshot(
      "screenshot", "Save a picture of the window after the first readings, and end.", "FILE");
  for (const auto& option : {simulate, options, port, screenshot}) parser.addOption(option);
  parser.process(application);

  MakeDisabledTextsLegible();
  CDesktopHost host(ShowHelp);
  CMainWindow window(host);
  window.show();
  std::optional<Connection> connection = host.LastConnection();
  if (parser.isSet(simulate) || parser.isSet(options)) {
    connection.emplace().simulated = true;
    connection->simulatoroptions = FromQt(parser.value(options));
  } else if (parser.isSet(port)) {
    if (!connection) connection.emplace();
    connection->simulated = false;
    connection->port = FromQt(parser.value(port));
  }
  QTimer::singleShot(0, &window, [&] {
    if (connection) window.Connect(*connection);
  });
  bool isdone = true;
  if (parser.isSet(screenshot)) {
    QTimer::singleShot(kScreenshotTime, &window, [&] {
      isdone = window.grab().save(parser.value(screenshot));
      window.close();
    });
  }
  const int code = QApplication::exec();
  if (!isdone) std::fprintf(stderr, "The picture can't be written.\n");
  return isdone ? code : 1;
}

}  // namespace
}  // namespace vane::desktop

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // Numbers of the library follow the user's locale in its windows, as everywhere.
  std::setlocale(LC_ALL, "");
  QCoreApplication::setApplicationName("thermoscribe-desktop");
  QCoreApplication::setApplicationVersion(THERMOSCRIBE_VERSION);
  QGuiApplication::setDesktopFileName("thermoscribe-desktop");
  QApplication::setWindowIcon(QIcon(":/thermoscribe-desktop.svg"));
  return vane::desktop::Run(application);
}
