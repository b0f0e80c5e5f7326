#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <clocale>
#include <iostream>
#include <optional>

#include "adapters/posix/process_start.h"
#include "adapters/qt/help_topics.h"
#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/appearance.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/desktop_request.h"
#include "apps/thermoscribe-desktop/ending_signals.h"
#include "apps/thermoscribe-desktop/main_window.h"
#include "apps/thermoscribe-desktop/unattended_run.h"

namespace vane::desktop {
namespace {

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

int Run(const QApplication& application, std::chrono::steady_clock::time_point start) {
  Request request;
  try {
    request = ParseCommandLine(application.arguments());
  } catch (const BadUsage& error) {
    std::cerr << "thermoscribe-desktop: " << error.what() << std::endl;
    return 2;
  }
  MakeDisabledTextsLegible();
  CDesktopHost host(ShowHelp);
  if (request.EndsByItself()) host.Platform().SetUnattended();
  CMainWindow window(host);
  const CEndingSignals ending([&window] { window.close(); });
  // A picture looks the same whatever the user has done to the window.
  if (!request.EndsByItself()) window.KeepPlace();
  window.show();
  std::optional<CUnattendedRun> run;
  int code = 0;
  QTimer::singleShot(0, &window, [&] {
    if (!request.connection) return window.ConnectAsBefore();
    const bool isconnected = window.Connect(*request.connection);
    if (request.EndsByItself() && isconnected) run.emplace(window, request, start);
    if (request.EndsByItself() && !isconnected) {
      code = 1;
      window.close();
    }
  });
  QApplication::exec();
  return run ? run->ExitCode() : code;
}

}  // namespace
}  // namespace vane::desktop

int main(int argc, char** argv) {
  const auto start = std::chrono::steady_clock::now();
  const QApplication application(argc, argv);
  // Numbers of the library follow the user's locale in its windows, as everywhere.
  std::setlocale(LC_ALL, "");
  QCoreApplication::setApplicationName("thermoscribe-desktop");
  QCoreApplication::setApplicationVersion(THERMOSCRIBE_VERSION);
  QGuiApplication::setDesktopFileName("thermoscribe-desktop");
  QApplication::setWindowIcon(QIcon(":/thermoscribe-desktop.svg"));
  return vane::desktop::Run(application, start);
}
